What addrtool-safe refuses: with status 1, cause and remedy, and nothing changed.
Needs a real processor.

  $ fresh || exit 80
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0
  $ all() { addresses; ip -4 route show table all; ip -6 route | grep -v fe80; files; }
  $ refused() {  # WORDS COMMAND ...: runs addrtool-safe after each COMMAND on a fresh machine
  >   for command in "${@:2}"; do
  >     fresh; eval "$command" >/dev/null; before=$(all); addrtool-safe $1
  >     [[ $? == 1 && $before == "$(all)" ]] || echo "NOT REFUSED: $1, $command"
  >   done 2>&1 | sed "s|${file%/*}|DIR|g"; }

An address that is never listed, or that no host may have.

  $ for address in 127.0.0.1/8 169.254.1.1/16 224.0.0.5/24 0.0.0.0/32 192.0.2.0/24 192.0.2.255/24 \
  >   192.0.2.9/7 ::1/128 fe80::5/64 fec0::5/64 ff02::5/64 ::/64 ::2/64 2001:db8::/64 \
  >   2001:db8::9/15; do refused "present eth0 $address" true; done |
  >   sed 's/^.* is \(.*\): use another address$/\1,/' | sort | uniq -c | xargs | fold -s -w 96
  3 an end of its network, 2 in too large a network, 2 link_local, 2 loopback, 2 multicast, 1 
  reserved, 1 site_local, 2 unspecified,

An interface that is not listed or that a shell would expand, and an address that is up otherwise.

  $ for words in 'lo ::8/64' 'x$(true) ::8/64' 'eth0 192.0.2.1/25' 'eth0 ::9/64'; do
  >   refused "present $words" 'interface eth1 ::9/64; interface "x\$(true)" 203.0.113.1/24'; done
  lo is no interface that addrtool lists: give it an address
  x$(true) is no interface that addrtool lists: give it an address
  192.0.2.1/24 is up on eth0: delete it first
  ::9/64 is up on eth1: delete it first

A delete of a main address, even a secondary one, of the last IPv6 addresses, and of an address that
a route needs: for a gateway in the subnet, as its source, or because no other IPv4 address remains,
even for a moment. What addrtool restores or the kernel keeps may go.

  $ add() { ip address add "$1" dev eth0 ${2:+label "eth0$2"}; }
  $ both='add 198.51.100.5/24 :1; add 198.51.100.6/24' route="$both :2; ip route add"
  $ no_main='ip address del 192.0.2.1/24 dev eth0'
  $ promote='echo 1 >/proc/sys/net/ipv4/conf/eth0/promote_secondaries'
  $ refused 'absent --routes 198.51.100.6' "$both" "$both :1" 'add 198.51.100.6/24 x:1' | uniq
  198.51.100.6 cannot be deleted: it is a main address, or shares its label
  $ refused 'absent --routes 198.51.100.5' "$both" "$both :1" | uniq | sed 's/: set/\n&/'
  198.51.100.5 cannot be deleted: 198.51.100.6 goes with it
  : set /proc/sys/net/ipv4/conf/eth0/promote_secondaries to 1
  $ refused 'absent 2001:db8::1 2001:db8::5' 'add 2001:db8::5/64'
  2001:db8::5 cannot be deleted: it is the last IPv6 address of eth0
  $ refused 'absent 198.51.100.5' "$route default dev eth0; $no_main" \
  >   "$promote; $route default nexthop via 192.0.2.254 nexthop via 198.51.100.1" \
  >   "$route default via 192.0.2.254 src 198.51.100.6" \
  >   "$route 2/8 dev veth-peer src 198.51.100.5 table 9" |
  >   sed 's/198.*: route/route/; s/: repeat.*//; s/ weight 1//g'
  route 'default dev eth0 scope link' needs it
  route 'default nexthop via 192.0.2.254 dev eth0 nexthop via 198.51.100.1 dev eth0' needs it
  route 'default via 192.0.2.254 dev eth0 src 198.51.100.6' needs it
  route '2.0.0.0/8 dev veth-peer table 9 scope link src 198.51.100.5' needs it
  $ refused 'absent ::5 ::6' 'add ::5/64; add ::6/64; ip -6 route add 2:: via ::7' | cut -d \' -f 3
   needs it: repeat with --routes, and set the route
  $ addrtool-safe absent --routes ::5 ::6 | tail -n 1
  delete ::5/64
  $ for command in "$both; $promote" "add 198.51.100.4/24; $both" \
  >   "add 192.0.2.7/24; $route default via 192.0.2.254" \
  >   "${promote/eth0/all}; $route default dev eth0 src 198.51.100.6; $no_main" \
  >   "add 198.51.100.5/24 :1; $no_main; ip route add 2/8 via 198.51.100.1 dev veth-peer onlink"; do
  >   fresh; eval "$command"; addrtool-safe absent 198.51.100.5; ip route show default
  > done | sort | uniq -c
        1 default dev eth0 scope link src 198.51.100.6 
        1 default via 192.0.2.254 dev eth0 
        5 delete 198.51.100.5/24

A file that is missing, cannot be replaced or cannot be read, a full disk, and a left-over file.

  $ refused 'present eth0 192.0.2.10/24' 'rm -r ${file%/*}' 'mv $file{,.bak}; ln -s $file{.bak,}' \
  >   'rm $file; mkfifo $file' 'mount --bind ${file%/*}{,}; mount -o remount,ro,bind ${file%/*}' \
  >   ': >$file' "sed -i '1s/^/\xef\xbb\xbf/' \$file" 'touch -d "-61 sec" $file:1.aB3dEf' \
  >   'cp $file /run; mount -t tmpfs -o size=60k x ${file%/*}; cp /run/ifcfg-eth0 $file' | uniq
  DIR/ifcfg-eth0 is no regular file: create it, or save addresses as this system does
  DIR/ifcfg-eth0 cannot be replaced: see its mount, and lsattr
  DIR/ifcfg-eth0 is empty or has a byte order mark: correct it
  DIR/ifcfg-eth0:1.aB3dEf is left over: run 'addrtool-safe repair eth0'
  DIR is on a full disk: make room
  $ fresh; touch -d "-61 sec" $file.backup $file.000101 $file.rpmsave; touch $file.aB3dEf
  $ addrtool-safe present --check eth0 192.0.2.10/24
  would add 192.0.2.10/24

IPv6 lines that addrtool or a network service misreads, or that would not be used. An alias file
that saves another address: an add would overwrite it, or a delete would remove it.

  $ for list in '"2001:db8::5"' '"2001:db8::5//64"' '"2001:db8::5/64 "' '::5/64 ::6/64' \
  >   $'"2001:db8::5/64\t::6/64"' '"2001:db8::5/129"' '' '"::5/64" # why' '"2001:db8::5/64'; do
  >   refused 'present eth0 2001:db8::9/64' "echo 'IPV6ADDR_SECONDARIES=$list' >>\$file"
  > done | sed 's/SEC.*//' | uniq -c
        9 DIR/ifcfg-eth0 has a bad or second line: correct IPV6ADDR_
  $ refused 'present eth0 ::9/64' 'echo IPV6ADDR=::7/64 >>$file' 'sed -i "s/^IPV6A/ &/" $file' \
  >   'sed -i s/INIT=yes/INIT=no/ $file' 'echo 1 >/proc/sys/net/ipv6/conf/eth0/disable_ipv6' \
  >   'echo IPV6ADDR_SECONDARIES=\"$(seq -s " " -f 2001:db8::%g/64 1000 1450)\" >>$file'
  DIR/ifcfg-eth0 has a bad or second line: correct IPV6ADDR=2001:db8::1/64
  DIR/ifcfg-eth0 has a bad or second line: correct  IPV6ADDR=2001:db8::1/64
  DIR/ifcfg-eth0 ignores IPv6 addresses: add IPV6INIT=yes
  IPv6 is disabled on eth0: set its sysctl disable_ipv6 to 0
  DIR/ifcfg-eth0 has too many IPv6 addresses for addrtool: delete some
  $ refused 'present eth0 192.0.2.10/24' 'echo IPADDR=192.0.2.77 >$file:1'
  DIR/ifcfg-eth0:1 saves 192.0.2.77, which is not up: bring it up
  $ refused 'absent 192.0.2.10' 'ip address add 192.0.2.10/24 dev eth0 label eth0:1; echo >$file:1'
  192.0.2.10 cannot be deleted: DIR/ifcfg-eth0:1 saves another address
