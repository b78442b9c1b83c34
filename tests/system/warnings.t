What the manual page warns of, as far as a sandbox can show it. The other themes have the rest.

A saved length of 0, once it is up, is a default route that wins over a gateway of a high metric.

  $ fresh || exit 80
  $ addrtool -a eth0 2001:db8::5 64 && addrtool -a eth0 2001:db8::6 64
  $ grep -o '2001:db8::5.*' /etc/sysconfig/network-scripts/ifcfg-eth0
  2001:db8::5/0"
  $ ip address del 2001:db8::5/64 dev eth0; ip address add 2001:db8::5/0 dev eth0
  $ ip route add default via 2001:db8::99 dev eth0 metric 1024
  $ ip -6 route get 2600::1 | grep -o 'via [^ ]*\|metric [0-9]*'
  metric 256
  $ ip -6 route del default via 2001:db8::99; ip route add default via 2001:db8::99 dev eth0 metric 1
  $ ip -6 route get 2600::1 | grep -o 'via [^ ]*\|metric [0-9]*'
  via 2001:db8::99
  metric 1

Two adds at the same time take the same number. Both end with 0, and one address is lost.

  $ fresh; cp /sbin/ifconfig /run/ifconfig
  $ record '[[ -e /run/second ]] || {
  >   touch /run/second; addrtool -a eth0 192.0.2.11 255.255.255.0; echo "status $?"; }
  > /run/ifconfig "$@"'
  $ addrtool -a eth0 192.0.2.10 255.255.255.0
  ifconfig [eth0:1] [192.0.2.10] [netmask] [255.255.255.0] [up]
  ifconfig [eth0:1] [192.0.2.11] [netmask] [255.255.255.0] [up]
  status 0
  $ changed
  + eth0:1 192.0.2.10/24
  + ifcfg-eth0:1 0:0 644
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"

Under the lock that all callers share, six adds at the same time lose none.

  $ fresh
  $ seq 6 | xargs -P 6 -I N flock /run/addrtool.lock addrtool -a eth0 192.0.2.1N 255.255.255.0
  $ addresses | grep -c eth0:; cat /etc/sysconfig/network-scripts/ifcfg-eth0:[1-6] | grep -c IPADDR
  6
  6

An address in another form is up, and saved as it was typed. Swapped operands add the netmask.

  $ for operands in '192.0.2.9 ,255.255.255.0' $'192.0.2.9\r,255.255.255.0' '192.0.2.9/28,255.255.255.0' \
  >   '192.0.9,255.255.255.0' '255.255.255.0,192.0.2.10' '192.0.2.9,192.0.2.1'; do
  >   fresh; addrtool -a eth0 "${operands%,*}" "${operands#*,}"; addresses | grep eth0:
  >   grep IPADDR /etc/sysconfig/network-scripts/ifcfg-eth0:1 | cat -v; done
  eth0:1 192.0.2.9/24
  IPADDR="192.0.2.9 "
  eth0:1 192.0.2.9/24
  IPADDR="192.0.2.9^M"
  eth0:1 192.0.2.9/28
  IPADDR="192.0.2.9/28"
  eth0:1 192.0.0.9/24
  IPADDR="192.0.9"
  eth0:1 255.255.255.0/31
  IPADDR="255.255.255.0"
  eth0:1 192.0.2.9/32
  IPADDR="192.0.2.9"

An IPv6 address with a blank behind it is up with the length 128, although the add fails.

  $ fresh
  $ addrtool -a eth0 '2001:db8::5 ' 64 2>&1 | sed 1q; addrtool -a eth0 '' 255.255.255.0 2>&1 | sed 1q
  Unknown server error
  Unknown server error
  $ changed
  + eth0 2001:db8::5/128

A deleted address takes along the routes with its source address.

  $ fresh; addrtool -a eth0 192.0.2.10 255.255.255.0
  $ ip route add default via 192.0.2.254 src 192.0.2.10; ip route add 203.0.113.0/24 via 192.0.2.254
  $ addrtool -d 192.0.2.10; ip route | cut -d ' ' -f 1
  192.0.2.0/24
  203.0.113.0/24

If the kernel drops all IPv4 addresses of the interface, its routes go, although an alias comes back.

  $ fresh; ip address del 192.0.2.1/24 dev eth0
  $ for n in 1 2; do ip address add 192.0.2.$n/24 dev eth0 label eth0:$n; done
  $ ip route add default via 192.0.2.254
  $ addrtool -d 192.0.2.1; addresses | grep eth0:; ip route | cut -d ' ' -f 1
  eth0:2 192.0.2.2/24
  192.0.2.0/24

The last IPv4 address can be deleted if it is an alias.

  $ addrtool -d 192.0.2.2; addrtool -l
  2001:db8::1 64 eth0 0

The suffix decides what a delete takes down, whatever stands before it in the label.

  $ fresh
  $ ip address add 198.51.100.1/24 dev eth0 label eth0x:1
  $ ip address add 203.0.113.1/24 dev eth0 label eth0:1
  $ addrtool -d 198.51.100.1; addresses | grep :1
  eth0x:1 198.51.100.1/24
  eth0 2001:db8::1/64

A rename of the interface can give two addresses the same label.

  $ fresh
  $ for n in 2 3; do ip address add 198.51.100.$n/32 dev eth0; done
  $ ip address add 203.0.113.1/32 dev eth0 label eth0:2; ip link set eth0 name lan0
  $ addresses | sort
  lan0 192.0.2.1/24
  lan0 2001:db8::1/64
  lan0:2 198.51.100.2/32
  lan0:2 203.0.113.1/32
  lan0:3 198.51.100.3/32

The file of an alias that is down goes to the next add. A delete does not find its address.

  $ fresh; addrtool -a eth0 192.0.2.10 255.255.255.0; ip address del 192.0.2.10/24 dev eth0
  $ addrtool -d 192.0.2.10; changed
  192.0.2.10: not configured.
  + ifcfg-eth0:1 0:0 644
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"
  $ addrtool -a eth0 192.0.2.11 255.255.255.0; changed
  + eth0:1 192.0.2.11/24
  - ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: IPADDR="192.0.2.11"

A last line without a line feed is damaged, and so is what follows a second list, for a shell.

  $ fresh; cd /etc/sysconfig/network-scripts
  $ printf 'DEVICE=eth0\nONBOOT=yes' >ifcfg-eth0; addrtool -a eth0 2001:db8::5 64
  $ (. ./ifcfg-eth0; echo "$ONBOOT")
  yesIPV6ADDR_SECONDARIES=2001:db8::5/64
  $ printf 'IPV6ADDR_SECONDARIES="2001:db8::%s/64"\n' 5 6 >ifcfg-eth0; echo ONBOOT=yes >>ifcfg-eth0
  $ addrtool -a eth0 2001:db8::7 64; (. ./ifcfg-eth0 2>/dev/null; echo "$ONBOOT")
  
  $ cat ifcfg-eth0; cd /etc
  IPV6ADDR_SECONDARIES="2001:db8::7/64 2001:db8::5/0"
  IPV6ADDR_SECONDARIES="2001:db8::7/64 2001:db8::5/0"
   2001:db8::6/0"
  ONBOOT=yes

The kernel's refusals have the words that the manual page explains.

  $ fresh; refused() { "$@" 2>&1 | sed -n '1s/.*: //p'; }
  $ echo 1 >/proc/sys/net/ipv6/conf/eth0/disable_ipv6; refused addrtool -a eth0 2001:db8::5 64
  Permission denied
  $ fresh; refused addrtool -a eth0 224.0.0.5 255.255.255.0
  Invalid argument
  $ ip link set eth0 mtu 1000; refused addrtool -a eth0 2001:db8::5 64
  Invalid argument
  $ refused setpriv --bounding-set -net_admin --inh-caps -net_admin addrtool -a eth0 192.0.2.5 255.255.255.0
  Operation not permitted
  $ refused addrtool -a eth9 2001:db8::5 64
  No such device
  $ for length in 129 -1; do addrtool -a eth0 2001:db8::5/$length 64 2>&1 | sed 1q; done
  Usage:
  Usage:
