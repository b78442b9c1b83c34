Deleting an address.

An IPv4 delete takes the alias down and removes its file, and prints nothing.

  $ fresh || exit 80
  $ addrtool -a eth0 192.0.2.10 255.255.255.0; addrtool -a eth0 198.51.100.1 255.255.255.0
  $ changed >/dev/null
  $ streams addrtool --del 192.0.2.10
  $ changed
  - eth0:1 192.0.2.10/24
  - ifcfg-eth0:1 0:0 644
  - ifcfg-eth0:1: DEVICE="eth0:1"
  - ifcfg-eth0:1: IPADDR="192.0.2.10"
  - ifcfg-eth0:1: NETMASK="255.255.255.0"

The command has the label in single quotes.

  $ ip address add 10.0.0.1/32 dev eth0 label eth0:web:2
  $ ip address add 10.0.0.2/32 dev eth0 label "eth0:a b"
  $ ip address add 10.0.0.3/32 dev eth0 label "eth0:'x'"
  $ record 'exit 1'
  $ streams addrtool -d 10.0.0.1
  1: ifconfig [eth0:web:2] [down]
  2: /sbin/ifconfig 'eth0:web:2' down exited with non-zero status 1
  [1]
  $ streams addrtool -d 10.0.0.2
  1: ifconfig [eth0:a b] [down]
  2: /sbin/ifconfig 'eth0:a b' down exited with non-zero status 1
  [1]

A single quote in a label is not escaped.

  $ streams addrtool -d 10.0.0.3
  1: ifconfig [eth0:x] [down]
  2: /sbin/ifconfig 'eth0:'x'' down exited with non-zero status 1
  [1]

A failed command is not repeated, and the file stays.

  $ fresh; addrtool -a eth0 192.0.2.10 255.255.255.0; addrtool -a eth0 2001:db8::5 64
  $ changed >/dev/null; record 'exit 1'
  $ streams addrtool -d 192.0.2.10
  1: ifconfig [eth0:1] [down]
  2: /sbin/ifconfig 'eth0:1' down exited with non-zero status 1
  [1]
  $ streams addrtool -d 2001:DB8::5
  1: ifconfig [eth0] [del] [2001:db8::5/64]
  2: /sbin/ifconfig eth0 del 2001:db8::5/64 exited with non-zero status 1
  [1]
  $ changed

An address whose alias is still there after a successful command counts as deleted.

  $ record; addrtool -d 192.0.2.10
  ifconfig [eth0:1] [down]
  $ changed
  - ifcfg-eth0:1 0:0 644
  - ifcfg-eth0:1: DEVICE="eth0:1"
  - ifcfg-eth0:1: IPADDR="192.0.2.10"
  - ifcfg-eth0:1: NETMASK="255.255.255.0"

If two addresses have one label, the kernel's first one goes, without an error.

  $ fresh
  $ ip address add 10.0.0.1/32 dev eth0 label eth0:1
  $ ip address add 10.0.0.2/32 dev eth0 label eth0:1; changed >/dev/null
  $ addrtool -d 10.0.0.1
  $ changed
  - eth0:1 10.0.0.1/32
  $ addrtool -d 10.0.0.2
  $ changed
  - eth0:1 10.0.0.2/32

No main address can be deleted.

  $ fresh; interface eth1 203.0.113.7/24 203.0.113.8/24
  $ ip address add 192.0.2.2/24 dev eth0
  $ ip address add 10.0.0.9/32 dev eth0 label eth0
  $ changed >/dev/null
  $ for address in 192.0.2.1 192.0.2.2 10.0.0.9 203.0.113.7 203.0.113.8; do
  >   streams addrtool -d $address; done
  2: 192.0.2.1: cannot delete main IP on interface
  2: 192.0.2.2: cannot delete main IP on interface
  2: 10.0.0.9: cannot delete main IP on interface
  2: 203.0.113.7: cannot delete main IP on interface
  2: 203.0.113.8: cannot delete main IP on interface
  [1]
  $ changed

A main address cannot be deleted if it is there twice.

  $ ip address add 10.0.0.1/8 dev eth0; ip address add 10.0.0.1/16 dev eth0
  $ addrtool -d 10.0.0.1
  10.0.0.1: cannot delete main IP on interface
  [1]

A main address cannot be deleted if it is an alias too.

  $ ip address add 192.0.2.1/32 dev eth0 label eth0:1
  $ addrtool -d 192.0.2.1
  192.0.2.1: cannot delete main IP on interface
  [1]

An alias of a later interface cannot be deleted if an earlier interface has it as a main address.

  $ ip address add 192.0.2.1/24 dev eth1 label eth1:1
  $ addrtool -d 192.0.2.1
  192.0.2.1: cannot delete main IP on interface
  [1]

An alias of an earlier interface can be deleted if a later interface has it as a main address.

  $ ip address add 203.0.113.7/24 dev eth0 label eth0:7; changed >/dev/null
  $ addrtool -d 203.0.113.7; changed
  - eth0:7 203.0.113.7/24
  $ addrtool -d 203.0.113.7
  203.0.113.7: cannot delete main IP on interface
  [1]

Of two interfaces, the first one by name loses its alias.

  $ fresh; interface eth1; interface eth10; interface ETH
  $ for name in eth1 eth10 ETH; do ip address add 203.0.113.7/32 dev $name label $name:1; done
  $ changed >/dev/null
  $ addrtool -d 203.0.113.7; changed
  - ETH:1 203.0.113.7/32
  $ addrtool -d 203.0.113.7; changed
  - eth1:1 203.0.113.7/32

Of two aliases with the address, the first one in text order of the suffix goes.

  $ fresh
  $ ip address add 203.0.113.7/24 dev eth0 label eth0:2
  $ ip address add 203.0.113.7/32 dev eth0 label eth0:10; changed >/dev/null
  $ record; addrtool -d 203.0.113.7
  ifconfig [eth0:10] [down]

An alias without a file can be deleted, and one whose file cannot be removed.

  $ fresh
  $ mkdir /etc/sysconfig/network-scripts/ifcfg-eth0:1
  $ for n in 1 2; do ip address add 10.0.0.$n/32 dev eth0 label eth0:$n; done; changed >/dev/null
  $ streams addrtool -d 10.0.0.1
  $ streams addrtool -d 10.0.0.2
  $ changed
  - eth0:1 10.0.0.1/32
  - eth0:2 10.0.0.2/32

If the file is a link, the link goes.

  $ fresh; addrtool -a eth0 10.0.0.1 255.255.255.255
  $ ln -sf ifcfg-eth0 /etc/sysconfig/network-scripts/ifcfg-eth0:1; changed >/dev/null
  $ addrtool -d 10.0.0.1
  $ changed
  - eth0:1 10.0.0.1/32
  - ifcfg-eth0:1 0:0 777
  - ifcfg-eth0:1: DEVICE=eth0
  - ifcfg-eth0:1: BOOTPROTO=static
  - ifcfg-eth0:1: ONBOOT=yes
  - ifcfg-eth0:1: IPADDR=192.0.2.1
  - ifcfg-eth0:1: NETMASK=255.255.255.0
  - ifcfg-eth0:1: IPV6INIT=yes
  - ifcfg-eth0:1: IPV6ADDR=2001:db8::1/64

The addresses of 169.254.0.0/16 and fd00::/8 and those of the loopback interface are like any other.

  $ fresh
  $ ip address add 169.254.1.1/16 dev eth0 label eth0:1
  $ ip address add 198.51.100.1/32 dev lo label lo:1
  $ ip address add fd00::1/64 dev eth0 nodad; changed >/dev/null
  $ addrtool -d 169.254.1.1 -d 198.51.100.1 -d fd00::1
  $ changed
  - lo:1 198.51.100.1/32
  - eth0:1 169.254.1.1/16
  - eth0 fd00::1/64

An IPv4 address must be written as the kernel prints it. The message ends in a full stop.

  $ fresh; addrtool -a eth0 10.0.0.1 255.255.255.0; changed >/dev/null
  $ for address in 127.0.0.1 192.0.2.99 10.0.0.01 ' 10.0.0.1' '10.0.0.1 ' 10.0.1 10.0.0.1/24 \
  >     10.0.0.1,10.0.0.1 10.0.0. eth0 localhost ''; do
  >   streams addrtool -d "$address"; done
  2: 127.0.0.1: not configured.
  2: 192.0.2.99: not configured.
  2: 10.0.0.01: not configured.
  2:  10.0.0.1: not configured.
  2: 10.0.0.1 : not configured.
  2: 10.0.1: not configured.
  2: 10.0.0.1/24: not configured.
  2: 10.0.0.1,10.0.0.1: not configured.
  2: 10.0.0.: not configured.
  2: eth0: not configured.
  2: localhost: not configured.
  2: : not configured.
  [1]
  $ changed

Each of two deletes in one call reads the kernel anew.

  $ fresh
  $ for n in 1 2 3; do addrtool -a eth0 198.51.100.$n 255.255.255.255; done; changed >/dev/null
  $ addrtool -d 198.51.100.1 -d 198.51.100.2
  $ changed
  - eth0:1 198.51.100.1/32
  - eth0:2 198.51.100.2/32
  - ifcfg-eth0:1 0:0 644
  - ifcfg-eth0:1: DEVICE="eth0:1"
  - ifcfg-eth0:1: IPADDR="198.51.100.1"
  - ifcfg-eth0:1: NETMASK="255.255.255.255"
  - ifcfg-eth0:2 0:0 644
  - ifcfg-eth0:2: DEVICE="eth0:2"
  - ifcfg-eth0:2: IPADDR="198.51.100.2"
  - ifcfg-eth0:2: NETMASK="255.255.255.255"
  $ addrtool -a eth0 2001:db8::5 64
  $ addrtool -d 2001:db8::5 -d 2001:db8::1
  2001:db8::1: cannot remove last address from eth0
  [1]

The same delete twice in one call is done twice.

  $ addrtool -d 198.51.100.3 -d 198.51.100.3
  198.51.100.3: not configured.
  [1]
  $ ip address add 10.0.0.1/24 dev eth0 label eth0:1
  $ ip address add 10.0.0.1/32 dev eth0 label eth0:2; changed >/dev/null
  $ addrtool -d 10.0.0.1 -d 10.0.0.1; changed
  - eth0:1 10.0.0.1/24
  - eth0:2 10.0.0.1/32

A delete that fails ends the call.

  $ fresh; addrtool -a eth0 10.0.0.1 255.255.255.0; changed >/dev/null
  $ addrtool -d 10.0.0.9 -d 10.0.0.1 -a eth0 10.0.0.2 255.255.255.0
  10.0.0.9: not configured.
  [1]
  $ addrtool -d 10.0.0.1 -d 10.0.0.9 -a eth0 10.0.0.2 255.255.255.0
  10.0.0.9: not configured.
  [1]
  $ changed
  - eth0:1 10.0.0.1/24
  - ifcfg-eth0:1 0:0 644
  - ifcfg-eth0:1: DEVICE="eth0:1"
  - ifcfg-eth0:1: IPADDR="10.0.0.1"
  - ifcfg-eth0:1: NETMASK="255.255.255.0"

An IPv6 delete takes the address from the kernel and from the list, and prints nothing.

  $ fresh; addrtool -a eth0 2001:db8::5 64; changed >/dev/null
  $ streams addrtool --del 2001:db8::5
  $ changed
  - eth0 2001:db8::5/64
  - ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::5/64"

Any spelling of an IPv6 address will do. The command has the kernel's text and length, and no
quotes.

  $ ip address add 2001:db8::5/48 dev eth0 nodad; record 'exit 1'
  $ for address in 2001:db8::5 2001:DB8:0:0::5 2001:db8::0.0.0.5 \
  >     2001:0db8:0000:0000:0000:0000:0000:0005; do
  >   addrtool -d $address; done
  ifconfig [eth0] [del] [2001:db8::5/48]
  /sbin/ifconfig eth0 del 2001:db8::5/48 exited with non-zero status 1
  ifconfig [eth0] [del] [2001:db8::5/48]
  /sbin/ifconfig eth0 del 2001:db8::5/48 exited with non-zero status 1
  ifconfig [eth0] [del] [2001:db8::5/48]
  /sbin/ifconfig eth0 del 2001:db8::5/48 exited with non-zero status 1
  ifconfig [eth0] [del] [2001:db8::5/48]
  /sbin/ifconfig eth0 del 2001:db8::5/48 exited with non-zero status 1
  [1]

Nor has an interface's name any.

  $ fresh; interface 'e$((1))' 2001:db8:1::1/64 2001:db8:1::2/64; record
  $ addrtool -d 2001:db8:1::1
  ifconfig [e1] [del] [2001:db8:1::1/64]

Any spelling of the address is found in the list, however it was added.

  $ fresh
  $ spellings='2001:db8::5 2001:DB8:0:0::5 2001:db8::0.0.0.5'
  $ for added in $spellings; do for deleted in $spellings; do
  >   addrtool -a eth0 $added 64; addrtool -d $deleted; done; done; changed

An IPv6 address whose text is no such address, or that is not listed, is not configured. There is no
full stop.

  $ ip address add fe80::1/64 dev eth0; ip address add ::2/64 dev eth0
  $ ip address add 2001:db8::7/64 dev eth0 valid_lft 600 preferred_lft 600
  $ ip address add 2001:db8::5/64 dev eth0; changed >/dev/null
  $ for address in fe80::1 ::1 ::2 2001:db8::7 2001:db8::99 2001:db8::5/64 : 2001:db8:::5 \
  >     '2001:db8::5 ' \
  >     ' 2001:db8::5' '[2001:db8::5]' 192.0.2.1: ::ffff:192.0.2.1 2001:db8::5%eth0 eth0:1; do
  >   streams addrtool -d "$address"; done
  2: fe80::1: not configured
  2: ::1: not configured
  2: ::2: not configured
  2: 2001:db8::7: not configured
  2: 2001:db8::99: not configured
  2: 2001:db8::5/64: not configured
  2: :: not configured
  2: 2001:db8:::5: not configured
  2: 2001:db8::5 : not configured
  2:  2001:db8::5: not configured
  2: [2001:db8::5]: not configured
  2: 192.0.2.1:: not configured
  2: ::ffff:192.0.2.1: not configured
  2: 2001:db8::5%eth0: not configured
  2: eth0:1: not configured
  [1]
  $ changed

An address that is only saved, but not up, is not configured, and its file stays.

  $ fresh; addrtool -a eth0 192.0.2.10 255.255.255.0; addrtool -a eth0 2001:db8::5 64
  $ ip address del 192.0.2.10/24 dev eth0; ip address del 2001:db8::5/64 dev eth0
  $ changed >/dev/null
  $ addrtool -d 192.0.2.10
  192.0.2.10: not configured.
  [1]
  $ addrtool -d 2001:db8::5
  2001:db8::5: not configured
  [1]
  $ changed

The last IPv6 address of an interface cannot be deleted, whatever other addresses it has.

  $ fresh; addrtool -a eth0 192.0.2.10 255.255.255.0; ip address add fe80::1/64 dev eth0
  $ ip address add 2001:db8::7/64 dev eth0 valid_lft 600 preferred_lft 600
  $ changed >/dev/null
  $ streams addrtool -d 2001:db8::1
  2: 2001:db8::1: cannot remove last address from eth0
  [1]
  $ streams addrtool -d 2001:DB8:0::1
  2: 2001:DB8:0::1: cannot remove last address from eth0
  [1]

It cannot be deleted from a later interface either.

  $ interface eth1 2001:db8:1::1/64 2001:db8::1/64; changed >/dev/null
  $ addrtool -d 2001:db8::1
  2001:db8::1: cannot remove last address from eth0
  [1]
  $ changed

Of two interfaces, the first one by name loses its IPv6 address.

  $ ip address add 2001:db8:1::1/64 dev eth0; changed >/dev/null
  $ addrtool -d 2001:db8:1::1; changed
  - eth0 2001:db8:1::1/64

If the first IPv6 address in the file goes, the first one of the list takes its place.

  $ fresh; addrtool -a eth0 2001:db8::5 64; addrtool -a eth0 2001:db8::6 64; changed >/dev/null
  $ addrtool -d 2001:db8::1; changed
  - eth0 2001:db8::1/64
  - ifcfg-eth0: IPV6ADDR=2001:db8::1/64
  - ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::6/64 2001:db8::5/0"
  + ifcfg-eth0: IPV6ADDR=2001:db8::6/64
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::5/0"

The last address of the list becomes the first one without its prefix length, because of the closing
quote.

  $ addrtool -d 2001:db8::6; changed
  - eth0 2001:db8::6/64
  - ifcfg-eth0: IPV6ADDR=2001:db8::6/64
  - ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::5/0"
  + ifcfg-eth0: IPV6ADDR=2001:db8::5/0

If the file has no other IPv6 address, both streams say so, with the address as typed, and the file
stays.

  $ ip address add 2001:db8::9/64 dev eth0 nodad; changed >/dev/null
  $ streams addrtool -d 2001:DB8:0::5
  12: Cannot remove last IPv6 address 2001:DB8:0::5
  12: System error 2: No such file or directory
  $ changed
  - eth0 2001:db8::5/64

A file that does not have the address stays as it is.

  $ fresh; ip address add 2001:db8::9/64 dev eth0 nodad
  $ addrtool -d 2001:db8::9; changed

A deprecated IPv6 address can be deleted.

  $ fresh; ip address add 2001:db8::9/64 dev eth0 preferred_lft 0; changed >/dev/null
  $ addrtool -d 2001:db8::9; changed
  - eth0 2001:db8::9/64
