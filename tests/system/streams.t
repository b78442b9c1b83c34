Both streams: what is written to which, in which order, and what happens if it cannot be written.

Everything comes in the order of the events, whatever the stream.

  $ fresh || exit 80
  $ addrtool -v 10.0.0.1 -d 192.0.2.1
  0192.0.2.1: cannot delete main IP on interface
  [1]
  $ addrtool -v 10.0.0.1 -v 10.0.0.2 -d 192.0.2.1 -v 10.0.0.3
  00192.0.2.1: cannot delete main IP on interface
  [1]
  $ addrtool -v 10.0.0.1 -a nosuch0 10.0.0.1 255.255.255.0
  0nosuch0: no such network interface.
  [1]
  $ addrtool -v 10.0.0.1 -l -x -d 192.0.2.1
  addrtool: invalid option -- 'x'
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  0192.0.2.1: cannot delete main IP on interface
  [1]
  $ addrtool -x extra -l -y
  addrtool: invalid option -- 'x'
  addrtool: invalid option -- 'y'
  Some parameters in command string are left unprocessed. Check parameters please.
  Some parameters in command string are left unprocessed. Check parameters please.
  [1]
  $ addrtool -l -h 2>&1 | head -n 3
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  Usage: addrtool [OPTIONS]...

Answers are written before a command runs, and what a command prints comes before its failure.

  $ record 'echo complaint >&2; [ "$2" != add ] || exit 7'
  $ addrtool -v 10.0.0.1 -l -a eth0 192.0.2.2 255.255.255.0
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  0ifconfig [eth0:1] [192.0.2.2] [netmask] [255.255.255.0] [up]
  complaint
  $ addrtool -v 10.0.0.1 -a eth0 2001:db8::2 64
  0ifconfig [eth0] [add] [2001:db8::2/64]
  complaint
  /sbin/ifconfig eth0 add 2001:db8::2/64 exited with non-zero status 7
  [1]
  $ rm -r $network_scripts
  $ addrtool -l -a eth0 192.0.2.2 255.255.255.0
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  ifconfig [eth0:1] [192.0.2.2] [netmask] [255.255.255.0] [up]
  complaint
  /etc/sysconfig/network-scripts/ifcfg-eth0:1: No such file or directory
  [1]

A report on an interface file comes after the answers before it, and before a later failure.

  $ fresh
  $ record
  $ echo 'IPV6ADDR_SECONDARIES=nonsense' >$network_scripts/ifcfg-eth0
  $ addrtool -v 10.0.0.1 -l -a eth0 2001:db8::2 64
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  0ifconfig [eth0] [add] [2001:db8::2/64]
  nonsense: cannot parse IPv6 address
  System error 2: No such file or directory
  nonsense: cannot parse IPv6 address
  System error 2: No such file or directory
  $ addrtool -v 10.0.0.1 -d 2001:db8::1 -d 192.0.2.1
  02001:db8::1: cannot remove last address from eth0
  [1]

Answers are output, failures are errors, reports are both.

  $ fresh
  $ each '-l' '-v 10.0.0.1' '-d 192.0.2.1' '-x' '-l extra' '-h'
  addrtool -l
  1: 192.0.2.1 255.255.255.0 eth0 1
  1: 2001:db8::1 64 eth0 0
  addrtool -v 10.0.0.1
  1: 0 (no line feed)
  addrtool -d 192.0.2.1
  2: 192.0.2.1: cannot delete main IP on interface
  [1]
  addrtool -x
  2: addrtool: invalid option -- 'x'
  2: (usage)
  [2]
  addrtool -l extra
  12: Some parameters in command string are left unprocessed. Check parameters please.
  [1]
  addrtool -h
  2: (usage)
  [2]

A report ends with the last system error before it, even if that is unrelated. No step clears it.

  $ fresh
  $ record
  $ mkdir kel /proc/qv && touch kel/kel.conf /proc/qv/veinfo
  $ report() { addrtool "$@" -a eth0 2001:db8::2 64 2>/dev/null | sed 1d; }
  $ for list in nonsense '2001:db8::9/x nonsense' '2001:db8::9/70000 nonsense'; do
  >   echo "IPV6ADDR_SECONDARIES=$list" >$network_scripts/ifcfg-eth0
  >   report -v 10.0.0.1
  >   mv kel/kel.conf .; report; mv kel.conf kel
  >   mv /proc/qv/veinfo .; report -v 10.0.0.1; mv veinfo /proc/qv
  > done
  nonsense: cannot parse IPv6 address
  nonsense: cannot parse IPv6 address
  System error 2: No such file or directory
  nonsense: cannot parse IPv6 address
  System error 2: No such file or directory
  nonsense: cannot parse IPv6 address
  nonsense: cannot parse IPv6 address
  System error 2: No such file or directory
  nonsense: cannot parse IPv6 address
  System error 2: No such file or directory
  nonsense: cannot parse IPv6 address
  System error 34: Numerical result out of range
  nonsense: cannot parse IPv6 address
  System error 34: Numerical result out of range
  nonsense: cannot parse IPv6 address
  System error 34: Numerical result out of range
  $ echo IPV6ADDR_SECONDARIES=nonsense >$network_scripts/ifcfg-eth0
  $ rm /proc/qv/veinfo; mkdir /proc/qv/veinfo; for text in '' x; do report -v "$text"; done
  nonsense: cannot parse IPv6 address
  System error 21: Is a directory
  nonsense: cannot parse IPv6 address
  System error 21: Is a directory
  $ addrtool -l extra 2>/dev/full
  Some parameters in command string are left unprocessed. Check parameters please.
  [1]
  $ addrtool -x -l extra 2>/dev/full
  Some parameters in command string are left unprocessed. Check parameters please.
  System error 28: No space left on device
  [1]

A missing file of an alias or of an interface is such an error too. A report ends no call.

  $ fresh; mkdir kel; touch kel/kel.conf; interface eth1 2001:db8:1::1/64 2001:db8:1::2/64
  $ rm $network_scripts/ifcfg-eth1; ip address add 10.0.0.1/32 dev eth0 label eth0:1
  $ echo IPV6ADDR=2001:db8::5/64 >$network_scripts/ifcfg-eth0
  $ for first in 2001:db8:1::2 10.0.0.1; do ip address add 2001:db8::5/64 dev eth0 nodad
  >   addrtool -d $first -d 2001:db8::5 -v 10.0.0.1 2>/dev/null; echo; done
  Cannot remove last IPv6 address 2001:db8::5
  System error 2: No such file or directory
  0
  Cannot remove last IPv6 address 2001:db8::5
  System error 2: No such file or directory
  0

Output that cannot be written changes no status and causes no message.

  $ fresh
  $ for words in -l '-v 10.0.0.1' '-l -v 10.0.0.1 -l'; do
  >   addrtool $words >/dev/full
  >   addrtool $words >&-
  > done
  $ addrtool -l -a eth0 192.0.2.10 255.255.255.0 >/dev/full
  $ addrtool -v 10.0.0.1 -a eth0 192.0.2.11 255.255.255.0 >/dev/full
  $ addresses
  eth0 192.0.2.1/24
  eth0:1 192.0.2.10/24
  eth0:2 192.0.2.11/24
  eth0 2001:db8::1/64
  $ addrtool -v 10.0.0.1 -d 192.0.2.1 >&-
  192.0.2.1: cannot delete main IP on interface
  [1]
  $ addrtool -l extra >&-
  Some parameters in command string are left unprocessed. Check parameters please.
  [1]
  $ addrtool 2>/dev/full
  [2]
  $ addrtool -h 2>&-
  [2]

Closed streams change no action.

  $ fresh
  $ addrtool -a eth0 192.0.2.10 255.255.255.0 -l -v 10.0.0.1 <&- >&- 2>&-
  $ addrtool -a eth0 2001:db8::2 64 <&- >&- 2>&-
  $ changed
  + eth0:1 192.0.2.10/24
  + eth0 2001:db8::2/64
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::2/64"
  + ifcfg-eth0:1 0:0 644
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"
  $ addrtool -d 192.0.2.10 -d 2001:db8::2 -d 192.0.2.1 <&- >&- 2>&-
  [1]
  $ changed
  - eth0:1 192.0.2.10/24
  - eth0 2001:db8::2/64
  - ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::2/64"
  - ifcfg-eth0:1 0:0 644
  - ifcfg-eth0:1: DEVICE="eth0:1"
  - ifcfg-eth0:1: IPADDR="192.0.2.10"
  - ifcfg-eth0:1: NETMASK="255.255.255.0"
  $ addrtool -l extra <&- 2>&-
  Some parameters in command string are left unprocessed. Check parameters please.
  [1]

A reader that ends early ends the program, unless the signal is ignored.

  $ fresh
  $ (sleep 0.1; addrtool -l -d 192.0.2.1; echo "status $?" >&2) | true
  status 141
  $ (sleep 0.1; trap '' PIPE; addrtool -l -d 192.0.2.1; echo "status $?" >&2) | true
  192.0.2.1: cannot delete main IP on interface
  status 1

A file that takes the output keeps what it has.

  $ echo before >list
  $ addrtool -v 10.0.0.1 -l >>list
  $ cat list
  before
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  0 (no-eol)

A report comes twice, even into one file.

  $ addrtool -l extra >both 2>&1
  [1]
  $ cat both
  Some parameters in command string are left unprocessed. Check parameters please.
  Some parameters in command string are left unprocessed. Check parameters please.

Nothing is logged.

  $ cat >log.py <<'END'
  > import socket, subprocess
  > log = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
  > log.bind("/dev/log")
  > log.settimeout(0)
  > for words in "-a eth0 192.0.2.10 255.255.255.0", "-a eth0 2001:db8::5 64", "-l extra", \
  >     "-v 10.0.0.1 -d 192.0.2.10", "-d 2001:db8::5", "-d 192.0.2.1", "-x":
  >     status = subprocess.call(["addrtool"] + words.split(), stdout=-3, stderr=-3)
  >     try:
  >         print(words, status, log.recv(999))
  >     except BlockingIOError:
  >         print(words, status)
  > END
  $ fresh; /usr/bin/python3 log.py
  -a eth0 192.0.2.10 255.255.255.0 0
  -a eth0 2001:db8::5 64 0
  -l extra 1
  -v 10.0.0.1 -d 192.0.2.10 0
  -d 2001:db8::5 0
  -d 192.0.2.1 1
  -x 2
