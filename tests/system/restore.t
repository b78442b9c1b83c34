Aliases that are put back after a delete. With the first address of a subnet the kernel drops the
others, unless promote_secondaries is on.

A delete puts back the aliases that vanish with it, and touches no file but that of the deleted one.

  $ fresh || exit 80
  $ for n in 1 2 3; do addrtool -a eth0 198.51.100.$n 255.255.255.0; done; changed >/dev/null
  $ streams addrtool -d 198.51.100.1
  $ changed
  - eth0:1 198.51.100.1/24
  - ifcfg-eth0:1 0:0 644
  - ifcfg-eth0:1: DEVICE="eth0:1"
  - ifcfg-eth0:1: IPADDR="198.51.100.1"
  - ifcfg-eth0:1: NETMASK="255.255.255.0"

It writes no file for an alias that has none.

  $ rm /etc/sysconfig/network-scripts/ifcfg-eth0:*; changed >/dev/null
  $ addrtool -d 198.51.100.2
  $ changed
  - eth0:2 198.51.100.2/24

They come back in text order of their suffixes, each with its address and length, but not the
deleted one.

  $ fresh
  $ for alias in 1=198.51.100.1/24 2=198.51.100.2/25 10=10.0.0.1/8 web:x=10.0.0.2/32 \
  >     '=10.0.0.3/0' Web=10.0.0.4/1; do
  >   ip address add ${alias#*=} dev eth0 label eth0:${alias%=*}; done
  $ ip -4 -o address show dev eth0 | grep -c eth0:
  6
  $ record 'ip address flush dev eth0 label "eth0:*"'
  $ addrtool -d 198.51.100.1
  ifconfig [eth0:1] [down]
  ifconfig [eth0:] [10.0.0.3] [netmask] [255.255.255.255] [up]
  ifconfig [eth0:10] [10.0.0.1] [netmask] [255.0.0.0] [up]
  ifconfig [eth0:2] [198.51.100.2] [netmask] [255.255.255.128] [up]
  ifconfig [eth0:Web] [10.0.0.4] [netmask] [128.0.0.0] [up]
  ifconfig [eth0:web:x] [10.0.0.2] [netmask] [255.255.255.255] [up]

The command has the same quotes as that of an add.

  $ fresh
  $ for n in 1 2; do ip address add 198.51.100.$n/24 dev eth0 label eth0:$n; done
  $ record 'if [[ $2 == down ]]; then ip address flush dev eth0 label "eth0:*"; else exit 3; fi'
  $ streams addrtool -d 198.51.100.1
  1: ifconfig [eth0:1] [down]
  1: ifconfig [eth0:2] [198.51.100.2] [netmask] [255.255.255.0] [up]
  2: /sbin/ifconfig 'eth0:2' '198.51.100.2' netmask  '255.255.255.0' up exited with non-zero status 3
  [1]

Only what vanished is put back.

  $ fresh
  $ for alias in 1=198.51.100.1/24 2=198.51.100.2/24 3=203.0.113.3/24 4=192.0.2.4/24 \
  >     web=198.51.100.5/24; do
  >   ip address add ${alias#*=} dev eth0 label eth0:${alias%=*}; done; changed >/dev/null
  $ addrtool -d 198.51.100.1
  $ changed | sort
  - eth0:1 198.51.100.1/24
  $ record; addrtool -d 203.0.113.3
  ifconfig [eth0:3] [down]

Aliases come back whatever their lengths are, even if another label or a main address has the
address.

  $ fresh
  $ ip address add 10.0.0.7/32 dev eth0
  $ for alias in 1=198.51.100.1/24 2=10.0.0.6/24 3=10.0.0.6/25 4=10.0.0.7/24; do
  >   ip address add ${alias#*=} dev eth0 label eth0:${alias%=*}; done
  $ record '[[ $2 != down ]] || for n in 1 2 4; do ip address flush dev eth0 label eth0:$n; done'
  $ addrtool -d 198.51.100.1
  ifconfig [eth0:1] [down]
  ifconfig [eth0:2] [10.0.0.6] [netmask] [255.255.255.0] [up]
  ifconfig [eth0:4] [10.0.0.7] [netmask] [255.255.255.0] [up]

An alias is present if its suffix is, whatever its address.

  $ fresh
  $ for n in 1 2; do ip address add 198.51.100.$n/24 dev eth0 label eth0:$n; done
  $ record 'ip address del 198.51.100.1/24 dev eth0
  >   ip address add 10.0.0.9/32 dev eth0 label eth0:2'
  $ addrtool -d 198.51.100.1
  ifconfig [eth0:1] [down]

Aliases come back even if the deleted one is still there.

  $ fresh; for n in 1 2; do ip address add 10.0.0.$n/32 dev eth0 label eth0:$n; done
  $ record '[[ $2 != down ]] || ip address del 10.0.0.2/32 dev eth0'
  $ addrtool -d 10.0.0.1
  ifconfig [eth0:1] [down]
  ifconfig [eth0:2] [10.0.0.2] [netmask] [255.255.255.255] [up]

Suffixes are compared with their case, and whole.

  $ fresh
  $ n=0; for suffix in 1 web 2; do
  >   ip address add 198.51.100.$((++n))/24 dev eth0 label eth0:$suffix; done
  $ record '[[ $2 != down ]] || ip address del 198.51.100.1/24 dev eth0
  >   for s in WEB 20; do
  >     ip address add 10.0.0.$((++n))/32 dev eth0 label eth0:$s 2>/dev/null; done; exit 0'
  $ addrtool -d 198.51.100.1
  ifconfig [eth0:1] [down]
  ifconfig [eth0:2] [198.51.100.3] [netmask] [255.255.255.0] [up]
  ifconfig [eth0:web] [198.51.100.2] [netmask] [255.255.255.0] [up]

A suffix of an address that is not listed does not count, nor one of another interface.

  $ fresh; interface eth1
  $ for n in 1 2 3; do ip address add 198.51.100.$n/24 dev eth0 label eth0:$n; done
  $ ip address add 10.0.0.1/32 dev eth0 label eth0:2 scope host
  $ ip address add 10.0.0.2/32 dev eth1 label eth1:3
  $ record '[[ $2 != down ]] || ip address del 198.51.100.1/24 dev eth0'
  $ addrtool -d 198.51.100.1
  ifconfig [eth0:1] [down]
  ifconfig [eth0:2] [198.51.100.2] [netmask] [255.255.255.0] [up]
  ifconfig [eth0:3] [198.51.100.3] [netmask] [255.255.255.0] [up]

Nothing else that vanished is put back.

  $ fresh; interface eth1 2001:db8:1::1/64
  $ ip address add 198.51.100.1/24 dev eth0 label eth0:1
  $ ip address add 198.51.100.2/24 dev eth0
  $ ip address add 198.51.100.3/24 dev eth0 label eth0:3
  $ ip address add 10.0.0.2/32 dev eth1 label eth1:3
  $ changed >/dev/null; addrtool -d 198.51.100.1
  $ changed
  - eth0:1 198.51.100.1/24
  - eth0 198.51.100.2/24
  $ record '[[ $2 != down ]] || { ip address flush dev eth1; ip address flush dev eth0; }'
  $ ip address add 10.0.0.1/32 dev eth0 label eth0:1; addrtool -d 10.0.0.1
  ifconfig [eth0:1] [down]
  ifconfig [eth0:3] [198.51.100.3] [netmask] [255.255.255.0] [up]

An interface that loses all its addresses gets its aliases back.

  $ fresh; interface eth1
  $ for n in 1 2; do ip address add 203.0.113.$n/30 dev eth1 label eth1:$n; done; changed >/dev/null
  $ addrtool -d 203.0.113.1
  $ changed
  - eth1:1 203.0.113.1/30

With promote_secondaries the kernel keeps the other aliases, so no command follows.

  $ fresh; echo 1 >/proc/sys/net/ipv4/conf/eth0/promote_secondaries
  $ for n in 1 2; do ip address add 198.51.100.$n/24 dev eth0 label eth0:$n; done
  $ record 'ip address del 198.51.100.1/24 dev eth0'
  $ addrtool -d 198.51.100.1; addresses | grep eth0:
  ifconfig [eth0:1] [down]
  eth0:2 198.51.100.2/24

The first command that fails ends it. What was done stays done.

  $ fresh; for n in 1 2 3 4; do
  >   addrtool -a eth0 198.51.100.$n 255.255.255.0; done; changed >/dev/null
  $ record 'case $1-$2 in *-down) ip address del 198.51.100.1/24 dev eth0 ;;
  >   eth0:2-*) ip address add $2/24 dev eth0 label $1 ;; *) exit 1 ;; esac'
  $ streams addrtool -d 198.51.100.1 -d 198.51.100.2
  1: ifconfig [eth0:1] [down]
  1: ifconfig [eth0:2] [198.51.100.2] [netmask] [255.255.255.0] [up]
  1: ifconfig [eth0:3] [198.51.100.3] [netmask] [255.255.255.0] [up]
  2: /sbin/ifconfig 'eth0:3' '198.51.100.3' netmask  '255.255.255.0' up exited with non-zero status 1
  [1]
  $ changed
  - eth0:1 198.51.100.1/24
  - eth0:3 198.51.100.3/24
  - eth0:4 198.51.100.4/24
  - ifcfg-eth0:1 0:0 644
  - ifcfg-eth0:1: DEVICE="eth0:1"
  - ifcfg-eth0:1: IPADDR="198.51.100.1"
  - ifcfg-eth0:1: NETMASK="255.255.255.0"
