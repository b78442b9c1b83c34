The command that changes the running system.

It gets the environment of the program as it is. LC_ALL is not set for it.

  $ fresh || exit 80
  $ record 'tr "\0" "\n" </proc/$$/environ | grep -Ev "^(PWD|OLDPWD|SHLVL|_)=" | sort'
  $ env -i LC_ALL=POSIX PATH=/nowhere:/bin "A=b c" ENV=/dev/null BASH_ENV=/dev/null TMPDIR=/x \
  >   LD_LIBRARY_PATH=/x HOME=/x "$(command -v addrtool)" -a eth0 2001:db8::5 64
  ifconfig [eth0] [add] [2001:db8::5/64]
  A=b c
  BASH_ENV=/dev/null
  ENV=/dev/null
  HOME=/x
  LC_ALL=POSIX
  LD_LIBRARY_PATH=/x
  PATH=/nowhere:/bin
  TMPDIR=/x
  $ env -i LANG=C.UTF-8 "$(command -v addrtool)" -a eth0 192.0.2.10 255.255.255.0
  ifconfig [eth0:1] [192.0.2.10] [netmask] [255.255.255.0] [up]
  LANG=C.UTF-8

It takes the input of the program.

  $ fresh; record cat; ip address add 192.0.2.9/24 dev eth0 label eth0:1
  $ echo text | addrtool -a eth0 2001:db8::5 64
  ifconfig [eth0] [add] [2001:db8::5/64]
  text
  $ echo text | addrtool -a eth0 192.0.2.10 255.255.255.0
  ifconfig [eth0:2] [192.0.2.10] [netmask] [255.255.255.0] [up]
  text
  $ echo text | addrtool -d 192.0.2.9
  ifconfig [eth0:1] [down]
  text

The first of two commands reads it, and the program does not.

  $ fresh; record 'head -n 1'
  $ seq 9 | addrtool -v 192.0.2.1 -l -a eth0 192.0.2.10 255.255.255.0
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  0ifconfig [eth0:1] [192.0.2.10] [netmask] [255.255.255.0] [up]
  1
  $ for n in 2 3; do ip address add 10.0.0.$n/24 dev eth0 label eth0:$n; done
  $ record '[[ $2 == up ]] || ip address flush dev eth0 label "eth0:*"; cat'
  $ seq 2 | addrtool -d 10.0.0.2
  ifconfig [eth0:2] [down]
  1
  2
  ifconfig [eth0:3] [10.0.0.3] [netmask] [255.255.255.0] [up]

Its output and errors go where those of the program go, and status 0 is a success whatever they say.

  $ fresh; record 'echo output; echo SIOCSIFADDR: No such device >&2'
  $ streams addrtool -a eth0 2001:db8::5 64
  1: ifconfig [eth0] [add] [2001:db8::5/64]
  1: output
  2: SIOCSIFADDR: No such device
  $ changed
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::5/64"

What the program printed comes first.

  $ fresh; record; mkdir /proc/qv; echo 192.0.2.1 >/proc/qv/veinfo
  $ addrtool -a eth0 2001:db8::6 64 -v 192.0.2.1 -l
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  1ifconfig [eth0] [add] [2001:db8::6/64]

It works in the folder and with the umask of the program.

  $ fresh; record 'pwd; umask'; mkdir /etc/folder
  $ (cd /etc/folder; umask 027; addrtool -a eth0 2001:db8::5 64)
  ifconfig [eth0] [add] [2001:db8::5/64]
  /etc/folder
  0027

It gets no descriptor of the program's files.

  $ fresh; mkdir /etc/kel /proc/qv; echo A b >/etc/kel/kel.conf; seq 9999 >/proc/qv/veinfo
  $ for n in 1 2; do ip address add 198.51.100.$n/24 dev eth0 label eth0:$n; done
  $ ls /proc/self/fd >/etc/descriptors
  $ record 'ls /proc/self/fd | diff /etc/descriptors - && echo same
  >   ip address flush dev eth0 label "eth0:*"'
  $ addrtool -v 1 -l -d 198.51.100.1 -a eth0 192.0.2.10 255.255.255.0 >/etc/output; cat /etc/output
  192.0.2.1 255.255.255.0 eth0 1
  198.51.100.1 255.255.255.0 eth0 0
  198.51.100.2 255.255.255.0 eth0 0
  2001:db8::1 64 eth0 0
  1ifconfig [eth0:1] [down]
  same
  ifconfig [eth0:2] [198.51.100.2] [netmask] [255.255.255.0] [up]
  same
  ifconfig [eth0:1] [192.0.2.10] [netmask] [255.255.255.0] [up]
  same
  $ addrtool -a eth0 2001:db8::5 64 >/etc/output; cat /etc/output
  ifconfig [eth0] [add] [2001:db8::5/64]
  same

It inherits what the caller has open, and the program's input if that is closed.

  $ fresh; record 'echo seen >&7; [ -e /proc/self/fd/0 ] || echo closed'
  $ addrtool -a eth0 2001:db8::5 64 7>&1 0<&-
  ifconfig [eth0] [add] [2001:db8::5/64]
  seen
  closed

Each status but 0 is a failure with this number. The command is not repeated.

  $ fresh; record 'exit $STATUS'
  $ for status in 1 2 10 126 127 128 137 255; do
  >   STATUS=$status addrtool -a eth0 2001:db8::5 64; done
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 exited with non-zero status 1
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 exited with non-zero status 2
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 exited with non-zero status 10
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 exited with non-zero status 126
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 exited with non-zero status 127
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 exited with non-zero status 128
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 exited with non-zero status 137
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 exited with non-zero status 255
  [1]
  $ changed

A signal is a failure with its number.

  $ record '[[ $(cat /proc/$PPID/comm) == sh ]] && kill -$SIGNAL $PPID || kill -$SIGNAL $$'
  $ for signal in 1 2 9 10 13 14 15; do
  >   SIGNAL=$signal env --default-signal addrtool -a eth0 2001:db8::5 64; echo $?
  > done 2>&1 | grep -v '^ifconfig' | paste -sd ' \n'
  /sbin/ifconfig eth0 add 2001:db8::5/64 killed with signal 1 1
  /sbin/ifconfig eth0 add 2001:db8::5/64 killed with signal 2 1
  /sbin/ifconfig eth0 add 2001:db8::5/64 killed with signal 9 1
  /sbin/ifconfig eth0 add 2001:db8::5/64 killed with signal 10 1
  /sbin/ifconfig eth0 add 2001:db8::5/64 killed with signal 13 1
  /sbin/ifconfig eth0 add 2001:db8::5/64 killed with signal 14 1
  /sbin/ifconfig eth0 add 2001:db8::5/64 killed with signal 15 1
  $ changed

A missing command is a failure of the shell.

  $ fresh; mount -t tmpfs none /sbin
  $ addrtool -a eth0 192.0.2.10 255.255.255.0 2>&1 | tail -n 1
  /sbin/ifconfig 'eth0:1' '192.0.2.10' netmask  '255.255.255.0' up exited with non-zero status 127
  $ fresh; record; chmod 644 /proc/.sandbox/ifconfig
  $ addrtool -a eth0 192.0.2.10 255.255.255.0 2>&1 | tail -n 1; changed
  /sbin/ifconfig 'eth0:1' '192.0.2.10' netmask  '255.255.255.0' up exited with non-zero status 126

The fixed path is run, whatever PATH says.

  $ fresh; record; printf '#!/bin/sh\necho wrong\n' >/etc/ifconfig; chmod 755 /etc/ifconfig
  $ (addrtool=$(command -v addrtool); PATH=/etc:$PATH; $addrtool -a eth0 2001:db8::5 64)
  ifconfig [eth0] [add] [2001:db8::5/64]

A terminal's interrupt during the command ends the command alone.

  $ fresh
  $ record 'kill -INT "$(cat /proc/.sandbox/pid)"; kill -QUIT "$(cat /proc/.sandbox/pid)"; exit 4'
  $ bash -c 'echo $$ >/proc/.sandbox/pid; exec addrtool -a eth0 2001:db8::5 64'
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 exited with non-zero status 4
  [1]

A failed command of a later action leaves what the earlier ones did.

  $ fresh; addrtool -a eth0 192.0.2.10 255.255.255.0; changed >/dev/null
  $ record '[[ $2 != down ]] || { ip address del 192.0.2.10/24 dev eth0; exit 0; }; exit 1'
  $ addrtool -d 192.0.2.10 -a eth0 2001:db8::5 64
  ifconfig [eth0:1] [down]
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 exited with non-zero status 1
  [1]
  $ changed
  - eth0:1 192.0.2.10/24
  - ifcfg-eth0:1 0:0 644
  - ifcfg-eth0:1: DEVICE="eth0:1"
  - ifcfg-eth0:1: IPADDR="192.0.2.10"
  - ifcfg-eth0:1: NETMASK="255.255.255.0"
