What the program asks the system for: the network, files and writes.

Needs tracing.

Addresses are read with one request and the receives for its answer. There is no time-out or lock.

  $ fresh || exit 80
  $ network() {
  >   calls '%network,/^(flock|fcntl|alarm|setitimer|timer_|p?poll|p?select|epoll)' addrtool "$@" |
  >     grep -v '^socket(AF_UNIX' |
  >     sed -E 's/^((send|recv)[a-z]*\([0-9]+), .*(, [0-9]+(, [^,]+){3}\)) = .*/\1, ...\3/' | uniq
  > }
  $ network --list
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  socket(AF_NETLINK, SOCK_DGRAM, NETLINK_ROUTE) = 3
  sendto(3, ..., 24, 0, NULL, 0)
  recvfrom(3, ..., 8192, 0, NULL, NULL)

The socket is closed before the first line is written. Each line is one write.

  $ calls sendto,recvfrom,close,write addrtool -l | sed -n '/^sendto/,$p' |
  >   grep -oE '^(write[^)]*|(sendto|recvfrom|close)\(3)' | uniq
  sendto(3
  recvfrom(3
  close(3
  write(1, "192.0.2.1 255.255.255.0 eth0 1\n", 31
  write(1, "2001:db8::1 64 eth0 0\n", 22

A large table takes few receives.

  $ for ((n = 0; n < 2000; n++)); do echo "10.0.$((n / 250)).$((n % 250))"; done |
  >   sed 's|.*|address add &/32 dev eth0|' | ip -batch -
  $ calls recvfrom,write addrtool -l >trace
  $ grep -c '^write(1' trace
  2002
  $ (($(grep -c '^recvfrom' trace) < 200)) || echo too many

Each action reads the kernel anew, but only if it needs to. A delete may have to look for others.

  $ fresh
  $ reads() {
  >   echo "$* => $(calls socket addrtool "$@" 2>/dev/null | grep -c '^socket(AF_NETLINK')"
  > }
  $ reads -l -l -l
  -l -l -l => 3
  $ reads -h
  -h => 0
  $ reads -v 10.0.0.1
  -v 10.0.0.1 => 0
  $ reads -a eth0 192.0.2.10 255.255.255.0
  -a eth0 192.0.2.10 255.255.255.0 => 1
  $ reads -a eth0 192.0.2.11 255.255.255.0
  -a eth0 192.0.2.11 255.255.255.0 => 1
  $ reads -d 192.0.2.10
  -d 192.0.2.10 => 2
  $ reads -d 192.0.2.11
  -d 192.0.2.11 => 1
  $ reads -a eth0 2001:db8::5 64
  -a eth0 2001:db8::5 64 => 0
  $ reads -d 2001:db8::5
  -d 2001:db8::5 => 1
  $ reads -d 192.0.2.1 -d 192.0.2.1
  -d 192.0.2.1 -d 192.0.2.1 => 1

The configuration is opened once, the container file once for each check, and no other file.

  $ fresh
  $ mkdir kel && touch kel/kel.conf
  $ opened() {
  >   echo "$*:"
  >   calls %file addrtool "$@" 2>/dev/null | grep -oE '"/.*"' | grep -vE '\.so|\.gcda|/self/|addrtool'
  > }
  $ opened -l -l
  -l -l:
  "/etc/kel/kel.conf"
  $ opened -h
  -h:
  "/etc/kel/kel.conf"
  $ opened -v 10.0.0.1 -v 10.0.0.1 -d 192.0.2.1
  -v 10.0.0.1 -v 10.0.0.1 -d 192.0.2.1:
  "/etc/kel/kel.conf"
  "/proc/qv/veinfo"
  "/proc/qv/veinfo"
  $ LC_ALL=C.UTF-8 LANGUAGE=de opened -x -d 192.0.2.1
  -x -d 192.0.2.1:
  "/etc/kel/kel.conf"

Nothing is opened before the command line is checked.

  $ for words in '' -x '-l extra' '-a eth0 192.0.2.5'; do opened $words; done
  :
  -x:
  -l extra:
  -a eth0 192.0.2.5:
  [1]

The process keeps its directory, mask, rights, priority and descriptors.

  $ own='f?chdir|umask|chroot|set(sid|pgid|groups|priority)|set.*[ug]id$|ioprio_set|sched_set'
  $ calls "/^($own|mlock|close_range|seccomp|unshare|kill|v?fork)" addrtool -l -v 10.0.0.1 \
  >   -d 192.0.2.1 2>/dev/null | grep '('
  [1]

A report is written as an error first, then as output.

  $ calls write addrtool -l extra 2>/dev/null | grep -oE '^write\([12]' | uniq
  write(2
  write(1

The answer of a container check is written before the next check.

  $ calls openat,write addrtool -v 10.0.0.1 -v 10.0.0.2 | grep -oE '[^"]*veinfo|^write.*)'
  /proc/qv/veinfo
  write(1, "0", 1)
  /proc/qv/veinfo
  write(1, "0", 1)
