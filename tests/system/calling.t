Calling the program as docs/calling.md says.

The snippets of that page are loaded.

  $ fresh || exit 80
  $ snippet() { sed -n "/^\`\`\`$1$/,/^\`\`\`$/{/^\`\`\`/d;p}" "$ROOT/docs/calling.md"; }
  $ eval "$(snippet bash)"
  $ python() {
  >   { snippet python | sed "s|^ADDRTOOL = .*|ADDRTOOL = '$(command -v addrtool)'|"; echo "$1"; } |
  >     /usr/bin/python3 - "${@:2}" 2>&1 | tail -n 1; }

In shell, an address is added and saved once, and all IPv6 lengths stay.

  $ fresh
  $ for times in 1 2; do
  >   present eth0 192.0.2.10 255.255.255.0; present eth0 2001:db8::5 64; present eth0 2001:db8::6 64
  > done; changed
  + eth0:1 192.0.2.10/24
  + eth0 2001:db8::6/64
  + eth0 2001:db8::5/64
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::6/64 2001:db8::5/64"
  + ifcfg-eth0:1 0:0 644
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"
  $ stat -c %a /run/addrtool.lock
  600

In shell, six at a time lose none of ten.

  $ fresh; export -f present
  $ for times in 1 2; do seq 10 19 |
  >   xargs -P 6 -I N bash -c 'present eth0 192.0.2.N 255.255.255.0; present eth0 2001:db8::N 64'; done
  $ addresses | wc -l; grep -l IPADDR /etc/sysconfig/network-scripts/ifcfg-eth0:* | wc -l
  22
  10
  $ grep -o '::1[0-9]/64' /etc/sysconfig/network-scripts/ifcfg-eth0 | wc -l
  10

In shell, what is refused or not saved is said in one line.

  $ fresh
  $ present eth0 '192.0.2.10; id' 255.255.255.0
  192.0.2.10; id: not canonical
  [1]
  $ present '\(;id\)*eth0' 2001:db8::5 64
  2001:db8::5: not canonical
  [1]
  $ present eth9 192.0.2.10 255.255.255.0
  192.0.2.10: no such interface: eth9
  [1]
  $ present eth0 192.0.2 255.255.255.0
  192.0.2: is not up
  [1]
  $ present eth0 2001:db8::1 65
  2001:db8::1: SIOCSIFADDR: File exists
  [1]
  $ rm /etc/sysconfig/network-scripts/*
  $ present eth0 192.0.2.1 255.255.255.0
  192.0.2.1: is not saved
  [1]
  $ present eth0 2001:db8::5 64 2>/dev/null
  2001:db8::5: is not saved
  [1]

In Python, an address is added, saved and deleted, and all IPv6 lengths stay.

  $ fresh
  $ python 'for times in 1, 2:
  >     for text in "192.0.2.10/24", "2001:db8::5/64", "2001:DB8::6/64":
  >         present("eth0", text)'
  $ changed
  + eth0:1 192.0.2.10/24
  + eth0 2001:db8::6/64
  + eth0 2001:db8::5/64
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::6/64 2001:db8::5/64"
  + ifcfg-eth0:1 0:0 644
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"
  $ python 'for text in "192.0.2.10", "2001:db8::1", "192.0.2.10": absent(text)'
  $ changed
  - eth0:1 192.0.2.10/24
  - eth0 2001:db8::1/64
  - ifcfg-eth0: IPV6ADDR=2001:db8::1/64
  - ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::6/64 2001:db8::5/64"
  - ifcfg-eth0:1 0:0 644
  - ifcfg-eth0:1: DEVICE="eth0:1"
  - ifcfg-eth0:1: IPADDR="192.0.2.10"
  - ifcfg-eth0:1: NETMASK="255.255.255.0"
  + ifcfg-eth0: IPV6ADDR=2001:db8::6/64
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::5/64"

In Python, six threads at a time lose none of ten.

  $ fresh
  $ python 'from concurrent.futures import ThreadPoolExecutor
  > with ThreadPoolExecutor(6) as pool:
  >     texts = [text % n for n in range(10, 20) for text in ("192.0.2.%d/24", "2001:db8::%d/64")]
  >     list(pool.map(lambda text: present("eth0", text), texts * 2))'
  $ addresses | wc -l; grep -l IPADDR /etc/sysconfig/network-scripts/ifcfg-eth0:* | wc -l
  22
  10
  $ grep -o '::1[0-9]/64' /etc/sysconfig/network-scripts/ifcfg-eth0 | wc -l
  10

In Python, what is refused or not saved raises.

  $ fresh; interface eth1 198.51.100.1/24
  $ python 'present("eth0", "2001:db8::5%$(id)/64")'
  ValueError: '2001:db8::5%$(id)/64' has a scope
  $ python 'present("eth9", "192.0.2.10/24")'
  Failed: no such interface: eth9
  $ python 'present("eth0", "198.51.100.1/24")'
  Failed: 198.51.100.1 is up with another length or interface
  $ python 'present("eth0", "2001:db8::/129")'
  ValueError: '2001:db8::/129' does not appear to be an IPv4 or IPv6 interface
  $ python 'absent("192.0.2.1")'
  Failed: 192.0.2.1: cannot delete main IP on interface
  $ python 'present("eth1", "198.51.100.1/24")'
  Failed: 198.51.100.1/24 is up, but not saved
  $ rm /etc/sysconfig/network-scripts/*; python 'present("eth0", "2001:db8::5/64")'
  Failed: 2001:db8::5/64 is up, but not saved

NetworkManager is told if it runs, and its refusal is a failure.

  $ fresh; mkdir /etc/bin; PATH=/etc/bin:$PATH
  $ cat >/etc/bin/nmcli <<'END'
  > #!/bin/sh
  > [ "$1" = connection ] || { cat /etc/bin/state; exit; }
  > echo "$*" >>/etc/bin/calls; cat /etc/bin/answer
  > END
  $ chmod +x /etc/bin/nmcli; : >/etc/bin/state; : >/etc/bin/answer
  $ present eth0 192.0.2.10 255.255.255.0; python 'present("eth0", "192.0.2.11/24")'
  $ ls /etc/bin; echo running >/etc/bin/state
  answer
  nmcli
  state
  $ present eth0 192.0.2.12 255.255.255.0; python 'present("eth0", "192.0.2.13/24")'
  $ cat /etc/bin/calls
  connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  $ echo "Could not load file 'F'" >/etc/bin/answer
  $ present eth0 192.0.2.14 255.255.255.0
  192.0.2.14: Could not load file 'F'
  [1]
  $ python 'present("eth0", "192.0.2.15/24")'
  Failed: Could not load file 'F'
