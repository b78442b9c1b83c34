What adds and deletes ask the kernel to do, and what they do if it refuses.

Needs tracing.

A new file gets its owner, then its mode, then its name. Nothing waits for the disk.

  $ fresh || exit 80
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0
  $ calls '/chown|chmod|rename|unlink|sync' addrtool -a eth0 192.0.2.10 255.255.255.0
  chown("/etc/sysconfig/network-scripts/ifcfg-eth0:1.XXXXXX", 0, 0) = 0
  chmod("/etc/sysconfig/network-scripts/ifcfg-eth0:1.XXXXXX", 0644) = 0
  rename("/etc/sysconfig/network-scripts/ifcfg-eth0:1.XXXXXX", "/etc/sysconfig/network-scripts/ifcfg-eth0:1") = 0
  $ calls '/chown|chmod|rename|unlink|sync' addrtool -a eth0 2001:db8::5 64
  chown("/etc/sysconfig/network-scripts/ifcfg-eth0.XXXXXX", 0, 0) = 0
  chmod("/etc/sysconfig/network-scripts/ifcfg-eth0.XXXXXX", 0100644) = 0
  rename("/etc/sysconfig/network-scripts/ifcfg-eth0.XXXXXX", "/etc/sysconfig/network-scripts/ifcfg-eth0") = 0

An IPv6 edit that cannot be made removes the new file.

  $ cp $file /etc/saved; echo IPV6ADDR_SECONDARIES=x >>$file
  $ calls '/chown|chmod|rename|unlink' addrtool -a eth0 2001:db8::6 64 2>/dev/null | tail -n 3
  chown("/etc/sysconfig/network-scripts/ifcfg-eth0.XXXXXX", 0, 0) = 0
  chmod("/etc/sysconfig/network-scripts/ifcfg-eth0.XXXXXX", 0100644) = 0
  unlink("/etc/sysconfig/network-scripts/ifcfg-eth0.XXXXXX") = 0
  $ cp /etc/saved $file

Before an IPv4 add the kernel is asked once, and before an IPv6 add it is not.

  $ steps() { calls '/^(sendto|unlink|rename|execve)' "$@" |
  >   sed -nE 's/^(sendto|unlink|rename).*/\1/p; s/^execve\("(.sbin.ifconfig)".*/\1/p' | xargs; }
  $ fresh; steps addrtool -a eth0 192.0.2.10 255.255.255.0; steps addrtool -a eth0 2001:db8::5 64
  sendto /sbin/ifconfig rename
  /sbin/ifconfig rename

A delete asks it once, and once more after the command if the interface has another alias.

  $ steps addrtool -d 2001:db8::5; steps addrtool -d 192.0.2.10
  sendto /sbin/ifconfig rename
  sendto /sbin/ifconfig unlink
  $ for n in 1 2; do addrtool -a eth0 198.51.100.$n 255.255.255.0; done
  $ steps addrtool -d 198.51.100.1
  sendto /sbin/ifconfig unlink sendto /sbin/ifconfig

Each action asks on its own.

  $ for n in 3 4; do addrtool -a eth0 198.51.100.$n 255.255.255.255; done
  $ steps addrtool -d 198.51.100.3 -d 198.51.100.4 -a eth0 198.51.100.5 255.255.255.0
  sendto /sbin/ifconfig unlink sendto sendto /sbin/ifconfig unlink sendto sendto /sbin/ifconfig rename

The command has the limits, the rights, the process group and the signal settings of the program's
caller.

  $ fresh
  $ record 'sed -nE "s/^(SigIgn:).*(.{7})$/\1\2/p; /^(NoNew|Seccomp|Groups|Cap)/p" /proc/$$/status
  >   cut -d " " -f 5,6,18,19 /proc/$$/stat
  >   grep -v "core file" /proc/$$/limits; readlink /proc/$$/ns/*'
  $ /sbin/ifconfig eth0 add 2001:db8::5/64 >/etc/direct
  $ addrtool -a eth0 2001:db8::5 64 | diff /etc/direct - && grep -c SigIgn /etc/direct
  1

There is no time limit and no lock.

  $ fresh; calls '/alarm|timer|nanosleep|flock' addrtool -a eth0 192.0.2.10 255.255.255.0
  $ calls fcntl addrtool -a eth0 2001:db8::5 64 -d 192.0.2.10 | grep LK
  [1]

Only the configuration and the interface's files are opened, and nothing is logged.

  $ fresh; for words in 'eth0 192.0.2.10 255.255.255.0' 'eth0 2001:db8::5 64 -d 192.0.2.10'; do
  >   trace -e 'trace=/^(open|connect)' addrtool -a $words
  >   sed 's/[.].\{6\}"/.XXXXXX"/' /proc/.sandbox/calls | grep -oE '"/.*"' |
  >     grep -vE '\.so|\.gcda|/self/'; done
  "/etc/kel/kel.conf"
  "/etc/sysconfig/network-scripts/ifcfg-eth0:1.XXXXXX"
  "/etc/sysconfig/network-scripts/ifcfg-eth0:1"
  "/etc/kel/kel.conf"
  "/etc/sysconfig/network-scripts/ifcfg-eth0.XXXXXX"
  "/etc/sysconfig/network-scripts/ifcfg-eth0"

If the kernel cannot be asked again, the alias and its file stay deleted.

  $ fresh; for n in 1 2; do addrtool -a eth0 198.51.100.$n 255.255.255.0; done; changed >/dev/null
  $ fail sendto:when=2 ENOBUFS addrtool -d 198.51.100.1
  Can not send RTM_GETADDR request: No buffer space available
  [1]
  $ changed
  - eth0:1 198.51.100.1/24
  - eth0:2 198.51.100.2/24
  - ifcfg-eth0:1 0:0 644
  - ifcfg-eth0:1: DEVICE="eth0:1"
  - ifcfg-eth0:1: IPADDR="198.51.100.1"
  - ifcfg-eth0:1: NETMASK="255.255.255.0"

If the program cannot wait for the command, because its caller ignores SIGCHLD, the command counts
as failed with status 255. It is not repeated.

  $ fresh; record 'ip address add $2/24 dev eth0 label $1'
  $ streams env --ignore-signal=CHLD addrtool -a eth0 192.0.2.10 255.255.255.0
  1: ifconfig [eth0:1] [192.0.2.10] [netmask] [255.255.255.0] [up]
  2: /sbin/ifconfig 'eth0:1' '192.0.2.10' netmask  '255.255.255.0' up exited with non-zero status 255
  [1]
  $ changed
  + eth0:1 192.0.2.10/24

So does a command that cannot be started. The number depends on the C library.

  $ fresh; fail '/^clone|fork' EAGAIN addrtool -a eth0 192.0.2.10 255.255.255.0
  /sbin/ifconfig 'eth0:1' '192.0.2.10' netmask  '255.255.255.0' up exited with non-zero status (127|255) (re)
  [1]
  $ changed

A signal has its number even if it left a core file.

  $ record
  $ trace -e inject=wait4:poke_exit=@arg2=8b000000 addrtool -a eth0 2001:db8::5 64
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 killed with signal 11
  [1]

A failed change of owner or mode is ignored.

  $ fresh; fail /chown EPERM /chmod EPERM addrtool -a eth0 192.0.2.10 255.255.255.0; changed
  + eth0:1 192.0.2.10/24
  + ifcfg-eth0:1 0:0 600
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"

A failed renaming leaves the new file. Only an IPv4 add reports it.

  $ fresh; fail /rename EIO addrtool -a eth0 192.0.2.10 255.255.255.0
  /etc/sysconfig/network-scripts/ifcfg-eth0:1: Input/output error
  [1]
  $ streams fail /rename EIO addrtool -a eth0 2001:db8::5 64
  $ addresses | grep -c -e 192.0.2.10 -e 2001:db8::5
  2
  $ ls /etc/sysconfig/network-scripts | sed -E 's/[.].{6}$/.XXXXXX/'
  ifcfg-eth0
  ifcfg-eth0.XXXXXX
  ifcfg-eth0:1.XXXXXX

A file that cannot be removed stays, without a message.

  $ fresh; addrtool -a eth0 192.0.2.10 255.255.255.0; changed >/dev/null
  $ fail /unlink EPERM addrtool -d 192.0.2.10; changed
  - eth0:1 192.0.2.10/24

If an old file cannot be examined, the new one has the mode of a file that was not there.

  $ fresh; touch $file:1; chmod 600 $file:1 $file
  $ trace -P $file:1 -e inject=/stat:error=EACCES addrtool -a eth0 192.0.2.10 255.255.255.0
  $ stat -c %a $file:1
  644

An interface's file that cannot be examined stays, without a message.

  $ changed >/dev/null
  $ trace -P $file -e inject=/stat:error=EACCES addrtool -a eth0 2001:db8::5 64; changed
  + eth0 2001:db8::5/64

If it cannot be opened, an empty new file is left as well.

  $ trace -P $file -e inject=/open:error=EACCES addrtool -d 2001:db8::1
  $ changed | sed -E 's/[.][A-Za-z0-9]{6}( |: )/.XXXXXX\1/'
  - eth0 2001:db8::1/64
  + ifcfg-eth0.XXXXXX 0:0 600

An alias file that cannot be opened is written anew, with its mode.

  $ fresh; touch $file:1; chmod 640 $file:1
  $ trace -P $file:1 -e inject=/open:error=EACCES addrtool -a eth0 192.0.2.10 255.255.255.0
  $ changed
  + eth0:1 192.0.2.10/24
  + ifcfg-eth0:1 0:0 640
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"
