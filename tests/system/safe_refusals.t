What addrtool-safe refuses: with status 1, cause and remedy, and nothing changed.

Needs a real processor.

  $ fresh || exit 80
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0
  $ all() { addresses; ip route; ip -6 route | grep -v fe80; files; }
  $ refused() {  # WORDS COMMAND ...: runs addrtool-safe after each COMMAND on a fresh machine
  >   local command before words
  >   read -ra words <<<"$1"
  >   for command in "${@:2}"; do
  >     fresh; eval "$command" >/dev/null; before=$(all)
  >     addrtool-safe "${words[@]}"; [[ $? == 1 && $before == "$(all)" ]] || echo "NOT REFUSED: $command"
  >   done 2>&1 | sed "s|${file%/*}|DIR|g"; }

An address that is never listed, or that no host may have.

  $ for address in 127.0.0.1/8 169.254.1.1/16 224.0.0.5/24 0.0.0.0/32 192.0.2.0/24 192.0.2.255/24 192.0.2.9/0 ::1/128 \
  >   fe80::5/64 fec0::5/64 ff02::5/64 ::/64 ::2/64 2001:db8::/64 2001:db8::9/0; do refused "present eth0 $address" true; done |
  >   sed 's/.* is //' | sort | uniq -c
        3 an end of its network: use another address
        2 link_local: use another address
        2 loopback: use another address
        2 multicast: use another address
        3 reserved: use another address
        1 site_local: use another address
        2 unspecified: use another address
  $ refused 'absent 127.0.0.1' true
  127.0.0.1/32 is loopback: use another address

An interface that is not listed, or whose name a shell would expand. An address that is up with another length, or elsewhere.

  $ refused 'present veth-peer 192.0.2.10/24' true
  veth-peer is no interface that addrtool lists: give it an address
  $ refused 'present x$(true) 192.0.2.10/24' 'ip link add name "x\$(true)" type bridge; ip address add 203.0.113.1/24 dev "x\$(true)"'
  x$(true) is no interface that addrtool lists: give it an address
  $ refused 'present eth0 192.0.2.1/25' true
  192.0.2.1/24 is up on eth0: delete it first
  $ refused 'present eth0 2001:db8::9/64' 'interface eth1 2001:db8::9/64'
  2001:db8::9/64 is up on eth1: delete it first

A main address and the last IPv6 addresses cannot be deleted.

  $ refused 'absent 192.0.2.1' true
  192.0.2.1 cannot be deleted: it is a main address of eth0
  $ refused 'absent 2001:db8::1 2001:db8::5' 'addrtool -a eth0 2001:db8::5 64'
  2001:db8::5 cannot be deleted: it is the last IPv6 address of eth0

A file that is missing, cannot be replaced or cannot be read, and a full disk.

  $ refused 'present eth0 192.0.2.10/24' 'rm -r ${file%/*}' 'rm $file' 'ln -sf /dev/null $file' 'rm $file; mkfifo $file' \
  >   'mount --bind ${file%/*} ${file%/*}; mount -o remount,ro,bind ${file%/*}' ': >$file' "sed -i '1s/^/\xef\xbb\xbf/' \$file" \
  >   'cp $file /run; mount -t tmpfs -o size=72k x ${file%/*}; cp /run/ifcfg-eth0 $file; head -c 20k /dev/zero >${file%/*}/x'
  DIR/ifcfg-eth0 is no regular file: create it, or save addresses where this system does
  DIR/ifcfg-eth0 is no regular file: create it, or save addresses where this system does
  DIR/ifcfg-eth0 is no regular file: create it, or save addresses where this system does
  DIR/ifcfg-eth0 is no regular file: create it, or save addresses where this system does
  DIR/ifcfg-eth0 cannot be replaced: see its mount, and lsattr
  DIR/ifcfg-eth0 is empty or has a byte order mark: correct it
  DIR/ifcfg-eth0 is empty or has a byte order mark: correct it
  DIR is on a full disk: make room

A temporary file that is older than a minute. Other names are somebody's copies.

  $ refused 'present eth0 192.0.2.10/24' 'touch -d "-61 sec" $file.aB3dEf' 'touch -d "-61 sec" $file:1.aB3dEf'
  DIR/ifcfg-eth0.aB3dEf is left over: run 'addrtool-safe repair eth0'
  DIR/ifcfg-eth0:1.aB3dEf is left over: run 'addrtool-safe repair eth0'
  $ fresh; touch -d "-61 sec" $file.backup $file.000101 $file.rpmsave; touch $file.aB3dEf; addrtool-safe present eth0 192.0.2.10/24
  add 192.0.2.10/24

IPv6 lines that addrtool or a network service misreads, or that would not be used.

  $ for list in '"2001:db8::5"' '"2001:db8::5//64"' '"2001:db8::5/64 "' '2001:db8::5/64 2001:db8::6/64' \
  >   $'"2001:db8::5/64\t2001:db8::6/64"' '"2001:db8::5/129"' '' '"2001:db8::5/64" # why' '"2001:db8::5/64'; do
  >   refused 'present eth0 2001:db8::9/64' "echo 'IPV6ADDR_SECONDARIES=$list' >>\$file"; done | cut -d : -f 1 | uniq -c
        9 DIR/ifcfg-eth0 has a bad or second line
  $ refused 'present eth0 2001:db8::9/64' 'echo IPV6ADDR=2001:db8::7/64 >>$file' 'sed -i "s/^IPV6ADDR/ &/" $file' \
  >   'sed -i s/IPV6INIT=yes/IPV6INIT=no/ $file' 'echo 1 >/proc/sys/net/ipv6/conf/eth0/disable_ipv6; ip address' \
  >   'echo IPV6ADDR_SECONDARIES=\"$(seq -f 2001:db8::%g/64 1000 1450)\" | tr "\n" " " >>$file; echo >>$file'
  DIR/ifcfg-eth0 has a bad or second line: IPV6ADDR=2001:db8::1/64
  DIR/ifcfg-eth0 has a bad or second line: IPV6ADDR=2001:db8::1/64
  DIR/ifcfg-eth0 ignores IPv6 addresses: add IPV6INIT=yes
  IPv6 is disabled on eth0: set its sysctl disable_ipv6 to 0
  DIR/ifcfg-eth0 has too many IPv6 addresses for addrtool: delete some

An alias file that saves another address, which an add would overwrite or a delete would remove.

  $ refused 'present eth0 192.0.2.10/24' 'addrtool -a eth0 192.0.2.77 255.255.255.0; ip address del 192.0.2.77/24 dev eth0'
  DIR/ifcfg-eth0:1 saves 192.0.2.77, which is not up: bring it up
  $ refused 'absent 192.0.2.10' 'addrtool -a eth0 192.0.2.10 255.255.255.0; sed -i s/2.10/2.77/ $file:1'
  192.0.2.10 cannot be deleted: DIR/ifcfg-eth0:1 saves another address

The address whose subnet has the gateway of a route, unless --routes is given.

  $ gateway='ip address add 198.51.100.5/24 dev eth0 label eth0:1; addrtool -a eth0 198.51.100.6 255.255.255.0
  >   ip route add default via 198.51.100.1'
  $ refused 'absent 198.51.100.5' "$gateway"
  198.51.100.5 cannot be deleted: gateway 198.51.100.1 goes with it: repeat with --routes, set the route
  $ addrtool-safe absent 198.51.100.6; addrtool-safe absent --routes 198.51.100.5; ip route show default
  delete 198.51.100.6/24
  delete 198.51.100.5/24
  default via 198.51.100.1 dev eth0 
