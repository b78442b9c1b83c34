What addrtool-safe does. Other transcripts have what it refuses, finds and repairs.

Needs a real processor.

  $ fresh || exit 80
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0
  $ safe() { addrtool-safe "$@" >/dev/null || echo "[$?]"; now; }
  $ now() { echo up: $(addresses | sed 's/^eth0 //'); echo saved: $(sed -n 's/"//g; s/^IP.*ADDR[^=]*=//p' $file*); }

An address that is missing is added and saved. No length 0 is left. A second run changes nothing.

  $ safe present eth0 192.0.2.10/24 2001:DB8:0::5/64 2001:db8::6/64; safe present eth0 2001:db8::7/64
  up: 192.0.2.1/24 eth0:1 192.0.2.10/24 2001:db8::6/64 2001:db8::5/64 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64 2001:db8::6/64 2001:db8::5/64 192.0.2.10
  up: 192.0.2.1/24 eth0:1 192.0.2.10/24 2001:db8::7/64 2001:db8::6/64 2001:db8::5/64 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64 2001:db8::7/64 2001:db8::6/64 2001:db8::5/64 192.0.2.10
  $ addrtool-safe present --json eth0 192.0.2.10/24 2001:db8::5/64
  {"actions": [], "changed": false, "diff": "", "problems": [], "status": 0}

An address is made absent, in any spelling. The one that is promoted keeps its length. A second run changes nothing.

  $ safe absent 192.0.2.10 2001:DB8:0::6 2001:db8::1; addrtool-safe absent --json 192.0.2.10 2001:db8::6
  up: 192.0.2.1/24 2001:db8::7/64 2001:db8::5/64
  saved: 192.0.2.1 2001:db8::7/64 2001:db8::5/64
  {"actions": [], "changed": false, "diff": "", "problems": [], "status": 0}

Six at a time keep six.

  $ fresh; seq 6 | xargs -P 6 -I N addrtool-safe present eth0 192.0.2.1N/24 2001:db8::1N/64 | grep -c add
  12
  $ addrtool --list | wc -l; addrtool-safe check; ls $file:* | wc -l
  14
  6

With --check, it says what it would do, and does nothing. A main address that is up is left alone.

  $ fresh; rm -f /run/addrtool.lock; ip address add 192.0.2.7/24 dev eth0; changed
  + eth0 192.0.2.7/24
  $ addrtool-safe present --check eth0 192.0.2.7/24 192.0.2.10/24; ls /run; addrtool-safe present eth0 192.0.2.7/24; changed
  would add 192.0.2.10/24

What is up but not saved is reported. With --readd, it is added again, except for a last address.

  $ fresh; ip address add 192.0.2.10/24 dev eth0 label eth0:1; sed -i /^IPV6ADDR/d $file
  $ safe present eth0 192.0.2.10/24; safe present --readd eth0 192.0.2.10/24 2001:db8::1/64
  192.0.2.10/24 is up but not saved: run 'addrtool-safe present --readd eth0 192.0.2.10/24'
  [3]
  up: 192.0.2.1/24 eth0:1 192.0.2.10/24 2001:db8::1/64
  saved: 192.0.2.1
  2001:db8::1/64 is up but not saved: write it into /etc/sysconfig/network-scripts/ifcfg-eth0
  [3]
  up: 192.0.2.1/24 eth0:1 192.0.2.10/24 2001:db8::1/64
  saved: 192.0.2.1 192.0.2.10

What is saved but down is reported by absent. It is added by present, and saved once.

  $ fresh; addrtool-safe present eth0 192.0.2.10/24 2001:db8::5/64 2001:db8::6/64 | tail -n 1
  mend /etc/sysconfig/network-scripts/ifcfg-eth0
  $ ip address del 192.0.2.10/24 dev eth0; ip address del 2001:db8::5/64 dev eth0
  $ safe absent 192.0.2.10 2001:db8::5; safe present eth0 192.0.2.10/24 2001:db8::5/64
  2001:db8::5 is saved but not up: bring it up, or remove it from /etc/sysconfig/network-scripts/ifcfg-eth0
  192.0.2.10 is saved but not up: bring it up, or remove it from /etc/sysconfig/network-scripts/ifcfg-eth0:1
  [3]
  up: 192.0.2.1/24 2001:db8::6/64 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64 2001:db8::6/64 2001:db8::5/64 192.0.2.10
  up: 192.0.2.1/24 eth0:1 192.0.2.10/24 2001:db8::5/64 2001:db8::6/64 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64 2001:db8::5/64 2001:db8::6/64 192.0.2.10

A length 0 is mended even if nothing else is to do. What is not up keeps the length in the file.

  $ fresh; addrtool -a eth0 2001:db8::5 64 && addrtool -a eth0 2001:db8::6 64; now; safe present eth0 2001:db8::6/64
  up: 192.0.2.1/24 2001:db8::6/64 2001:db8::5/64 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64 2001:db8::6/64 2001:db8::5/0
  up: 192.0.2.1/24 2001:db8::6/64 2001:db8::5/64 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64 2001:db8::6/64 2001:db8::5/64
  $ ip address del 2001:db8::5/64 dev eth0; safe present eth0 2001:db8::7/64
  2001:db8::5 is saved but not up: bring it up, or remove it from /etc/sysconfig/network-scripts/ifcfg-eth0
  [3]
  up: 192.0.2.1/24 2001:db8::7/64 2001:db8::6/64 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64 2001:db8::7/64 2001:db8::6/64 2001:db8::5/64
  $ fresh; echo 'IPV6ADDR_SECONDARIES="2001:db8::8/0"' >>$file; safe present eth0 2001:db8::6/64
  2001:db8::8 is saved but not up: bring it up, or remove it from /etc/sysconfig/network-scripts/ifcfg-eth0
  /etc/sysconfig/network-scripts/ifcfg-eth0 saves 2001:db8::8/0: write its real length
  [3]
  up: 192.0.2.1/24 2001:db8::6/64 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64 2001:db8::6/64 2001:db8::8/0

A missing final line feed is added before an IPv6 address is.

  $ fresh; truncate -s -1 $file; safe present eth0 2001:db8::6/64
  up: 192.0.2.1/24 2001:db8::6/64 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64 2001:db8::6/64

A caller that waits too long for the lock fails. The lock is for root alone, and no link.

  $ fresh; flock /run/addrtool.lock sleep 2 & sleep 0.5; addrtool-safe absent --wait 0.1 192.0.2.10; wait
  Another caller holds /run/addrtool.lock: try again, or raise --wait
  $ addrtool-safe absent 192.0.2.10; stat -c %a /run/addrtool.lock
  600
  $ ln -sf /etc/passwd /run/addrtool.lock; addrtool-safe absent 192.0.2.10; rm /run/addrtool.lock
  [Errno 40] Too many levels of symbolic links: '/run/addrtool.lock'

addrtool runs with SIGCHLD at its default and no other open file. A change that fails, loudly or not, is noticed.

  $ fresh; record 'ls -l /proc/self/fd | sed -n "s/.* \([012] -> [^:]*\).*/\1/p" >/proc/.sandbox/fds; true'
  $ (trap '' CHLD; safe present eth0 192.0.2.10/24 9</etc/passwd); cat /proc/.sandbox/fds
  192.0.2.10/24 is not up: make it present
  192.0.2.10 is saved but not up: bring it up, or remove it from /etc/sysconfig/network-scripts/ifcfg-eth0:1
  [3]
  up: 192.0.2.1/24 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64 192.0.2.10
  0 -> /proc/.sandbox/dev/null
  1 -> pipe
  2 -> pipe
  $ fresh; record false; safe present eth0 192.0.2.10/24
  addrtool, status 1: /sbin/ifconfig 'eth0:1' '192.0.2.10' netmask  '255.255.255.0' up exited with non-zero status 1
  [1]
  up: 192.0.2.1/24 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64

An address that vanishes with another one is reported.

  $ fresh; addrtool-safe present eth0 198.51.100.5/24 198.51.100.6/24 >/dev/null
  $ cp /sbin/ifconfig /run/ifconfig; record '[[ $* == *down ]] && /run/ifconfig "$@"'; safe absent 198.51.100.5
  addrtool, status 1: /sbin/ifconfig 'eth0:2' '198.51.100.6' netmask  '255.255.255.0' up exited with non-zero status 1
  198.51.100.6/24 is not up: make it present
  [3]
  up: 192.0.2.1/24 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64 198.51.100.6

Signals that end a process wait until the change is complete.

  $ fresh; cp /sbin/ifconfig /run/ifconfig
  $ record 'for name in TERM HUP INT; do kill -$name $(pgrep -of addrtool-safe); done; /run/ifconfig "$@"'
  $ safe present eth0 2001:db8::5/64 2001:db8::6/64
  up: 192.0.2.1/24 2001:db8::6/64 2001:db8::5/64 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64 2001:db8::6/64 2001:db8::5/64

Each change is logged as of the facility daemon: the caller, the change and its outcome.

  $ fresh; /usr/bin/python3 -c 'import socket; log = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
  > log.bind("/dev/log"); print(log.recv(999).decode())' >/proc/.sandbox/log & until [[ -S /dev/log ]]; do :; done
  $ SUDO_USER=ann addrtool-safe present eth0 192.0.2.10/24; wait; sed 's/>.*safe.[0-9]*/> addrtool-safe[PID/' /proc/.sandbox/log
  add 192.0.2.10/24
  <30> addrtool-safe[PID]: ann (bash): add 192.0.2.10/24 on eth0: done

A replaced file keeps its owner, mode, times and extended attributes.

  $ fresh; sed -i '$s/64/0/' $file; chmod 640 $file; setfattr -n trusted.note -v kept $file; touch -d 2020-01-01 $file
  $ safe repair; getfattr --absolute-names -n trusted.note $file | grep note; stat -c '%a %y' $file | cut -c 1-14
  up: 192.0.2.1/24 2001:db8::1/64
  saved: 192.0.2.1 2001:db8::1/64
  trusted.note="kept"
  640 2020-01-01

Wrong use ends with status 2. Only root may change. JSON has the same keys for all verbs.

  $ for words in '' 'present eth0 192.0.2.9' 'absent 192.0.2.9/24' 'present eth0 192.0.2.300/24' 'list --check' \
  >   'present eth0 192.0.2.9/255.255.255.0' 'absent 2001:db8::1%eth0'; do addrtool-safe $words 2>/dev/null; echo -n " $?"; done; echo
   2 2 2 2 2 2 2
  $ addrtool-safe list --json; unshare --user --map-user=9 addrtool-safe repair --json
  {"actions": [], "addresses": [{"address": "192.0.2.1/24", "interface": "eth0", "label": "eth0"}, {"address": "2001:db8::1/64", "interface": "eth0", "label": ""}], "changed": false, "diff": "", "problems": [], "status": 0}
  {"actions": [], "changed": false, "diff": "", "problems": [{"interface": null, "kind": "failed", "message": "Only root may change addresses: run it as root"}], "status": 1}
  [1]
