Calling the program as docs/calling.md says.

Needs a real processor.

The snippets of that page are loaded.

  $ fresh || exit 80
  $ snippet() { sed -n "/^\`\`\`$1$/,/^\`\`\`$/{/^\`\`\`/d;p}" "$ROOT/docs/calling.md"; }
  $ eval "$(snippet bash)"
  $ python() {
  >   { snippet python | sed "s|^SAFE = .*|SAFE = '$(command -v addrtool-safe)'|"; echo "$1"; } |
  >     /usr/bin/python3 - 2>&1; }
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0

In shell, an address is added and saved once, and all IPv6 lengths stay.

  $ fresh
  $ for times in 1 2; do
  >   present eth0 192.0.2.10 26; present eth0 2001:db8::5 64; present eth0 2001:db8::6 48
  > done; changed
  + eth0:1 192.0.2.10/26
  + eth0 2001:db8::6/48
  + eth0 2001:db8::5/64
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::6/48 2001:db8::5/64"
  + ifcfg-eth0:1 0:0 644
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.192"
  $ for length in 1 31 32; do present eth0 10.0.0.$length $length; done
  $ grep -h NETMASK $file:[234]
  NETMASK="128.0.0.0"
  NETMASK="255.255.255.254"
  NETMASK="255.255.255.255"

In shell, other users cannot open the lock, whoever made the file.

  $ fresh; rm -f /run/addrtool.lock; flock /run/addrtool.lock true; present eth0 192.0.2.10 24
  $ stat -c %a /run/addrtool.lock
  600

In shell, six at a time lose none of ten, even if the shell is strict.

  $ fresh; export -f present
  $ for times in 1 2; do seq 10 19 | xargs -P 6 -I N \
  >   bash -euo pipefail -c 'present eth0 192.0.2.N 24; present eth0 2001:db8::N 64'; done
  $ addresses | wc -l; grep -l IPADDR $file:* | wc -l
  22
  10
  $ grep -o '::1[0-9]/64' $file | wc -l
  10

In shell, what is refused is said in one line, and nothing changes.

  $ fresh; interface eth1 198.51.100.1/24 2001:db8:1::1/64; changed >/dev/null
  $ while read -r words; do present $words; done <<'END'
  > eth0 192.0.2.10;id 24
  > \(;id\)*eth0 2001:db8::5 64
  > eth0 192.0.2.10 a[$(id>&2)]
  > eth0 192.0.2.10 33
  > eth0 192.0.2.10 0
  > eth0 192.0.2.256 24
  > eth0 192.0.2 24
  > eth0 010.1.2.3 24
  > eth0 2001:0db8::5 64
  > eth0 2001:DB8::5 64
  > eth0 2001:db8:0:0::5 64
  > eth0 2001:db8::5 129
  > eth0 fe80::5 64
  > eth0 ::2 64
  > eth0 127.0.0.2 8
  > eth9 192.0.2.10 24
  > eth0:1 192.0.2.10 24
  > eth0 198.51.100.1 24
  > eth0 2001:db8:1::1 64
  > eth0 2001:db8::1 65
  > END
  192.0.2.10;id: not canonical
  2001:db8::5: not canonical
  192.0.2.10: not canonical
  192.0.2.10: not canonical
  192.0.2.10: not canonical
  192.0.2.256: not canonical
  192.0.2: not canonical
  010.1.2.3: not canonical
  2001:0db8::5: not canonical
  2001:DB8::5: not canonical
  2001:db8:0:0::5: not canonical
  2001:db8::5: not canonical
  fe80::5: never listed
  ::2: never listed
  127.0.0.2: never listed
  192.0.2.10: no such interface: eth9
  192.0.2.10: not canonical
  198.51.100.1: up with another length or interface
  2001:db8:1::1: up with another length or interface
  2001:db8::1: up with another length or interface
  [1]
  $ (trap '' CHLD; exec bash -c 'present eth0 192.0.2.10 24')
  192.0.2.10: SIGCHLD is ignored
  [1]
  $ perl -e '$SIG{CHLD} = "IGNORE"; exec @ARGV' bash -c 'present eth0 192.0.2.10 24'
  192.0.2.10: SIGCHLD is ignored
  [1]
  $ changed
  $ sed -i /IPV6INIT/d $file; present eth0 2001:db8::5 64
  2001:db8::5: /etc/sysconfig/network-scripts/ifcfg-eth0 is missing, or lacks IPV6INIT=yes or its last line feed
  [1]
  $ printf IPV6INIT=yes >>$file; present eth0 2001:db8::5 64
  2001:db8::5: /etc/sysconfig/network-scripts/ifcfg-eth0 is missing, or lacks IPV6INIT=yes or its last line feed
  [1]
  $ rm $file; present eth0 2001:db8::5 64; addresses | grep ::5
  2001:db8::5: /etc/sysconfig/network-scripts/ifcfg-eth0 is missing, or lacks IPV6INIT=yes or its last line feed
  [1]

In shell, what is not saved is said each time, until it is deleted and added again.

  $ fresh; mkdir $file:1; echo 'IPV6ADDR_SECONDARIES="2001:db8::7"' >>$file
  $ for times in 1 2; do present eth0 192.0.2.10 24; present eth0 2001:db8::5 64; done
  192.0.2.10: /etc/sysconfig/network-scripts/ifcfg-eth0:1: Is a directory
  2001:db8::5: 2001:db8::7": cannot parse IPv6 address
  192.0.2.10: is not saved
  2001:db8::5: is not saved
  [1]
  $ rmdir $file:1; sed -i '$d' $file
  $ addrtool --del 192.0.2.10 --del 2001:db8::5; present eth0 192.0.2.10 24; present eth0 2001:db8::5 64
  $ present eth0 192.0.2.1 24
  192.0.2.1: is not saved
  [1]

In shell, a length 0 of an address that is down is said.

  $ fresh; echo 'IPV6ADDR_SECONDARIES="2001:db8::7/64"' >>$file; present eth0 2001:db8::5 64
  2001:db8::5: is saved, but /etc/sysconfig/network-scripts/ifcfg-eth0 has the length 0
  [1]

In Python, an address is added, saved and deleted, even if SIGCHLD is ignored.

  $ fresh
  $ python 'import signal
  > for action in signal.SIG_DFL, signal.SIG_IGN:
  >     signal.signal(signal.SIGCHLD, action)
  >     for text in "192.0.2.10/24", "2001:db8::5/64", "2001:DB8::6/64":
  >         print(safe("present", "eth0", text))
  > print(safe("absent", "192.0.2.10"))'; changed
  []
  []
  []
  []
  []
  []
  []
  + eth0 2001:db8::6/64
  + eth0 2001:db8::5/64
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::6/64 2001:db8::5/64"

In Python, six threads at a time lose none of ten.

  $ fresh
  $ python 'from concurrent.futures import ThreadPoolExecutor
  > with ThreadPoolExecutor(6) as pool:
  >     texts = [text % n for n in range(10, 20) for text in ("192.0.2.%d/24", "2001:db8::%d/64")]
  >     print(sum(pool.map(lambda text: safe("present", "eth0", text), texts * 2), []))'
  []
  $ addresses | wc -l; grep -l IPADDR $file:* | wc -l; grep -o '::1[0-9]/64' $file | wc -l
  22
  10
  10

In Python, each failure gives a sentence.

  $ fresh; interface eth1 198.51.100.1/24; interface eth2 203.0.113.1/24
  $ python 'for words in (
  >     ["present", "eth0", "192.0.2.999/24"], ["present", "eth0", "192.0.2.10"],
  >     ["present", "eth0", "2001:db8::5%$(id)/64"], ["present", "eth9", "192.0.2.10/24"],
  >     ["present", "eth0", "192.0.2.10/24", "198.51.100.1/24"], ["absent", "192.0.2.1"],
  >     ["absent", "192.0.2.9/24"]):
  >     print(safe(*words))
  > SAFE = "/bin/false"
  > print(safe("absent", "192.0.2.1"))'
  ['192.0.2.999/24 is no ADDRESS/LENGTH']
  ['192.0.2.10 is no ADDRESS/LENGTH']
  ['2001:db8::5%$(id)/64 is no ADDRESS/LENGTH']
  ['eth9 is no interface that addrtool lists: give it an address']
  ['198.51.100.1/24 is up on eth1: delete it first']
  ['192.0.2.1 cannot be deleted: it is a main address, or shares its label']
  ['192.0.2.9/24 is no ADDRESS']
  ['status 1']
  $ ip address add 192.0.2.10/24 dev eth0 label eth0:1
  $ python 'print(*(safe("present", "eth0", "192.0.2.10/24", *more) for more in [[], ["--readd"]]))'
  ["192.0.2.10/24 is up but not saved: run 'addrtool-safe present --readd eth0 192.0.2.10/24'"] []

NetworkManager is told if it runs, and its refusal is a failure.

  $ fresh; mkdir /etc/bin; PATH=/etc/bin:$PATH
  $ cat >/etc/bin/nmcli <<'END'
  > #!/bin/sh
  > [ "$1" = connection ] || { cat /etc/bin/state; exit; }
  > echo "$*" >>/etc/bin/calls; cat /etc/bin/answer
  > END
  $ chmod +x /etc/bin/nmcli; : >/etc/bin/state; : >/etc/bin/answer
  $ present eth0 192.0.2.10 24
  $ ls /etc/bin; echo running >/etc/bin/state
  answer
  nmcli
  state
  $ present eth0 192.0.2.12 24; present eth0 2001:db8::5 64
  $ cat /etc/bin/calls
  connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  $ echo "Could not load file 'F'" >/etc/bin/answer
  $ present eth0 192.0.2.14 24
  192.0.2.14: Could not load file 'F'
  [1]
