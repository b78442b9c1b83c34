Adding an address.

An IPv4 add makes an alias with a file of its own, and prints nothing.

  $ fresh || exit 80
  $ streams addrtool --add eth0 192.0.2.10 255.255.255.0
  $ changed
  + eth0:1 192.0.2.10/24
  + ifcfg-eth0:1 0:0 644
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"

The shell reads the file as it was meant.

  $ (. /etc/sysconfig/network-scripts/ifcfg-eth0:1; echo "$DEVICE $IPADDR $NETMASK")
  eth0:1 192.0.2.10 255.255.255.0

The operands of an IPv4 add stand in single quotes, with two blanks before the netmask.

  $ fresh; record 'exit 1'
  $ streams addrtool --add eth0 192.0.2.10 255.255.255.0
  1: ifconfig [eth0:1] [192.0.2.10] [netmask] [255.255.255.0] [up]
  2: /sbin/ifconfig 'eth0:1' '192.0.2.10' netmask  '255.255.255.0' up exited with non-zero status 1
  [1]

A failed command is not repeated, and nothing is saved.

  $ addrtool --add eth0 192.0.2.10 255.255.255.0
  ifconfig [eth0:1] [192.0.2.10] [netmask] [255.255.255.0] [up]
  /sbin/ifconfig 'eth0:1' '192.0.2.10' netmask  '255.255.255.0' up exited with non-zero status 1
  [1]
  $ addrtool --add eth0 2001:db8::5 64
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 exited with non-zero status 1
  [1]
  $ changed

An IPv4 add takes the lowest number that is no suffix on this interface.

  $ fresh; interface eth1 198.51.100.1/24
  $ for label in eth0:1 eth0:web eth0:10 eth0:4 eth0:02 eth1:2; do
  >   ip address add 10.0.0.$((++n))/32 dev "${label%:*}" label $label; done
  $ changed >/dev/null
  $ for n in 2 3 4; do addrtool -a eth0 192.0.2.$n 255.255.255.0; done
  $ addresses | grep 192.0.2
  eth0 192.0.2.1/24
  eth0:2 192.0.2.2/24
  eth0:3 192.0.2.3/24
  eth0:5 192.0.2.4/24

A lone alias with a higher number leaves number 1 free.

  $ fresh
  $ ip address add 10.0.0.1/32 dev eth0 label eth0:2
  $ addrtool -a eth0 10.0.0.2 255.255.255.0; addresses | grep :
  eth0:2 10.0.0.1/32
  eth0:1 10.0.0.2/24
  eth0 2001:db8::1/64

Files do not take a number.

  $ fresh
  $ touch /etc/sysconfig/network-scripts/ifcfg-eth0:1
  $ addrtool -a eth0 10.0.0.2 255.255.255.0; addresses | grep eth0:
  eth0:1 10.0.0.2/24

A delete in the same call comes first, and frees its number.

  $ addrtool -a eth0 10.0.0.3 255.255.255.0 -d 10.0.0.2; addresses | grep eth0:
  eth0:1 10.0.0.3/24

The lowest set bit of the netmask decides. The command and the file have the netmask made from it.

  $ fresh; record
  $ for netmask in 255.255.255.128 255.0.255.0 0.0.255.0 0.0.0.255 128.0.0.0 255.255.255.255 \
  >     0.0.0.0; do
  >   addrtool -a eth0 10.0.0.5 $netmask
  >   grep NETMASK /etc/sysconfig/network-scripts/ifcfg-eth0:1; done
  ifconfig [eth0:1] [10.0.0.5] [netmask] [255.255.255.128] [up]
  NETMASK="255.255.255.128"
  ifconfig [eth0:1] [10.0.0.5] [netmask] [255.255.255.0] [up]
  NETMASK="255.255.255.0"
  ifconfig [eth0:1] [10.0.0.5] [netmask] [255.255.255.0] [up]
  NETMASK="255.255.255.0"
  ifconfig [eth0:1] [10.0.0.5] [netmask] [255.255.255.255] [up]
  NETMASK="255.255.255.255"
  ifconfig [eth0:1] [10.0.0.5] [netmask] [128.0.0.0] [up]
  NETMASK="128.0.0.0"
  ifconfig [eth0:1] [10.0.0.5] [netmask] [255.255.255.255] [up]
  NETMASK="255.255.255.255"
  ifconfig [eth0:1] [10.0.0.5] [netmask] [255.255.255.255] [up]
  NETMASK="255.255.255.255"

A netmask of zeros adds an address of length 32.

  $ fresh
  $ addrtool -a eth0 10.0.0.5 0.0.0.0; addresses | grep eth0:
  eth0:1 10.0.0.5/32

A text that is no netmask is refused, before the interface is looked at.

  $ fresh
  $ for netmask in 24 '' 255.255.255 '255.255.255.0 ' ' 255.255.255.0' 255.255.255.256 \
  >     255.255.255.00 x; do
  >   streams addrtool -a eth9 10.0.0.5 "$netmask"; done
  2: 24: cannot convert to netmask
  2: : cannot convert to netmask
  2: 255.255.255: cannot convert to netmask
  2: 255.255.255.0 : cannot convert to netmask
  2:  255.255.255.0: cannot convert to netmask
  2: 255.255.255.256: cannot convert to netmask
  2: 255.255.255.00: cannot convert to netmask
  2: x: cannot convert to netmask
  [1]
  $ changed

An action that comes before the add is done although the netmask is wrong.

  $ addrtool -v 10.0.0.1 -a eth0 2001:db8::5 x
  0x: cannot convert to int
  [1]
  $ addrtool -l -a eth0 192.0.2.10 24
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  24: cannot convert to netmask
  [1]

The address reaches the command and the file as typed, even if no host can have it.

  $ fresh; record
  $ for address in ' 10.0.0.5 ' 10.0.0.013 10.0.0.5/28 '' '"' 'a; $(id) *' '%s\n' $'two\nlines' \
  >     -x 0.0.0.0 192.0.2.255; do
  >   addrtool -a eth0 -- "$address" 255.255.255.0
  >   sed '1d; $d' /etc/sysconfig/network-scripts/ifcfg-eth0:1; done
  ifconfig [eth0:1] [ 10.0.0.5 ] [netmask] [255.255.255.0] [up]
  IPADDR=" 10.0.0.5 "
  ifconfig [eth0:1] [10.0.0.013] [netmask] [255.255.255.0] [up]
  IPADDR="10.0.0.013"
  ifconfig [eth0:1] [10.0.0.5/28] [netmask] [255.255.255.0] [up]
  IPADDR="10.0.0.5/28"
  ifconfig [eth0:1] [] [netmask] [255.255.255.0] [up]
  IPADDR=""
  ifconfig [eth0:1] ["] [netmask] [255.255.255.0] [up]
  IPADDR="""
  ifconfig [eth0:1] [a; $(id) *] [netmask] [255.255.255.0] [up]
  IPADDR="a; $(id) *"
  ifconfig [eth0:1] [%s\n] [netmask] [255.255.255.0] [up]
  IPADDR="%s\n"
  ifconfig [eth0:1] [two
  lines] [netmask] [255.255.255.0] [up]
  IPADDR="two
  lines"
  ifconfig [eth0:1] [-x] [netmask] [255.255.255.0] [up]
  IPADDR="-x"
  ifconfig [eth0:1] [0.0.0.0] [netmask] [255.255.255.0] [up]
  IPADDR="0.0.0.0"
  ifconfig [eth0:1] [192.0.2.255] [netmask] [255.255.255.0] [up]
  IPADDR="192.0.2.255"

A single quote in an IPv4 operand or in the interface's name is not escaped.

  $ fresh; record
  $ addrtool -a eth0 "10.0.0.5' x '" 255.255.255.0
  ifconfig [eth0:1] [10.0.0.5] [x] [] [netmask] [255.255.255.0] [up]
  $ addrtool -a eth0 "10.0.0.5'; echo ran; echo '" 255.255.255.0
  ifconfig [eth0:1] [10.0.0.5]
  ran
   netmask 255.255.255.0 up
  $ changed
  + ifcfg-eth0:1 0:0 644
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="10.0.0.5'; echo ran; echo '"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"
  $ interface "e'e'" 10.1.1.1/24
  $ addrtool -a "e'e'" 10.1.2.1 255.255.255.0
  ifconfig [ee:1] [10.1.2.1] [netmask] [255.255.255.0] [up]

The kernel has what ifconfig makes of the address.

  $ for address in 10.0.0.013 010.0.0.9 192.0.2 192.0.2.20/24 192.0.2.20/25 192.0.2.20/32; do
  >   fresh; addrtool -a eth0 $address 255.255.255.0
  >   addresses | grep eth0:; grep IPADDR /etc/sysconfig/network-scripts/ifcfg-eth0:1; done
  eth0:1 10.0.0.11/24
  IPADDR="10.0.0.013"
  eth0:1 8.0.0.9/24
  IPADDR="010.0.0.9"
  eth0:1 192.0.0.2/24
  IPADDR="192.0.2"
  eth0:1 192.0.2.20/24
  IPADDR="192.0.2.20/24"
  eth0:1 192.0.2.20/25
  IPADDR="192.0.2.20/25"
  eth0:1 192.0.2.20/0
  IPADDR="192.0.2.20/32"

An alias that is not listed takes no number, so an add replaces it.

  $ fresh
  $ addrtool -a eth0 127.0.0.1 255.0.0.0
  $ addrtool -a eth0 192.0.2.10 255.255.255.0
  $ ip -o address show dev eth0 to 127.0.0.1; changed
  + eth0:1 192.0.2.10/24
  + ifcfg-eth0:1 0:0 644
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"

An address that another interface has can be added.

  $ fresh; interface eth1 198.51.100.7/24 2001:db8:1::7/64 && changed >/dev/null
  $ addrtool -a eth0 198.51.100.7 255.255.255.0
  $ addrtool -a eth0 2001:db8:1::7 64
  $ changed
  + eth0:1 198.51.100.7/24
  + eth0 2001:db8:1::7/64
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8:1::7/64"
  + ifcfg-eth0:1 0:0 644
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="198.51.100.7"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"

Whether the interface has the address already is left to the command, which gets the next number.

  $ fresh; record
  $ ip address add 192.0.2.10/24 dev eth0 label eth0:1
  $ addrtool -a eth0 192.0.2.1 255.255.255.0
  ifconfig [eth0:2] [192.0.2.1] [netmask] [255.255.255.0] [up]
  $ addrtool -a eth0 192.0.2.10 255.255.255.0
  ifconfig [eth0:2] [192.0.2.10] [netmask] [255.255.255.0] [up]
  $ addrtool -a eth0 2001:db8::1 64
  ifconfig [eth0] [add] [2001:db8::1/64]

The loopback interface is an interface like any other.

  $ fresh
  $ addrtool -a lo 198.51.100.1 255.255.255.255
  lo: no such network interface.
  [1]
  $ ip address add 10.9.9.9/32 dev lo
  $ addrtool -a lo 198.51.100.1 255.255.255.255
  $ addrtool -a lo 2001:db8::5 128
  $ changed
  + lo 10.9.9.9/32
  + lo:1 198.51.100.1/32
  + lo 2001:db8::5/128
  + ifcfg-lo:1 0:0 644
  + ifcfg-lo:1: DEVICE="lo:1"
  + ifcfg-lo:1: IPADDR="198.51.100.1"
  + ifcfg-lo:1: NETMASK="255.255.255.255"

An IPv4 add needs an interface that the listing shows, named exactly.

  $ fresh; interface eth1; interface eth2
  $ ip address add 169.254.1.1/16 dev eth2 scope link
  $ ip link property add dev eth0 altname lan0
  $ ip address add 192.0.2.10/24 dev eth0 label eth0:1; changed >/dev/null
  $ for interface in eth1 eth2 eth0:1 lan0 eth9 ETH0 eth lo 'eth0 ' ' eth0' $'eth0\nx'; do
  >   streams addrtool -a "$interface" 10.0.0.1 255.255.255.0; done
  2: eth1: no such network interface.
  2: eth2: no such network interface.
  2: eth0:1: no such network interface.
  2: lan0: no such network interface.
  2: eth9: no such network interface.
  2: ETH0: no such network interface.
  2: eth: no such network interface.
  2: lo: no such network interface.
  2: eth0 : no such network interface.
  2:  eth0: no such network interface.
  2: eth0
  2: x: no such network interface.
  [1]
  $ changed

An interface that has only an IPv6 address or only aliases can get an IPv4 address.

  $ interface eth3 2001:db8:3::1/64
  $ addrtool -a eth3 10.0.0.1 255.255.255.0; addresses | grep eth3
  eth3:1 10.0.0.1/24
  eth3 2001:db8:3::1/64
  $ interface eth4; ip address add 10.0.0.1/32 dev eth4 label eth4:1
  $ addrtool -a eth4 10.0.0.2 255.255.255.255; addresses | grep eth4
  eth4:1 10.0.0.1/32
  eth4:2 10.0.0.2/32

An interface that is down stays down.

  $ fresh; ip link set eth0 down
  $ addrtool -a eth0 198.51.100.1 255.255.255.0
  $ addrtool -a eth0 2001:db8::5 64
  $ addrtool -l; ip link show dev eth0 up
  192.0.2.1 255.255.255.0 eth0 1
  198.51.100.1 255.255.255.0 eth0 0
  2001:db8::5 64 eth0 0

An IPv6 add goes to the interface itself and into the list of its file.

  $ fresh
  $ streams addrtool --add eth0 2001:db8::5 64
  $ changed
  + eth0 2001:db8::5/64
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::5/64"

A later IPv6 add costs the last entry of the list its prefix length, because of the closing quote.

  $ addrtool -a eth0 2001:db8::6 64
  $ addrtool -a eth0 2001:db8::7 64
  $ changed
  + eth0 2001:db8::7/64
  + eth0 2001:db8::6/64
  - ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::5/64"
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::7/64 2001:db8::6/64 2001:db8::5/0"

The command of an IPv6 add has no quotes.

  $ fresh; record 'exit 1'
  $ streams addrtool -a eth0 2001:DB8:0::5 48
  1: ifconfig [eth0] [add] [2001:DB8:0::5/48]
  2: /sbin/ifconfig eth0 add 2001:DB8:0::5/48 exited with non-zero status 1
  [1]

A colon alone makes an address IPv6. Whether it can be used is left to the command.

  $ fresh
  $ for address in : 192.0.2.10: 2001:db8::g :: ::1 ff02::1; do record 'exit 1'
  >   addrtool -a eth0 $address 64; done
  ifconfig [eth0] [add] [:/64]
  /sbin/ifconfig eth0 add :/64 exited with non-zero status 1
  ifconfig [eth0] [add] [192.0.2.10:/64]
  /sbin/ifconfig eth0 add 192.0.2.10:/64 exited with non-zero status 1
  ifconfig [eth0] [add] [2001:db8::g/64]
  /sbin/ifconfig eth0 add 2001:db8::g/64 exited with non-zero status 1
  ifconfig [eth0] [add] [::/64]
  /sbin/ifconfig eth0 add ::/64 exited with non-zero status 1
  ifconfig [eth0] [add] [::1/64]
  /sbin/ifconfig eth0 add ::1/64 exited with non-zero status 1
  ifconfig [eth0] [add] [ff02::1/64]
  /sbin/ifconfig eth0 add ff02::1/64 exited with non-zero status 1
  [1]

The prefix length reaches the command and the file as a plain number, whatever its size.

  $ fresh; record
  $ for length in 0 200 65535 '64 ' ' 64' $'\t+ 064\n' + '+ '; do
  >   echo IPV6INIT=yes >/etc/sysconfig/network-scripts/ifcfg-eth0
  >   addrtool -a eth0 2001:db8::5 "$length"
  >   grep SECONDARIES /etc/sysconfig/network-scripts/ifcfg-eth0; done
  ifconfig [eth0] [add] [2001:db8::5/0]
  IPV6ADDR_SECONDARIES="2001:db8::5/0"
  ifconfig [eth0] [add] [2001:db8::5/200]
  IPV6ADDR_SECONDARIES="2001:db8::5/200"
  ifconfig [eth0] [add] [2001:db8::5/65535]
  IPV6ADDR_SECONDARIES="2001:db8::5/65535"
  ifconfig [eth0] [add] [2001:db8::5/64]
  IPV6ADDR_SECONDARIES="2001:db8::5/64"
  ifconfig [eth0] [add] [2001:db8::5/64]
  IPV6ADDR_SECONDARIES="2001:db8::5/64"
  ifconfig [eth0] [add] [2001:db8::5/64]
  IPV6ADDR_SECONDARIES="2001:db8::5/64"
  +: cannot convert to int
  ifconfig [eth0] [add] [2001:db8::5/0]
  IPV6ADDR_SECONDARIES="2001:db8::5/0"

A text that is no number from 0 to 65535 is refused, before the interface is looked at.

  $ fresh
  $ for length in 64x -64 70000 65536 '' ' ' '6 4' 0x40 /64 255.255.255.0 $'64\v'; do
  >   streams addrtool -a eth9 -- 2001:db8::5 "$length"; done
  2: 64x: cannot convert to int
  2: -64: cannot convert to int
  2: 70000: cannot convert to int
  2: 65536: cannot convert to int
  2: : cannot convert to int
  2:  : cannot convert to int
  2: 6 4: cannot convert to int
  2: 0x40: cannot convert to int
  2: /64: cannot convert to int
  2: 255.255.255.0: cannot convert to int
  2: 64\x0b: cannot convert to int (esc)
  [1]
  $ changed

The address of an IPv6 add reaches the shell and the file as typed.

  $ fresh; record
  $ addrtool -a eth0 ' 2001:DB8:0::5' 64
  ifconfig [eth0] [add] [2001:DB8:0::5/64]
  $ addrtool -a eth0 '2001:db8::$((4+5))' 64
  ifconfig [eth0] [add] [2001:db8::9/64]
  $ addrtool -a eth0 '2001:db8::6; echo ran' 64
  ifconfig [eth0] [add] [2001:db8::6]
  ran/64
  $ addrtool -a eth0 "'2001:db8::7'" 64
  ifconfig [eth0] [add] [2001:db8::7/64]
  2001:db8::6;: cannot parse IPv6 address
  System error 2: No such file or directory
  2001:db8::6;: cannot parse IPv6 address
  System error 2: No such file or directory
  $ tail -n 1 /etc/sysconfig/network-scripts/ifcfg-eth0
  IPV6ADDR_SECONDARIES="2001:db8::6; echo ran/64 2001:db8::$((4+5))/64 2001:DB8:0::5/0"

The interface of an IPv6 add reaches the shell as typed.

  $ fresh; record
  $ for interface in eth9 eth0:1 '$(echo eth7)' 'eth0 x' "'e t'" ' eth0 '; do
  >   addrtool -a "$interface" 2001:db8::5 64; done
  ifconfig [eth9] [add] [2001:db8::5/64]
  ifconfig [eth0:1] [add] [2001:db8::5/64]
  ifconfig [eth7] [add] [2001:db8::5/64]
  ifconfig [eth0] [x] [add] [2001:db8::5/64]
  ifconfig [e t] [add] [2001:db8::5/64]
  ifconfig [eth0] [add] [2001:db8::5/64]
  $ changed

The command alone refuses an interface that does not exist, an address that is there, and a bad
address.

  $ fresh
  $ addrtool -a eth9 2001:db8::5 64 2>&1 | tail -n 1
  /sbin/ifconfig eth9 add 2001:db8::5/64 exited with non-zero status 1
  $ addrtool -a eth0 2001:db8::1 64 2>&1 | tail -n 1
  /sbin/ifconfig eth0 add 2001:db8::1/64 exited with non-zero status 1
  $ addrtool -a eth0 : 64 2>&1 | tail -n 1
  /sbin/ifconfig eth0 add :/64 exited with non-zero status 1
  $ addrtool -a eth0 2001:db8::g 64 2>&1 | tail -n 1
  /sbin/ifconfig eth0 add 2001:db8::g/64 exited with non-zero status 1
  $ addrtool -a eth0 2001:db8::6 129 2>&1 | tail -n 1
  /sbin/ifconfig eth0 add 2001:db8::6/129 exited with non-zero status 3
  $ addrtool -a eth0 256.1.1.1 255.255.255.0 2>&1 | tail -n 1
  /sbin/ifconfig 'eth0:1' '256.1.1.1' netmask  '255.255.255.0' up exited with non-zero status 1
  $ changed

An IPv6 address on an alias label goes into the file of the alias.

  $ fresh; addrtool -a eth0 192.0.2.10 255.255.255.0; changed >/dev/null
  $ addrtool -a eth0:1 2001:db8::9 64
  $ changed
  + eth0 2001:db8::9/64
  + ifcfg-eth0:1: IPV6ADDR_SECONDARIES="2001:db8::9/64"

A delete looks for it in the file of the interface.

  $ addrtool -d 2001:db8::9
  $ changed
  - eth0 2001:db8::9/64

An IPv6 address that is not listed is saved all the same.

  $ fresh
  $ for address in fe80::5 ::2; do
  >   addrtool -a eth0 $address 64
  >   ip -6 -o address show dev eth0 to $address | grep -o "$address/64"; done
  fe80::5/64
  ::2/64
  $ changed; addrtool -d fe80::5; addrtool -d ::2
  + eth0 ::2/64
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="::2/64 fe80::5/0"
  fe80::5: not configured
  ::2: not configured
  [1]

No file of an interface is created.

  $ fresh; interface eth1 2001:db8:1::1/64
  $ rm /etc/sysconfig/network-scripts/ifcfg-eth1; changed >/dev/null
  $ streams addrtool -a eth1 2001:db8:1::5 64
  $ streams addrtool -d 2001:db8:1::1
  $ changed
  - eth1 2001:db8:1::1/64
  + eth1 2001:db8:1::5/64
