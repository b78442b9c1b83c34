The listing: which addresses it has, in which order, with which fields.

A line has the address, the netmask or prefix length, the interface, and 1 for the primary address.

  $ fresh || exit 80
  $ streams addrtool --list
  1: 192.0.2.1 255.255.255.0 eth0 1
  1: 2001:db8::1 64 eth0 0

A machine with only loopback lists nothing.

  $ ip link delete eth0
  $ streams addrtool --list

Aliases come after plain addresses, in the byte order of their suffixes, each with its interface.

  $ fresh
  $ for suffix in 2 10 1 web:2 a B $'\xff' 01 A; do
  >   ip address add 10.1.0.$((++n))/16 dev eth0 label "eth0:$suffix"
  > done
  $ ip address add 10.1.0.99/16 dev eth0
  $ addrtool --list
  192.0.2.1 255.255.255.0 eth0 1
  10.1.0.99 255.255.0.0 eth0 0
  10.1.0.8 255.255.0.0 eth0 0
  10.1.0.3 255.255.0.0 eth0 0
  10.1.0.2 255.255.0.0 eth0 0
  10.1.0.1 255.255.0.0 eth0 0
  10.1.0.9 255.255.0.0 eth0 0
  10.1.0.6 255.255.0.0 eth0 0
  10.1.0.5 255.255.0.0 eth0 0
  10.1.0.4 255.255.0.0 eth0 0
  10.1.0.7 255.255.0.0 eth0 0
  2001:db8::1 64 eth0 0

An address that is there twice is listed twice.

  $ fresh; ip address add 192.0.2.1/32 dev eth0 label eth0:1; addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  192.0.2.1 255.255.255.255 eth0 0
  2001:db8::1 64 eth0 0

Without a plain address, the first alias is the primary one.

  $ fresh
  $ ip address flush dev eth0
  $ for n in 2 10 1; do ip address add 10.0.0.$n/24 dev eth0 label eth0:$n; done
  $ addrtool -l
  10.0.0.1 255.255.255.0 eth0 1
  10.0.0.10 255.255.255.0 eth0 0
  10.0.0.2 255.255.255.0 eth0 0

Plain addresses keep the order of the kernel, and the first is the primary one.

  $ fresh
  $ ip address flush dev eth0
  $ for address in 198.51.100.9/24 203.0.113.5/32 198.51.100.1/24 10.0.0.1/8; do
  >   ip address add $address dev eth0
  > done
  $ addrtool -l
  198.51.100.9 255.255.255.0 eth0 1
  203.0.113.5 255.255.255.255 eth0 0
  10.0.0.1 255.0.0.0 eth0 0
  198.51.100.1 255.255.255.0 eth0 0

Of two addresses with the same suffix, only the first is listed. A suffix keeps its case.

  $ fresh
  $ ip address add 10.0.0.1/24 dev eth0 label eth0:a
  $ ip address add 10.0.0.2/24 dev eth0 label eth0:a
  $ ip address add 10.0.0.3/24 dev eth0 label eth0:A
  $ ip address add 10.0.0.4/24 dev eth0 label eth0:
  $ ip address add 10.0.0.5/24 dev eth0 label eth0::
  $ addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  10.0.0.4 255.255.255.0 eth0 0
  10.0.0.5 255.255.255.0 eth0 0
  10.0.0.3 255.255.255.0 eth0 0
  10.0.0.1 255.255.255.0 eth0 0
  2001:db8::1 64 eth0 0

One suffix on two interfaces counts twice.

  $ fresh
  $ interface eth1
  $ ip address add 10.0.0.1/24 dev eth0 label eth0:1
  $ ip address add 10.0.0.1/24 dev eth1 label eth1:1
  $ addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  10.0.0.1 255.255.255.0 eth0 0
  2001:db8::1 64 eth0 0
  10.0.0.1 255.255.255.0 eth1 1

Interfaces come in the byte order of their names, with all that each has.

  $ fresh
  $ for name in eth10 eth1 eth2 wlan0 Eth2 $'\xff' e docker0 eth0.100 fifteen-letters $'a\1'; do
  >   interface "$name" 10.0.0.1/32; done
  $ ip address add 2001:db8::11/64 dev eth1 nodad
  $ ip address add 10.0.0.2/32 dev lo
  $ addrtool -l
  10.0.0.1 255.255.255.255 Eth2 1
  10.0.0.1 255.255.255.255 a\x01 1 (esc)
  10.0.0.1 255.255.255.255 docker0 1
  10.0.0.1 255.255.255.255 e 1
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  10.0.0.1 255.255.255.255 eth0.100 1
  10.0.0.1 255.255.255.255 eth1 1
  2001:db8::11 64 eth1 0
  10.0.0.1 255.255.255.255 eth10 1
  10.0.0.1 255.255.255.255 eth2 1
  10.0.0.1 255.255.255.255 fifteen-letters 1
  10.0.0.2 255.255.255.255 lo 1
  10.0.0.1 255.255.255.255 wlan0 1
  10.0.0.1 255.255.255.255 \xff 1 (esc)

The suffix is what follows the first colon of the label, whatever stands before it.

  $ fresh
  $ ip address add 10.0.0.2/24 dev eth0 label eth0x:2
  $ ip address add 10.0.0.1/24 dev eth0 label eth0:1
  $ ip address add 10.0.0.9/24 dev eth0 label eth0x:1
  $ ip address add 10.0.0.3/24 dev eth0 label eth0y
  $ addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  10.0.0.3 255.255.255.0 eth0 0
  10.0.0.1 255.255.255.0 eth0 0
  10.0.0.2 255.255.255.0 eth0 0
  2001:db8::1 64 eth0 0

A prefix length gives a netmask. Of length 0 it gives the netmask of 32.

  $ fresh
  $ ip address flush dev eth0
  $ for length in 0 1 7 8 17 24 31 32; do ip address add 10.$length.0.1/$length dev eth0; done
  $ addrtool -l
  10.0.0.1 255.255.255.255 eth0 1
  10.1.0.1 128.0.0.0 eth0 0
  10.7.0.1 254.0.0.0 eth0 0
  10.8.0.1 255.0.0.0 eth0 0
  10.17.0.1 255.255.128.0 eth0 0
  10.24.0.1 255.255.255.0 eth0 0
  10.31.0.1 255.255.255.254 eth0 0
  10.32.0.1 255.255.255.255 eth0 0

An IPv6 address has its shortest form, and its prefix length in decimal.

  $ fresh
  $ ip address flush dev eth0
  $ for address in 2001:DB8:0:0:1:0:0:1/7 2001:db8::5/0 2001:db8::6/128 ::ffff:192.0.2.9/96 \
  >     64:ff9b::c000:201/96; do
  >   ip address add $address dev eth0 nodad
  > done
  $ addrtool -l
  64:ff9b::c000:201 96 eth0 0
  ::ffff:192.0.2.9 96 eth0 0
  2001:db8::6 128 eth0 0
  2001:db8::5 0 eth0 0
  2001:db8::1:0:0:1 7 eth0 0

Every address of global scope is listed, private, local and repeated ones too.

  $ fresh
  $ for address in fd00::1/64 169.254.0.1/16 127.0.5.5/32 172.16.0.1/12 100.64.0.1/10 \
  >     192.168.0.1/16 240.0.0.1/4 10.0.0.1/8 10.0.0.1/16; do
  >   ip address add $address dev eth0 scope global
  > done
  $ addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  169.254.0.1 255.255.0.0 eth0 0
  127.0.5.5 255.255.255.255 eth0 0
  172.16.0.1 255.240.0.0 eth0 0
  100.64.0.1 255.192.0.0 eth0 0
  192.168.0.1 255.255.0.0 eth0 0
  240.0.0.1 240.0.0.0 eth0 0
  10.0.0.1 255.0.0.0 eth0 0
  10.0.0.1 255.255.0.0 eth0 0
  fd00::1 64 eth0 0
  2001:db8::1 64 eth0 0

Addresses of every other scope are not listed.

  $ fresh
  $ for scope in link host site 200 100; do ip address add 10.0.0.$((++i))/32 dev eth0 scope $scope; done
  $ ip address add fe80::5/64 dev eth0 nodad
  $ ip address add fec0::5/64 dev eth0 nodad
  $ addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0

An IPv6 address that expires is not listed, nor one that the kernel made up.

  $ fresh
  $ echo 2 >/proc/sys/net/ipv6/conf/eth0/use_tempaddr
  $ ip address add 2001:db8::a/64 dev eth0 nodad valid_lft 1000 preferred_lft 500
  $ ip address add 2001:db8::b/64 dev eth0 nodad mngtmpaddr
  $ ip -6 -o address show dev eth0 temporary | wc -l
  1
  $ addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::b 64 eth0 0
  2001:db8::1 64 eth0 0

An IPv6 address that never expires is listed in every state, an IPv4 address even if it expires.

  $ fresh
  $ ip link set eth0 down
  $ ip address add 2001:db8::a/64 dev eth0 nodad preferred_lft 0
  $ ip address add 2001:db8::b/64 dev eth0 noprefixroute
  $ ip address add 192.0.2.2/24 dev eth0 valid_lft 1000 preferred_lft 500
  $ ip address add 192.0.2.3/24 dev eth0 preferred_lft 0 noprefixroute
  $ ip -6 -o address show tentative | wc -l
  1
  $ addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  192.0.2.2 255.255.255.0 eth0 0
  192.0.2.3 255.255.255.0 eth0 0
  2001:db8::b 64 eth0 0
  2001:db8::a 64 eth0 0

The address ::2 is not listed, whatever its length. An interface without another is unknown.

  $ fresh
  $ interface eth1 ::2/128
  $ ip address add ::2/64 dev eth0 nodad
  $ ip address add ::3/128 dev eth0 nodad
  $ ip address add ::22/128 dev eth0 nodad
  $ addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  ::22 128 eth0 0
  ::3 128 eth0 0
  2001:db8::1 64 eth0 0
  $ addrtool -a eth1 192.0.2.10 255.255.255.0
  eth1: no such network interface.
  [1]

On a link to a peer, the own address is listed.

  $ fresh
  $ ip address add 10.9.9.1 peer 10.9.9.2/32 dev eth0
  $ ip address add 10.9.9.3 peer 10.9.9.4/30 dev eth0 label eth0:1
  $ ip address add 2001:db8:9::1 peer 2001:db8:9::2/128 dev eth0 nodad
  $ addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  10.9.9.1 255.255.255.255 eth0 0
  10.9.9.3 255.255.255.252 eth0 0
  2001:db8:9::1 128 eth0 0
  2001:db8::1 64 eth0 0

Thousands of addresses are listed in order, even into a pipe that is full and does not block.

  $ fresh
  $ for ((n = 1; n <= 5000; n++)); do echo "10.$((n / 250)).0.$((n % 250))"; done >many
  $ sed 's|.*|address add &/32 dev eth0|' many | ip -batch -
  $ sed '1i192.0.2.1 255.255.255.0 eth0 1
  >   s/$/ 255.255.255.255 eth0 0/
  >   $a2001:db8::1 64 eth0 0' many >lines
  $ addrtool -l | cmp - lines
  $ (dd oflag=nonblock count=0 status=none </dev/null; addrtool -l) | (sleep 0.2; cmp - lines)
