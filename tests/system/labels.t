The length of an alias label. The kernel keeps 15 bytes, and ifconfig cuts a longer label: it would
change what has the shorter name.

An alias number is free only if the label has at most 15 bytes.

  $ fresh || exit 80
  $ for name in enp193s0f1np enp193s0f1np1 enp193s0f1np12 enx001122334455; do
  >   fresh; n=0; interface $name 10.1.1.1/24
  >   while addrtool -a $name 10.1.3.$((++n)) 255.255.255.255; do :; done
  >   echo "$(addresses | grep -c $name:) aliases, $(files | grep -c DEVICE=.$name:) files"; done
  enp193s0f1np: no free alias number.
  99 aliases, 99 files
  enp193s0f1np1: no free alias number.
  9 aliases, 9 files
  enp193s0f1np12: no free alias number.
  0 aliases, 0 files
  enx001122334455: no free alias number.
  0 aliases, 0 files

A gap is filled as well.

  $ fresh; interface enp193s0f1np1 10.1.1.1/24
  $ for n in 1 2 3 4 6 7 8 9; do
  >   ip address add 10.1.2.$n/32 dev enp193s0f1np1 label enp193s0f1np1:$n; done
  $ changed >/dev/null
  $ addrtool -a enp193s0f1np1 10.1.3.1 255.255.255.255
  $ changed
  + enp193s0f1np1:5 10.1.3.1/32
  + ifcfg-enp193s0f1np1:5 0:0 644
  + ifcfg-enp193s0f1np1:5: DEVICE="enp193s0f1np1:5"
  + ifcfg-enp193s0f1np1:5: IPADDR="10.1.3.1"
  + ifcfg-enp193s0f1np1:5: NETMASK="255.255.255.255"
  $ record
  $ streams addrtool -a enp193s0f1np1 10.1.3.2 255.255.255.255
  2: enp193s0f1np1: no free alias number.
  [1]
  $ changed

A short name has room for three digits.

  $ fresh; interface ens3 10.1.1.1/24
  $ for ((n = 1; n < 100; ++n)); do
  >   echo address add 10.1.2.$n/32 dev ens3 label ens3:$n; done | ip -batch -
  $ addrtool -a ens3 10.1.3.1 255.255.255.255; addresses | grep 10.1.3.1
  ens3:100 10.1.3.1/32

A label that an interface's new name makes too long is not taken down.

  $ renamed() { ip link set $1 down && ip link set $1 name $2 && ip link set $2 up; }
  $ fresh; interface eth5 10.1.1.1/24; ip address add 10.1.2.1/32 dev eth5 label eth5:1
  $ renamed eth5 enx001122334455
  $ changed >/dev/null; record
  $ streams addrtool -d 10.1.2.1
  2: enx001122334455:1: alias label too long.
  [1]
  $ changed

Nor is one put back.

  $ fresh; interface eth5 10.1.1.1/24
  $ for suffix in 1 0 10 2; do ip address add 10.1.2.$((++m))/24 dev eth5 label eth5:$suffix; done
  $ renamed eth5 enp193s0f1np1; touch /etc/sysconfig/network-scripts/ifcfg-enp193s0f1np1:{0,1,10,2}
  $ changed >/dev/null
  $ streams addrtool -d 10.1.2.1
  2: enp193s0f1np1:10: alias label too long.
  [1]
  $ changed
  - enp193s0f1np1:1 10.1.2.1/24
  - enp193s0f1np:10 10.1.2.3/24
  - enp193s0f1np1:2 10.1.2.4/24
  - ifcfg-enp193s0f1np1:1 0:0 644

The interface of an IPv6 add has no such limit, and ifconfig cuts it.

  $ fresh; interface enx001122334455 10.1.1.1/24; changed >/dev/null
  $ streams addrtool -a enx001122334455:1 2001:db8:1::8 64
  $ streams addrtool -a enx0011223344556 2001:db8:1::9 64
  $ streams addrtool -a enx001122334455 2001:db8:1::7 64
  $ changed
  + enx001122334455 2001:db8:1::7/64
  + enx001122334455 2001:db8:1::9/64
  + enx001122334455 2001:db8:1::8/64
  + ifcfg-enx001122334455: IPV6ADDR_SECONDARIES="2001:db8:1::7/64"
  $ record; addrtool -a enx001122334455:1 2001:db8:1::5 64
  ifconfig [enx001122334455:1] [add] [2001:db8:1::5/64]
