What addrtool-safe refuses: with status 1, cause and remedy, and nothing changed.

Needs a real processor.

  $ fresh || exit 80
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0
  $ all() { addresses; ip route show table all; ip -6 route | grep -v fe80; files; }
  $ refused() {  # WORDS COMMAND ...: runs addrtool-safe after each COMMAND on a fresh machine
  >   for command in "${@:2}"; do
  >     fresh; eval "$command" >/dev/null; before=$(all); addrtool-safe $1
  >     [[ $? == 1 && $before == "$(all)" ]] || echo "NOT REFUSED: $1, $command"
  >   done 2>&1 | sed "s|${file%/*}|DIR|g"; }

An address that is never listed, or that no host may have.

  $ for address in 127.0.0.1/8 169.254.1.1/16 224.0.0.5/24 0.0.0.0/32 192.0.2.0/24 192.0.2.255/24 \
  >   192.0.2.9/7 ::1/128 fe80::5/64 fec0::5/64 ff02::5/64 ::/64 ::2/64 2001:db8::/64 \
  >   2001:db8::9/15; do refused "present eth0 $address" true; done | sort -k 3 | uniq -c -f 2
        3 192.0.2.0/24 is an end of its network: use another address
        2 192.0.2.9/7 is in too large a network: use another address
        2 169.254.1.1/16 is link_local: use another address
        2 127.0.0.1/8 is loopback: use another address
        2 224.0.0.5/24 is multicast: use another address
        1 ::2/64 is reserved: use another address
        1 fec0::5/64 is site_local: use another address
        2 0.0.0.0/32 is unspecified: use another address

An interface that is not listed or whose name a shell would expand, and an address that is there
with another length or on another interface.

  $ for words in 'veth-peer 192.0.2.10/24' 'x$(true) 192.0.2.10/24' 'eth0 192.0.2.1/25' 'eth0 ::9/64'; do
  >   refused "present $words" 'interface eth1 ::9/64; interface "x\$(true)" 203.0.113.1/24'; done
  veth-peer is no interface that addrtool lists: give it an address
  x$(true) is no interface that addrtool lists: give it an address
  192.0.2.1/24 is up on eth0: delete it first
  ::9/64 is up on eth1: delete it first

A delete of a main address, or one that takes a main address with it, and of the last IPv6 addresses.

  $ add() { ip address add "$1" dev eth0 ${2:+label "eth0:$2"}; }
  $ both='add 198.51.100.5/24 1; add 198.51.100.6/24'
  $ refused 'absent --routes 192.0.2.1' true
  192.0.2.1 cannot be deleted: it is a main address, or shares its label
  $ refused 'absent --routes 198.51.100.6' "$both" "$both 1"
  198.51.100.6 cannot be deleted: it is a main address, or shares its label
  198.51.100.6 cannot be deleted: it is a main address, or shares its label
  $ refused 'absent --routes 198.51.100.5' "$both" "$both 1"
  198.51.100.5 cannot be deleted: 198.51.100.6 goes with it: set /proc/sys/net/ipv4/conf/eth0/promote_secondaries to 1
  198.51.100.5 cannot be deleted: 198.51.100.6 goes with it: set /proc/sys/net/ipv4/conf/eth0/promote_secondaries to 1
  $ refused 'absent 2001:db8::1 2001:db8::5' 'add 2001:db8::5/64'
  2001:db8::5 cannot be deleted: it is the last IPv6 address of eth0
  $ fresh; eval "$both"; echo 1 >/proc/sys/net/ipv4/conf/eth0/promote_secondaries
  $ addrtool-safe absent 198.51.100.5; addresses
  delete 198.51.100.5/24
  eth0 192.0.2.1/24
  eth0 198.51.100.6/24
  eth0 2001:db8::1/64

A delete of an address that a route needs, unless it may go: one that has a gateway in the subnet, one
with this source, and each one of an interface that loses its last IPv4 address, even for a moment.

  $ route="$both 2; ip route add"
  $ no_main='ip address del 192.0.2.1/24 dev eth0'
  $ refused 'absent 198.51.100.5' "$route default nexthop via 192.0.2.254 nexthop via 198.51.100.1" \
  >   "$route default via 192.0.2.254 src 198.51.100.6" "$route default dev eth0; $no_main" \
  >   "$route 203.0.113.0/24 dev veth-peer src 198.51.100.5 table 9" | sed 's/ cannot be deleted//'
  198.51.100.5: route 'default nexthop via 192.0.2.254 dev eth0 weight 1 nexthop via 198.51.100.1 dev eth0 weight 1' needs it: repeat with --routes, and set the route
  198.51.100.5: route 'default via 192.0.2.254 dev eth0 src 198.51.100.6' needs it: repeat with --routes, and set the route
  198.51.100.5: route 'default dev eth0 scope link' needs it: repeat with --routes, and set the route
  198.51.100.5: route '203.0.113.0/24 dev veth-peer table 9 scope link src 198.51.100.5' needs it: repeat with --routes, and set the route
  $ refused 'absent 2001:db8:1::5 2001:db8:1::6' \
  >   'add 2001:db8:1::5/64; add 2001:db8:1::6/64; ip -6 route add default via 2001:db8:1::1'
  2001:db8:1::6 cannot be deleted: route 'default via 2001:db8:1::1 dev eth0 metric 1024 pref medium' needs it: repeat with --routes, and set the route
  $ addrtool-safe absent --routes 2001:db8:1::5 2001:db8:1::6
  delete 2001:db8:1::6/64
  delete 2001:db8:1::5/64
  $ fresh; eval "$route default via 192.0.2.254"
  $ addrtool-safe absent 198.51.100.5; ip route show default; addresses
  delete 198.51.100.5/24
  default via 192.0.2.254 dev eth0 
  eth0 192.0.2.1/24
  eth0:2 198.51.100.6/24
  eth0 2001:db8::1/64
  $ fresh; echo 1 >/proc/sys/net/ipv4/conf/all/promote_secondaries
  $ eval "$route default dev eth0 src 198.51.100.6; $no_main"
  $ addrtool-safe absent 198.51.100.5; ip route show default
  delete 198.51.100.5/24
  default dev eth0 scope link src 198.51.100.6 

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
  $ addrtool-safe present eth0 192.0.2.10/24
  add 192.0.2.10/24

IPv6 lines that addrtool or a network service misreads, or that would not be used. An alias file that
saves another address: an add would overwrite it, or a delete would remove it.

  $ for list in '"2001:db8::5"' '"2001:db8::5//64"' '"2001:db8::5/64 "' '2001:db8::5/64 ::6/64' \
  >   $'"2001:db8::5/64\t::6/64"' '"2001:db8::5/129"' '' '"2001:db8::5/64" # why' '"2001:db8::5/64'; do
  >   refused 'present eth0 2001:db8::9/64' "echo 'IPV6ADDR_SECONDARIES=$list' >>\$file"
  > done | sed 's/SEC.*//' | uniq -c
        9 DIR/ifcfg-eth0 has a bad or second line: correct IPV6ADDR_
  $ refused 'present eth0 2001:db8::9/64' 'echo IPV6ADDR=::7/64 >>$file' 'sed -i "s/^IPV6A/ &/" $file' \
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
