Options and operands: which actions they run, in which order, with which status.

Without an action, the usage text goes to standard error, and the status is 2.

  $ fresh || exit 80
  $ ip address delete 2001:db8::1/64 dev eth0
  $ changed
  - eth0 2001:db8::1/64
  $ streams addrtool
  2: Usage: addrtool [OPTIONS]...
  2: 
  2:   -l,  --list                                  list all addresses in format: "<ipaddr> <netmask> <interface> <is-primary-ip>\n ..."
  2:   -a,  --add <interface> <ipaddress> <netmask> add IP on <interface>
  2:   -d,  --del <ipaddress>                       delete IP
  2:   -h,  --help                                  display this help and exit
  2:   -v,  --qv-assigned-ip <ipaddress>            determine if <ipaddress> was assigned to this VE
  [2]

The option --main, operands and an empty interface ask for nothing.

  $ each '' '--main' '--main --main' 'operand' '--main operand' '--' '--main -- -l' "''" \
  >   "-a ''" '--add=' "-a '' 192.0.2.5 24" "-a eth0 -a '' 192.0.2.5 24"
  2: (usage)
  [2]

The help is an action. Listings before it run. No other action does.

  $ each '-h' '--help' '-h -l' '-d 192.0.2.10 -h' '-v 10.0.0.1 -h' '-h -a eth0 192.0.2.10 24' \
  >   '-l -h' '-l --help -l'
  addrtool -h
  addrtool --help
  addrtool -h -l
  addrtool -d 192.0.2.10 -h
  addrtool -v 10.0.0.1 -h
  addrtool -h -a eth0 192.0.2.10 24
  2: (usage)
  [2]
  addrtool -l -h
  addrtool -l --help -l
  1: 192.0.2.1 255.255.255.0 eth0 1
  2: (usage)
  [2]

An add without exactly two operands prints the usage text before any action.

  $ addrtool -a eth0 192.0.2.10 255.255.255.0
  $ changed | head -n 1
  + eth0:1 192.0.2.10/24
  $ each '-a eth0' '-a eth0 192.0.2.5' '192.0.2.5 -a eth0' '-a eth0 192.0.2.5 255.255.255.0 x' \
  >   'x --add eth0 192.0.2.5 -l 255.255.255.0' '-l -a eth0 192.0.2.5' '-h -a eth0 192.0.2.5' \
  >   '-d 192.0.2.10 -l -a eth0 192.0.2.5' '-d 192.0.2.10 -a eth0 192.0.2.5 24 25' \
  >   '-d 192.0.2.10 -a eth0' "-a eth0 ''" '-a eth0 192.0.2.10 255.255.255.0 extra' \
  >   '-a eth0 2001:db8::5' '-a eth0 2001:db8::5/64' '-a eth0 192.0.2.5/24'
  2: (usage)
  [2]
  $ changed

A leftover operand ends the program before any action, with a message on both streams.

  $ each '-l extra' 'extra -l' '-l -- -l' '-v 10.0.0.1 extra more' '-h extra' '--help extra' \
  >   '-d 192.0.2.10 extra' "-l ''" "-l -a '' extra" '-l -' '-d 192.0.2.10 192.0.2.11'
  12: Some parameters in command string are left unprocessed. Check parameters please.
  [1]
  $ changed

Bad options are reported, each by itself. Alone, they end with the usage text. There is no -m.

  $ fresh
  $ ip address delete 2001:db8::1/64 dev eth0
  $ addrtool 2>usage
  [2]
  $ for words in -x -m '-x -y' '-?' -: '-W main' --version --list=now --main=x --help=x \
  >     -d -v -a --del --add --qv-assigned-ip; do
  >   streams addrtool $words >all || echo "addrtool $words [$?]"
  >   sed -n '/^2: Usage/,$s/^2: //p' all | cmp - usage && sed '/^2: Usage/,$d' all; done
  addrtool -x [2]
  2: addrtool: invalid option -- 'x'
  addrtool -m [2]
  2: addrtool: invalid option -- 'm'
  addrtool -x -y [2]
  2: addrtool: invalid option -- 'x'
  2: addrtool: invalid option -- 'y'
  addrtool -? [2]
  2: addrtool: invalid option -- '?'
  addrtool -: [2]
  2: addrtool: invalid option -- ':'
  addrtool -W main [2]
  2: addrtool: invalid option -- 'W'
  addrtool --version [2]
  2: addrtool: unrecognized option '--version'
  addrtool --list=now [2]
  2: addrtool: option '--list' doesn't allow an argument
  addrtool --main=x [2]
  2: addrtool: option '--main' doesn't allow an argument
  addrtool --help=x [2]
  2: addrtool: option '--help' doesn't allow an argument
  addrtool -d [2]
  2: addrtool: option requires an argument -- 'd'
  addrtool -v [2]
  2: addrtool: option requires an argument -- 'v'
  addrtool -a [2]
  2: addrtool: option requires an argument -- 'a'
  addrtool --del [2]
  2: addrtool: option '--del' requires an argument
  addrtool --add [2]
  2: addrtool: option '--add' requires an argument
  addrtool --qv-assigned-ip [2]
  2: addrtool: option '--qv-assigned-ip' requires an argument

There are no other options, neither short nor long. An empty name may mean each, in this order.

  $ for letter in {a..z} {A..Z} {0..9}; do
  >   addrtool "-$letter" 2>&1 | grep -q 'invalid option' || echo "-$letter"
  >   addrtool "--$letter" 2>&1 | grep -q 'unrecognized option' || echo "--$letter"
  > done | xargs
  -a --a -d --d -h --h -l --l --m --q -v
  $ addrtool --=x 2>&1 | grep -o "'--[a-z-]*'" | xargs
  --list --add --del --main --help --qv-assigned-ip

A bad option stops no action and changes no status.

  $ each '-x -l' '-l -x' '-xl' '-l -d' '-l --wrong' '-m -v 10.0.0.1'
  addrtool -x -l
  addrtool -l -x
  addrtool -xl
  1: 192.0.2.1 255.255.255.0 eth0 1
  2: addrtool: invalid option -- 'x'
  addrtool -l -d
  1: 192.0.2.1 255.255.255.0 eth0 1
  2: addrtool: option requires an argument -- 'd'
  addrtool -l --wrong
  1: 192.0.2.1 255.255.255.0 eth0 1
  2: addrtool: unrecognized option '--wrong'
  addrtool -m -v 10.0.0.1
  1: 0 (no line feed)
  2: addrtool: invalid option -- 'm'

Each option has a short form, a long one, and its abbreviations.

  $ each '-l' '--list' '--l' '-l --main' '--m -l' "-l -a ''" "-a eth0 -l -a ''"
  1: 192.0.2.1 255.255.255.0 eth0 1
  $ each '-v 10.0.0.1' '-v10.0.0.1' '--qv-assigned-ip 10.0.0.1' '--qv-assigned-ip=10.0.0.1' \
  >   '--q 10.0.0.1' '--qv=10.0.0.1' '--main -v 10.0.0.1'
  1: 0 (no line feed)
  $ each '-d 192.0.2.1' '-d192.0.2.1' '--del 192.0.2.1' '--del=192.0.2.1' '--d=192.0.2.1'
  2: 192.0.2.1: cannot delete main IP on interface
  [1]
  $ each '-a eth9 192.0.2.5 0.0.0.0' '-aeth9 192.0.2.5 0.0.0.0' '--add eth9 192.0.2.5 0.0.0.0' \
  >   '--add=eth9 192.0.2.5 0.0.0.0' '--a=eth9 192.0.2.5 0.0.0.0' '192.0.2.5 -aeth9 0.0.0.0' \
  >   '-a eth9 -- 192.0.2.5 0.0.0.0' '192.0.2.5 0.0.0.0 -a eth9 --' '--main -a eth9 x 0.0.0.0'
  2: eth9: no such network interface.
  [1]
  $ each '-lv10.0.0.1' '-lvl' '-lv -l'
  1: 192.0.2.1 255.255.255.0 eth0 1
  1: 0 (no line feed)

An argument is taken as typed, whatever it looks like.

  $ each '-d -l' '--del -h' '-d --' "-d ''" '--del=' "-d ' 192.0.2.1'" "-d '192.0.2.1 '" \
  >   '-d=192.0.2.1' '--del==192.0.2.1' '-a=eth0 192.0.2.5 0.0.0.0' '-v -h' '-v --list' "-v ''" \
  >   '-v --' '-a -l 192.0.2.5 0.0.0.0' '-a -- 192.0.2.5 0.0.0.0' \
  >   "-a ' eth0' 192.0.2.5 0.0.0.0" "-a 'eth0 ' 192.0.2.5 0.0.0.0"
  addrtool -d -l
  2: -l: not configured.
  [1]
  addrtool --del -h
  2: -h: not configured.
  [1]
  addrtool -d --
  2: --: not configured.
  [1]
  addrtool -d ''
  addrtool --del=
  2: : not configured.
  [1]
  addrtool -d ' 192.0.2.1'
  2:  192.0.2.1: not configured.
  [1]
  addrtool -d '192.0.2.1 '
  2: 192.0.2.1 : not configured.
  [1]
  addrtool -d=192.0.2.1
  addrtool --del==192.0.2.1
  2: =192.0.2.1: not configured.
  [1]
  addrtool -a=eth0 192.0.2.5 0.0.0.0
  2: =eth0: no such network interface.
  [1]
  addrtool -v -h
  addrtool -v --list
  addrtool -v ''
  addrtool -v --
  1: 0 (no line feed)
  addrtool -a -l 192.0.2.5 0.0.0.0
  2: -l: no such network interface.
  [1]
  addrtool -a -- 192.0.2.5 0.0.0.0
  2: --: no such network interface.
  [1]
  addrtool -a ' eth0' 192.0.2.5 0.0.0.0
  2:  eth0: no such network interface.
  [1]
  addrtool -a 'eth0 ' 192.0.2.5 0.0.0.0
  2: eth0 : no such network interface.
  [1]

A message has the argument byte by byte, whatever its bytes and its length.

  $ addrtool -d '%s%n%d'
  %s%n%d: not configured.
  [1]
  $ addrtool -d $'a\nb\t\e[31m\xff'
  a
  b\t\x1b[31m\xff: not configured. (esc)
  [1]
  $ addrtool -d "$(printf '%5000d' 0)" 2>&1 | wc -c
  5018

A repeated action runs once for each option.

  $ each '-l -l' '-ll' '--list --main -l'
  1: 192.0.2.1 255.255.255.0 eth0 1
  1: 192.0.2.1 255.255.255.0 eth0 1
  $ each '-v 10.0.0.1 -v 10.0.0.1 -v 10.0.0.2'
  1: 000 (no line feed)

With POSIXLY_CORRECT in the environment, the options end at the first operand.

  $ POSIXLY_CORRECT=1 each '-l -a eth0 192.0.2.10 255.255.255.0 -l' '192.0.2.10 -l'
  2: (usage)
  [2]
  $ each '-a eth0 192.0.2.10 -l 255.255.255.0'
  1: 192.0.2.1 255.255.255.0 eth0 1
  $ addresses
  eth0 192.0.2.1/24
  eth0:1 192.0.2.10/24

Listings come first, deletes and checks next, the add last. So the add gets the freed number.

  $ fresh
  $ addrtool -a eth0 192.0.2.10 255.255.255.0
  $ addrtool 192.0.2.12 -v 10.0.0.1 -a eth0 -d 192.0.2.10 255.255.255.0 -l; echo
  192.0.2.1 255.255.255.0 eth0 1
  192.0.2.10 255.255.255.0 eth0 0
  2001:db8::1 64 eth0 0
  0
  $ changed | head -n 1
  + eth0:1 192.0.2.12/24

Deletes and checks keep their order.

  $ fresh
  $ addrtool -a eth0 192.0.2.10 255.255.255.0
  $ addrtool -v 10.0.0.1 -d 192.0.2.10 -v 10.0.0.2 --del 192.0.2.10 -v 10.0.0.3
  00192.0.2.10: not configured.
  [1]

Only the last interface to add on counts.

  $ fresh
  $ interface eth1 198.51.100.1/24
  $ addrtool -a eth0 -a eth1 10.0.0.5 255.255.255.0
  $ addrtool -a eth9 --add eth0 10.0.0.6 255.255.255.0
  $ changed | grep /
  + eth0:1 10.0.0.6/24
  + eth1 198.51.100.1/24
  + eth1:1 10.0.0.5/24

A failure ends the program. What was done before stays.

  $ fresh
  $ for n in 10 11; do addrtool -a eth0 192.0.2.$n 255.255.255.0; done
  $ changed >/dev/null
  $ addrtool -a eth0 192.0.2.12 255.255.255.0 -l -d 192.0.2.10 --del 192.0.2.1 -d 192.0.2.11
  192.0.2.1 255.255.255.0 eth0 1
  192.0.2.10 255.255.255.0 eth0 0
  192.0.2.11 255.255.255.0 eth0 0
  2001:db8::1 64 eth0 0
  192.0.2.1: cannot delete main IP on interface
  [1]
  $ changed
  - eth0:1 192.0.2.10/24
  - ifcfg-eth0:1 0:0 644
  - ifcfg-eth0:1: DEVICE="eth0:1"
  - ifcfg-eth0:1: IPADDR="192.0.2.10"
  - ifcfg-eth0:1: NETMASK="255.255.255.0"
  $ addrtool -a eth9 192.0.2.12 255.255.255.0 -d 192.0.2.11
  eth9: no such network interface.
  [1]
  $ changed | head -n 1
  - eth0:2 192.0.2.11/24
