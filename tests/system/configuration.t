The runtime configuration /etc/kel/kel.conf: it is loaded, and nothing depends on it.

Its contents change nothing and cause no message.

  $ fresh || exit 80
  $ mkdir kel
  $ listing() { addrtool -l 2>&1 | cmp - expected; }
  $ addrtool -l >expected
  $ for contents in '' '\n \t\n' '# comment\n' 'PRODUCT_ROOT_D /opt/kel\n' 'NAME=value\n' 'NAME\n' \
  >     'NAME # x\n' 'NAME a#b' '"NAME" value\n' 'NAME: value\n' '\xef\xbb\xbfNAME value\r\n' \
  >     'A 1\nA 2\n' 'NAME\0 value\n\0\0\nB \0\n' '%s%n %s%n\n' '\xff\xfe\n' ' \v\f\r\n'; do
  >   printf "${contents//\%/%%}" >kel/kel.conf
  >   listing
  > done

Nor does its size.

  $ for ((n = 0; n < 3000; n++)); do echo "NAME_$n value"; done >kel/kel.conf; listing
  $ for ((n = 0; n < 400; n++)); do head -n 25 kel/kel.conf; done >many; mv many kel/kel.conf; listing
  $ head -c 1000000 /dev/zero | tr '\0' x >kel/kel.conf; listing
  $ head -c 1000000 /dev/zero | tr '\0' '\n' >kel/kel.conf; listing
  $ cat /bin/sh >kel/kel.conf; listing

A value in it changes no path and no address.

  $ printf '%s\n' 'PRODUCT_ROOT_D /opt' 'DUMP_TMP_D /nowhere' 'LC_ALL C' 'PATH /nowhere' >kel/kel.conf
  $ addrtool -a eth0 192.0.2.10 255.255.255.0
  $ changed
  + eth0:1 192.0.2.10/24
  + ifcfg-eth0:1 0:0 644
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"

A file that cannot be read changes nothing and causes no message.

  $ fresh
  $ for target in kel.conf missing /proc/self/mem /etc; do
  >   mkdir -p kel; ln -sfn $target kel/kel.conf
  >   listing
  > done
  $ rm -r kel; listing
  $ touch kel; listing; rm kel

It is left as it is.

  $ mkdir kel; echo 'NAME value' >kel/kel.conf; chmod 640 kel/kel.conf; touch -d @1 kel/kel.conf
  $ addrtool -l -v 10.0.0.1 -a eth0 2001:db8::2 64 >/dev/null
  $ ls kel; stat -c '%a %Y' kel/kel.conf; cat kel/kel.conf
  kel.conf
  640 1
  NAME value

It is loaded after the checks of the command line. A pipe that nobody writes to stops it there.

  $ fresh
  $ mkdir kel; mkfifo kel/kel.conf
  $ for words in '-l extra' '' -x '-a eth0 192.0.2.5'; do
  >   timeout 20 addrtool $words 2>&1 >/dev/null | head -n 1
  > done
  Some parameters in command string are left unprocessed. Check parameters please.
  Usage: addrtool [OPTIONS]...
  addrtool: invalid option -- 'x'
  Usage: addrtool [OPTIONS]...

It is loaded before the first action, whatever that is.

  $ for words in -l -h '-v 10.0.0.1' '-d 192.0.2.1' '-a eth9 192.0.2.5 0.0.0.0' '-l -h'; do
  >   streams timeout 0.2 addrtool $words || echo "[$?]"
  > done
  [124]
  [124]
  [124]
  [124]
  [124]
  [124]

A later report of a system error shows how the loading failed.

  $ fresh
  $ record
  $ echo 'IPV6ADDR_SECONDARIES=nonsense' >$network_scripts/ifcfg-eth0
  $ for target in kel.conf missing /proc/self/mem /etc ifcfg; do
  >   mkdir -p kel; touch kel/ifcfg; ln -sfn $target kel/kel.conf
  >   addrtool -a eth0 2001:db8::2 64 2>/dev/null
  > done
  ifconfig [eth0] [add] [2001:db8::2/64]
  nonsense: cannot parse IPv6 address
  System error 40: Too many levels of symbolic links
  ifconfig [eth0] [add] [2001:db8::2/64]
  nonsense: cannot parse IPv6 address
  System error 2: No such file or directory
  ifconfig [eth0] [add] [2001:db8::2/64]
  nonsense: cannot parse IPv6 address
  System error 5: Input/output error
  ifconfig [eth0] [add] [2001:db8::2/64]
  nonsense: cannot parse IPv6 address
  System error 21: Is a directory
  ifconfig [eth0] [add] [2001:db8::2/64]
  nonsense: cannot parse IPv6 address
