What the program takes from its caller: a name, an environment, a terminal, rights.

Needs a real processor.

Complaints of the option parser start with the name that the caller gave.

  $ fresh || exit 80
  $ (exec -a /opt/panel/tool addrtool -x -l)
  /opt/panel/tool: invalid option -- 'x'
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  $ (exec -a '' addrtool -x -l)
  : invalid option -- 'x'
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0

It runs with an empty environment, without a working directory and without an input.

  $ (mkdir gone && cd gone && rmdir ../gone && env -i "$(type -P addrtool)" -l <&-)
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0

It reads nothing from its input.

  $ echo text | (addrtool -l -v 10.0.0.1 -d 192.0.2.1 >/dev/null 2>&1; cat)
  text

The listing, the container check and the guards need no privilege.

  $ unshare --user addrtool -l -v 10.0.0.1 -d 192.0.2.1
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  0192.0.2.1: cannot delete main IP on interface
  [1]

On a terminal, a message for both streams comes twice.

  $ script -qec 'addrtool -l extra' /dev/null </dev/null | tr -d '\r'
  Some parameters in command string are left unprocessed. Check parameters please.
  Some parameters in command string are left unprocessed. Check parameters please.
  $ script -qec 'addrtool -x -l -v 10.0.0.1 -d 192.0.2.1' /dev/null </dev/null | tr -d '\r'
  addrtool: invalid option -- 'x'
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  0192.0.2.1: cannot delete main IP on interface

The usage text has the same lines on a terminal of any width, wherever the output goes.

  $ addrtool 2>usage
  [2]
  $ script -qec 'addrtool -h >output' /dev/null </dev/null | tr -d '\r' | cmp - usage && cat output
  $ COLUMNS=20 TERM=xterm script -qec 'addrtool -h' /dev/null </dev/null | tr -d '\r' | cmp - usage

Its output is the same in every locale.

  $ addrtool -x -l -d 192.0.2.1 &>usual
  [1]
  $ for locale in C.UTF-8 de_DE.UTF-8 tr_TR ''; do
  >   LC_ALL=$locale LANG=$locale LANGUAGE=de addrtool -x -l -d 192.0.2.1 2>&1 | cmp - usual
  > done; wc -l <usual
  4

Signals that the caller ignores change nothing.

  $ (trap '' HUP INT TERM PIPE ALRM; addrtool -l -v 10.0.0.1 -d 192.0.2.1)
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  0192.0.2.1: cannot delete main IP on interface
  [1]
