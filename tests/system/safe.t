What addrtool-safe does. Other transcripts have what it refuses, finds and repairs.
Needs a real processor.

  $ fresh || exit 80
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0
  $ short() { sed 's/192.0.2.//; s/eth0 //; s/2001:db8:://g; s/"//g; s/IP.*ADDR[^=]*=//'; }
  $ now() { echo up: $(addresses | short) saved: $(grep -h ADDR $file* | short); }
  $ safe() { (addrtool-safe "$@" >/dev/null || echo -n "[$?] ") |& sed "s|${file%/*}|DIR|"; now; }

An address that is missing is added and saved. No length 0 is left. An address is made absent, in
any spelling. The one that is promoted keeps its length. A second run changes nothing. Six at a time
keep six.

  $ addrtool-safe present eth0 192.0.2.10/24 2001:DB8:0::5/64 2001:db8::6/64 >/dev/null
  $ safe present eth0 2001:db8::7/64
  up: 1/24 eth0:1 10/24 7/64 6/64 5/64 1/64 saved: 1 1/64 7/64 6/64 5/64 10
  $ safe absent 192.0.2.10 2001:DB8:0::6 2001:db8::1
  up: 1/24 7/64 5/64 saved: 1 7/64 5/64
  $ (addrtool-safe present --json eth0 2001:db8::5/64; addrtool-safe absent --json ::6) | uniq
  {"actions": [], "changed": false, "diff": "", "problems": [], "status": 0}
  $ fresh; seq 6 | xargs -P 6 -I N addrtool-safe present eth0 192.0.2.1N/24 ::1N/64 >/dev/null
  $ echo $(addrtool --list | wc -l) $(addrtool-safe check) $(ls $file:* | wc -l)
  14 6

With --check, it says what it would do, and does nothing. A main address that is up is left alone.

  $ fresh; sed -i /^IPV6ADDR/d $file; ip address add 192.0.2.7/24 dev eth0
  $ ip address add 2002::5/16 dev eth0; words='192.0.2.7/24 2002::5/16 2001:db8::1/64 10.0.0.5/8'
  $ addrtool-safe present --check --readd eth0 $words | sed s/would// | xargs; ls /run
  delete 2002::5/16 add 2002::5/16 delete 2001:db8::1/64 add 2001:db8::1/64 add 10.0.0.5/8
  $ safe present eth0 192.0.2.7/24
  up: 1/24 7/24 2002::5/16 1/64 saved: 1

What is up but not saved is reported. With --readd, it is added again, except for a last address.
What is saved but down is reported by absent. It is added by present, and saved once.

  $ fresh; ip address add 192.0.2.10/24 dev eth0 label eth0:1; sed -i /^IPV6ADDR/d $file
  $ safe present eth0 192.0.2.10/24
  192.0.2.10/24 is up but not saved: run 'addrtool-safe present --readd eth0 192.0.2.10/24'
  [3] up: 1/24 eth0:1 10/24 1/64 saved: 1
  $ safe present --readd eth0 192.0.2.10/24 2001:db8::1/64
  2001:db8::1/64 is up but not saved: write it into DIR/ifcfg-eth0
  [3] up: 1/24 eth0:1 10/24 1/64 saved: 1 10
  $ fresh; addrtool-safe present eth0 192.0.2.10/24 2001:db8::5/64 2001:db8::6/64 >/dev/null
  $ ip address del 192.0.2.10/24 dev eth0; ip address del 2001:db8::5/64 dev eth0
  $ interface eth1 203.0.113.1/24; addrtool -a eth1 203.0.113.2 255.255.255.0
  $ addrtool-safe absent --check 192.0.2.10 203.0.113.2 2>&1 | cut -d , -f 1; ip link del eth1
  would delete 203.0.113.2/24
  192.0.2.10 is saved but not up: bring it up
  $ safe absent 192.0.2.10 2001:db8::5 | grep -v ^20
  192.0.2.10 is saved but not up: bring it up, or remove it from DIR/ifcfg-eth0:1
  [3] up: 1/24 6/64 1/64 saved: 1 1/64 6/64 5/64 10
  $ safe present eth0 192.0.2.10/24 2001:db8::5/64
  up: 1/24 eth0:1 10/24 5/64 6/64 1/64 saved: 1 1/64 5/64 6/64 10

A length 0 is mended even if nothing else is to do. What is not up keeps its length in the file. A
missing final line feed is added before an IPv6 address is.

  $ fresh; addrtool -a eth0 2001:db8::5 64 && addrtool -a eth0 2001:db8::6 64; now
  up: 1/24 6/64 5/64 1/64 saved: 1 1/64 6/64 5/0
  $ safe present eth0 2001:db8::6/64; ip address del 2001:db8::5/64 dev eth0
  up: 1/24 6/64 5/64 1/64 saved: 1 1/64 6/64 5/64
  $ safe present eth0 2001:db8::7/64
  2001:db8::5 is saved but not up: bring it up, or remove it from DIR/ifcfg-eth0
  [3] up: 1/24 7/64 6/64 1/64 saved: 1 1/64 7/64 6/64 5/64
  $ fresh; sed -i '$s/64/48/' $file; echo 'IPV6ADDR_SECONDARIES="2001:db8::8/0"' >>$file
  $ safe present eth0 2001:db8::6/64
  2001:db8::8 is saved but not up: bring it up, or remove it from DIR/ifcfg-eth0
  DIR/ifcfg-eth0 saves 2001:db8::8/0: write its real length
  [3] up: 1/24 6/64 1/64 saved: 1 1/48 6/64 8/0
  $ fresh; truncate -s -1 $file; safe present eth0 2001:db8::6/64
  up: 1/24 6/64 1/64 saved: 1 1/64 6/64

A caller that waits too long for the lock fails. The lock is for root alone, and no link.

  $ fresh; exec 9>/run/addrtool.lock; flock 9; addrtool-safe absent --wait=-inf 192.0.2.10
  Another caller holds /run/addrtool.lock: try again, or raise --wait
  [1]
  $ sleep 1 & exec 9>&-; addrtool-safe absent --wait inf 192.0.2.10; stat -c %a /run/addrtool.lock
  600
  $ for link in 'ln -s /etc/passwd' mkfifo; do
  >   rm /run/add*; $link /run/addrtool.lock; addrtool-safe absent 192.0.2.10; done |& uniq -c
        2 /run/addrtool.lock is no regular file: remove it

addrtool runs with SIGCHLD at its default and no other open file. A silent failure is noticed.
Signals that end a process wait until the change is complete.

  $ fresh; record 'ls -l /proc/self/fd | grep -o "[0-9] -> [^:]*" | head -n 3 >/run/fds; true'
  $ safe present eth0 192.0.2.10/24 9</etc/passwd | head -n 1; echo $(cat /run/fds)
  192.0.2.10/24 is not up: make it present
  0 -> /proc/.sandbox/dev/null 1 -> pipe 2 -> pipe
  $ fresh; env --ignore-signal=CHLD addrtool-safe present eth0 192.0.2.10/24
  add 192.0.2.10/24
  $ fresh; cp /sbin/ifconfig /run/ifconfig
  $ record 'for n in 1 2 15; do kill -$n $(pgrep -of addrtool-safe); done; /run/ifconfig "$@"'
  $ safe present eth0 2001:db8::5/64 2001:db8::6/64
  up: 1/24 6/64 5/64 1/64 saved: 1 1/64 6/64 5/64

An add that fails changes nothing. An address that vanishes with another one is reported.

  $ fresh; addrtool-safe present eth0 198.51.100.5/24 198.51.100.6/24 >/dev/null
  $ cp /sbin/ifconfig /run/ifconfig; record '[[ $* == *down ]] && /run/ifconfig "$@"'
  $ safe present eth0 192.0.2.10/24 | grep -o '^.1. .*s'; safe absent 198.51.100.5 | tail -n 2
  [1] up: 1/24 eth0:1 198.51.100.5/24 eth0:2 198.51.100.6/24 1/64 s
  198.51.100.6/24 is not up: make it present
  [3] up: 1/24 1/64 saved: 1 1/64 198.51.100.6

Each change is logged as of the facility daemon: the caller, the change and its outcome. A replaced
file keeps its mode, times and access list.

  $ fresh; /usr/bin/python3 -c 'from socket import *; log = socket(AF_UNIX, SOCK_DGRAM)
  > log.bind("/dev/log"); print(log.recv(999).decode())' | sed 's/>.*safe.[0-9]*/> [PID/' &
  $ until [ -S /dev/log ]; do :; done; SUDO_USER=ann addrtool-safe present eth0 ::5/64 >/run/o; wait
  <30> [PID]: ann (bash): add ::5/64 on eth0: done
  $ fresh; sed -i '$s/64/0/' $file; touch -d 2020-01-01 $file; chmod 640 $file
  $ acl=0200000001000600ffffffff020006000000000004000400ffffffff10000600ffffffff20000000ffffffff
  $ set_acl="import os; os.setxattr('$file', 'system.posix_acl_access', bytes.fromhex('$acl'))"
  $ /usr/bin/python3 -c "$set_acl"
  $ safe repair; ls -l --time-style=long-iso $file | cut -d ' ' -f 1-4,6
  up: 1/24 1/64 saved: 1 1/64
  -rw-rw----+ 1 root root 2020-01-01

Wrong use ends with status 2. Only root may change. JSON has the same keys for all verbs.

  $ for words in '' 'present eth0 192.0.2.9' 'absent 192.0.2.9/24' 'present eth0 192.0.2.300/24' \
  >   'present eth0 192.0.2.9/255.255.255.0' 'absent 2001:db8::1%eth0' 'list --check'; do
  >   addrtool-safe $words 2>/dev/null; echo -n "$? "; done; echo
  2 2 2 2 2 2 2 
  $ for words in 'absent 192.0.2.1' 'repair --check' list; do
  >   addrtool-safe $words --json | grep -o '[a-z]*":' | tr -d '\n"'; echo; done
  actions:changed:diff:problems:interface:kind:message:status:
  actions:changed:diff:problems:status:
  actions:addresses:address:interface:label:address:interface:label:changed:diff:problems:status:
  $ unshare --user --map-user=9 addrtool-safe present eth0 192.0.2.10/24
  Only root may change addresses: run it as root
  [1]
