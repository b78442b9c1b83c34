The lists of IPv6 addresses in the files of interfaces.

An add appends a list if the file has none. It never sets IPV6ADDR, and does not look at it.

  $ fresh || exit 80
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0
  $ try() { # CONTENT OPTION ...: the messages of addrtool with this file, and behind - the new file
  >   printf "$1" >$file; streams addrtool "${@:2}" | grep -v ifconfig
  >   { printf -- '- '; cat -vT $file; } | sed '1!s/^/  /'; }
  $ add() { for content; do try "$content" -a eth0 2001:db8::5 64; done; }
  $ fresh; record; ip address add 2001:db8::5/64 dev eth0; mkdir /etc/kel; touch /etc/kel/kel.conf
  $ add '' 'DEVICE=eth0\n\n# comment\n' 'IPV6ADDR=2001:db8::1/64\nX=1\n' \
  >   'IPV6ADDR=2001:db8::5/64\n' 'IPV6ADDR=\n' 'IPV6ADDR=""\n'
  - IPV6ADDR_SECONDARIES="2001:db8::5/64"
  - DEVICE=eth0
    
    # comment
    IPV6ADDR_SECONDARIES="2001:db8::5/64"
  - IPV6ADDR=2001:db8::1/64
    X=1
    IPV6ADDR_SECONDARIES="2001:db8::5/64"
  - IPV6ADDR=2001:db8::5/64
    IPV6ADDR_SECONDARIES="2001:db8::5/64"
  - IPV6ADDR=
    IPV6ADDR_SECONDARIES="2001:db8::5/64"
  - IPV6ADDR=""
    IPV6ADDR_SECONDARIES="2001:db8::5/64"

The address comes first in the list, which is written in its place.

  $ add 'IPV6ADDR_SECONDARIES=2001:db8::2/64\nX=1\n' 'IPV6ADDR_SECONDARIES=2001:DB8:0::2/064\n'
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 2001:db8::2/64"
    X=1
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 2001:DB8:0::2/64"

A closing quote costs the last entry its length.

  $ add 'IPV6ADDR_SECONDARIES="2001:db8::2/64"\n' \
  >     "IPV6ADDR_SECONDARIES='2001:db8::2/64 2001:db8::3/64'\n"
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 2001:db8::2/0"
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 2001:db8::2/64 2001:db8::3/0"

Entries are separated by any white space. A carriage return at the end of the line is lost.

  $ add 'IPV6ADDR_SECONDARIES="a:/1\t \v\fb:/2  c:/3"\r\n' 'IPV6ADDR_SECONDARIES=a:/1\r\n'
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 a:/1 b:/2 c:/0"
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 a:/1"

An entry's length that is no number from 0 to 65535 becomes 0. A plus sign and white space are
allowed.

  $ add 'IPV6ADDR_SECONDARIES=a/x b/ c/-1 d/65536 e/65535 f/+64 g/0064 /1\n'
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 a/0 b/0 c/0 d/0 e/65535 f/64 g/64 /1"

The list may have the address already.

  $ add 'IPV6ADDR_SECONDARIES=2001:db8::5/64 2001:DB8::5/48 b/3 b/3\n'
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 2001:db8::5/64 2001:DB8::5/48 b/3 b/3"

A list that is empty is kept, and another one is appended.

  $ add 'IPV6ADDR_SECONDARIES=""\nX=1\n' 'IPV6ADDR_SECONDARIES=\n' 'IPV6ADDR_SECONDARIES= \n' \
  >   'IPV6ADDR_SECONDARIES\n' 'IPV6ADDR_SECONDARIES=""\r\n'
  - IPV6ADDR_SECONDARIES=""
    X=1
    IPV6ADDR_SECONDARIES="2001:db8::5/64"
  - IPV6ADDR_SECONDARIES=
    IPV6ADDR_SECONDARIES="2001:db8::5/64"
  - IPV6ADDR_SECONDARIES= 
    IPV6ADDR_SECONDARIES="2001:db8::5/64"
  - IPV6ADDR_SECONDARIES
    IPV6ADDR_SECONDARIES="2001:db8::5/64"
  - IPV6ADDR_SECONDARIES=""^M
    IPV6ADDR_SECONDARIES="2001:db8::5/64"

If there is another list, nothing is appended.

  $ add 'IPV6ADDR_SECONDARIES=a/1\nIPV6ADDR_SECONDARIES=""\n' \
  >   'IPV6ADDR_SECONDARIES=""\nIPV6ADDR_SECONDARIES=a/1\n'
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 a/1"
    IPV6ADDR_SECONDARIES=""
  - IPV6ADDR_SECONDARIES=""
    IPV6ADDR_SECONDARIES="2001:db8::5/64 a/1"

A second list repeats the first one.

  $ add 'IPV6ADDR_SECONDARIES=a/1\nX=1\nIPV6ADDR_SECONDARIES=b/2 c/3\n'
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 a/1"
    X=1
    IPV6ADDR_SECONDARIES="2001:db8::5/64 a/1"
     b/2 c/3"

A longer name that starts like the list's counts as one.

  $ add 'IPV6ADDR_SECONDARIES_OLD=a/1\n' 'IPV6ADDR_SECONDARIES a=b=/1\n'
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 a/1"
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 b=/1"

Any other line is none, and it is kept.

  $ add ' IPV6ADDR_SECONDARIES=a/1\n' \
  >   'export IPV6ADDR_SECONDARIES=a/1\nipv6addr_secondaries=a/1\n#IPV6ADDR_SECONDARIES=a/1\n' \
  >   'X=1\r\n\t\xff\xfe\0Z\n' '\xef\xbb\xbfIPV6ADDR_SECONDARIES=a/1\n'
  -  IPV6ADDR_SECONDARIES=a/1
    IPV6ADDR_SECONDARIES="2001:db8::5/64"
  - export IPV6ADDR_SECONDARIES=a/1
    ipv6addr_secondaries=a/1
    #IPV6ADDR_SECONDARIES=a/1
    IPV6ADDR_SECONDARIES="2001:db8::5/64"
  - X=1^M
    ^IM-^?M-~^@Z
    IPV6ADDR_SECONDARIES="2001:db8::5/64"
  - M-oM-;M-?IPV6ADDR_SECONDARIES=a/1
    IPV6ADDR_SECONDARIES="2001:db8::5/64"

A backslash continues no line.

  $ add 'X=\\\nIPV6ADDR_SECONDARIES=a/1\n' 'IPV6ADDR_SECONDARIES="a/1 \\\n b/2"\n'
  - X=\
    IPV6ADDR_SECONDARIES="2001:db8::5/64 a/1"
  1: \: cannot parse IPv6 address
  2: \: cannot parse IPv6 address
  - IPV6ADDR_SECONDARIES="a/1 \
     b/2"

If the last line has no line feed, the list is appended to it.

  $ add 'ONBOOT=yes' 'IPV6ADDR_SECONDARIES=a/1'
  - ONBOOT=yesIPV6ADDR_SECONDARIES="2001:db8::5/64"
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 a/1"

An entry without exactly one slash is reported on both streams, and the file stays.

  $ add 'IPV6ADDR_SECONDARIES=a/1 b\n' 'IPV6ADDR_SECONDARIES=a/1/2\n' \
  >     'IPV6ADDR_SECONDARIES="a/1 "\n' 'IPV6ADDR_SECONDARIES=a//1\n'
  1: b: cannot parse IPv6 address
  2: b: cannot parse IPv6 address
  - IPV6ADDR_SECONDARIES=a/1 b
  1: a/1/2: cannot parse IPv6 address
  2: a/1/2: cannot parse IPv6 address
  - IPV6ADDR_SECONDARIES=a/1/2
  1: ": cannot parse IPv6 address
  2: ": cannot parse IPv6 address
  - IPV6ADDR_SECONDARIES="a/1 "
  1: a//1: cannot parse IPv6 address
  2: a//1: cannot parse IPv6 address
  - IPV6ADDR_SECONDARIES=a//1

The report has the whole entry.

  $ printf 'IPV6ADDR_SECONDARIES=%07000d\n' 0 >$file
  $ addrtool -a eth0 2001:db8::5 64 2>/dev/null | wc -c
  7067

A comment behind the list is part of it.

  $ add 'IPV6ADDR_SECONDARIES=a/1 # b/2\n' 'IPV6ADDR_SECONDARIES="a/1" #b/2\n'
  1: #: cannot parse IPv6 address
  2: #: cannot parse IPv6 address
  - IPV6ADDR_SECONDARIES=a/1 # b/2
  - IPV6ADDR_SECONDARIES="2001:db8::5/64 a/0 #b/2"

A delete removes every entry with the address, in any spelling. The others keep their order, and
their number.

  $ delete() { for content; do try "$content" -d 2001:db8::5; done; }
  $ delete 'IPV6ADDR=2001:db8::1/64\nIPV6ADDR_SECONDARIES=2001:db8::5/64\nX=1\n' \
  >   'IPV6ADDR_SECONDARIES=c/9 2001:DB8:0::5/1 2001:db8::2/64 2001:db8::0.0.0.5/2 b/3 b/3\n' \
  >   'IPV6ADDR_SECONDARIES=2001:db8::5/64 a/1'
  - IPV6ADDR=2001:db8::1/64
    X=1
  - IPV6ADDR_SECONDARIES="c/9 2001:db8::2/64 b/3 b/3"
  - IPV6ADDR_SECONDARIES="a/1"

If IPV6ADDR is the address, the first entry takes its place, without quotes.

  $ delete 'IPV6ADDR=2001:db8::5/64\nX=1\nIPV6ADDR_SECONDARIES=2001:DB8::2/064 2001:db8::3/64\n' \
  >   'IPV6ADDR_SECONDARIES="2001:db8::2/64"\nIPV6ADDR="2001:db8::5/64"' \
  >   'IPV6ADDR=2001:db8::5/64\nIPV6ADDR_SECONDARIES=a/1\nIPV6ADDR_SECONDARIES=b/2\n'
  - IPV6ADDR=2001:DB8::2/64
    X=1
    IPV6ADDR_SECONDARIES="2001:db8::3/64"
  - IPV6ADDR=2001:db8::2/0
  - IPV6ADDR=a/1
    IPV6ADDR_SECONDARIES="b/2"
    IPV6ADDR_SECONDARIES="b/2"

The quotes, blanks and length of IPV6ADDR do not matter, but other text does.

  $ for value in 2001:DB8:0::5/1 "'2001:db8::5'" '"2001:db8::5"/64' ' "\t2001:db8::5/64 "\r' \
  >     '2001:db8::5/64 # x' 2001:db8::5//x; do
  >   delete "IPV6ADDR=$value\nIPV6ADDR_SECONDARIES=a/1\n"; done
  - IPV6ADDR=a/1
  - IPV6ADDR=a/1
  - IPV6ADDR="2001:db8::5"/64
    IPV6ADDR_SECONDARIES="a/1"
  - IPV6ADDR=a/1
  - IPV6ADDR=a/1
  - IPV6ADDR=a/1

The last IPV6ADDR decides, even if it is empty, and each of them is replaced.

  $ delete 'IPV6ADDR=2001:db8::5/64\nIPV6ADDR=\nIPV6ADDR_SECONDARIES=a/1\n' \
  >   'IPV6ADDR=\nIPV6ADDR=2001:db8::7/64\nIPV6ADDR=2001:db8::5/64\nIPV6ADDR_SECONDARIES=a/1\n'
  - IPV6ADDR=2001:db8::5/64
    IPV6ADDR=
    IPV6ADDR_SECONDARIES="a/1"
  - IPV6ADDR=a/1
    IPV6ADDR=a/1
    IPV6ADDR=a/1

The first entry is promoted even if it is the address. So entries that all equal the first address
do.

  $ delete 'IPV6ADDR=2001:db8::5/64\nIPV6ADDR_SECONDARIES=2001:DB8::5/48 2001:db8::5/64\n'
  - IPV6ADDR=2001:DB8::5/48

Without an entry to promote, the delete is reported on both streams, and the file stays.

  $ delete 'IPV6ADDR=2001:db8::5/64\n' 'IPV6ADDR=2001:db8::5/64\nIPV6ADDR_SECONDARIES=""\n'
  1: Cannot remove last IPv6 address 2001:db8::5
  2: Cannot remove last IPv6 address 2001:db8::5
  - IPV6ADDR=2001:db8::5/64
  1: Cannot remove last IPv6 address 2001:db8::5
  2: Cannot remove last IPv6 address 2001:db8::5
  - IPV6ADDR=2001:db8::5/64
    IPV6ADDR_SECONDARIES=""

An address that is not in the file leaves it as it is, but lists are written anew.

  $ delete 'IPV6ADDR="2001:db8::1/64"\nIPV6ADDR_SECONDARIES="a/1\tb/2"\r\nX=1\n' \
  >   'IPV6ADDR_SECONDARIES=""\nX=1\n' 'IPV6ADDR=x\nX=1'
  - IPV6ADDR="2001:db8::1/64"
    IPV6ADDR_SECONDARIES="a/1 b/0"
    X=1
  - X=1
  - IPV6ADDR=x
    X=1 (no-eol)

Each of several lists is replaced by all of them, or removed if nothing is left.

  $ delete 'IPV6ADDR_SECONDARIES=a/1\nX=1\nIPV6ADDR_SECONDARIES=2001:db8::5/64 b/2\n' \
  >   'IPV6ADDR_SECONDARIES=2001:db8::5/64\nX=1\nIPV6ADDR_SECONDARIES=2001:db8::5/48\n'
  - IPV6ADDR_SECONDARIES="a/1 b/2"
    X=1
    IPV6ADDR_SECONDARIES="a/1 b/2"
  - X=1

A delete needs the exact name at the start of the line.

  $ delete 'IPV6ADDR_SECONDARIES_OLD=2001:db8::5/64\n IPV6ADDR=2001:db8::5\n'\
  > 'IPV6ADDR =2001:db8::5\nipv6addr=2001:db8::5\nIPV6ADDR_X=2001:db8::5\n'
  - IPV6ADDR_SECONDARIES_OLD=2001:db8::5/64
     IPV6ADDR=2001:db8::5
    IPV6ADDR =2001:db8::5
    ipv6addr=2001:db8::5
    IPV6ADDR_X=2001:db8::5

It reports an entry without exactly one slash on both streams, and the file stays.

  $ delete 'IPV6ADDR=2001:db8::5/64\nIPV6ADDR_SECONDARIES=a/1 2001:db8::5\n'
  1: 2001:db8::5: cannot parse IPv6 address
  2: 2001:db8::5: cannot parse IPv6 address
  - IPV6ADDR=2001:db8::5/64
    IPV6ADDR_SECONDARIES=a/1 2001:db8::5

The system error of both messages is the last one, if there was any.

  $ rm /etc/kel/kel.conf; delete 'IPV6ADDR=2001:db8::5/64\n' 'IPV6ADDR_SECONDARIES=a/1 b\n'
  1: Cannot remove last IPv6 address 2001:db8::5
  1: System error 2: No such file or directory
  2: Cannot remove last IPv6 address 2001:db8::5
  2: System error 2: No such file or directory
  - IPV6ADDR=2001:db8::5/64
  1: b: cannot parse IPv6 address
  1: System error 2: No such file or directory
  2: b: cannot parse IPv6 address
  2: System error 2: No such file or directory
  - IPV6ADDR_SECONDARIES=a/1 b
  $ add 'IPV6ADDR_SECONDARIES=a/1 b\n'
  1: b: cannot parse IPv6 address
  1: System error 2: No such file or directory
  2: b: cannot parse IPv6 address
  2: System error 2: No such file or directory
  - IPV6ADDR_SECONDARIES=a/1 b
  $ touch /etc/kel/kel.conf
  $ delete 'IPV6ADDR_SECONDARIES=a/65536 b\n' 'IPV6ADDR_SECONDARIES=a/65535 b\n'
  1: b: cannot parse IPv6 address
  1: System error 34: Numerical result out of range
  2: b: cannot parse IPv6 address
  2: System error 34: Numerical result out of range
  - IPV6ADDR_SECONDARIES=a/65536 b
  1: b: cannot parse IPv6 address
  2: b: cannot parse IPv6 address
  - IPV6ADDR_SECONDARIES=a/65535 b

A length that is typed behind the address makes a list that cannot be read.

  $ fresh; addrtool -a eth0 2001:db8::6/64 48; changed
  + eth0 2001:db8::6/64
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::6/64/48"
  $ streams addrtool -d 2001:db8::6; changed
  12: 2001:db8::6/64/48": cannot parse IPv6 address
  12: System error 2: No such file or directory
  - eth0 2001:db8::6/64

A line of more than 8095 bytes is read in pieces. Each piece that starts like a list is one.

  $ fresh; record >/dev/null; ip address add 2001:db8::5/64 dev eth0
  $ printf '#%08094dIPV6ADDR_SECONDARIES=a/1\n' 0 >$file; addrtool -a eth0 2001:db8::6 64
  ifconfig [eth0] [add] [2001:db8::6/64]
  $ shown() { local text=$(<$file) zeros=$(printf "%0$1d" 0); echo "${text/$zeros/(zeros)}"; }
  $ shown 8094
  #(zeros)IPV6ADDR_SECONDARIES="2001:db8::6/64 a/1"
  $ printf '#%08093dIPV6ADDR_SECONDARIES=a/1\n' 0 >$file; addrtool -a eth0 2001:db8::6 64
  ifconfig [eth0] [add] [2001:db8::6/64]
  $ shown 8093
  #(zeros)IPV6ADDR_SECONDARIES=a/1
  IPV6ADDR_SECONDARIES="2001:db8::6/64"

The new file has the mode of the old one, whose other names keep the old text, but not its time.

  $ fresh; chmod 6666 $file; touch -d 2000-01-01 $file; ln $file /etc/sysconfig/another
  $ cp $file /etc/sysconfig/copy
  $ addrtool -a eth0 2001:db8::5 64; stat -c '%a %h' $file; find $file -mmin -9
  6666 1
  /etc/sysconfig/network-scripts/ifcfg-eth0
  $ cmp /etc/sysconfig/another /etc/sysconfig/copy

A link is replaced by a file with the mode of its target, which stays.

  $ fresh; chmod 600 $file; mv $file /etc/sysconfig/target; ln -s ../target $file
  $ addrtool -a eth0 2001:db8::5 64; stat -c '%F %a' $file; tail -n 1 /etc/sysconfig/target $file
  regular file 600
  ==> /etc/sysconfig/target <==
  IPV6ADDR=2001:db8::1/64
  
  ==> /etc/sysconfig/network-scripts/ifcfg-eth0 <==
  IPV6ADDR_SECONDARIES="2001:db8::5/64"

A link to nothing counts as a missing file.

  $ fresh; ln -sf nothing $file; addrtool -a eth0 2001:db8::5 64; readlink $file
  nothing
  $ ls /etc/sysconfig/network-scripts
  ifcfg-eth0

A directory in place of the file stays, without a message or a temporary file.

  $ fresh; rm $file; mkdir $file; touch $file/precious
  $ streams addrtool -a eth0 2001:db8::5 64; streams addrtool -d 2001:db8::1
  $ ls -R /etc/sysconfig/network-scripts
  /etc/sysconfig/network-scripts:
  ifcfg-eth0
  
  /etc/sysconfig/network-scripts/ifcfg-eth0:
  precious

A name that is too long for a path is ignored, and one with a slash names a file in a directory.

  $ fresh; record; mkdir ${file%eth0}a; touch ${file%eth0}a/b ${file%eth0}x
  $ addrtool -a "$(printf %05000d 0)" 2001:db8::5 64 | wc -l
  1
  $ addrtool -a a/b 2001:db8::5 64; addrtool -a a/../ifcfg-x 2001:db8::5 64; cat ${file%eth0}{a/b,x}
  ifconfig [a/b] [add] [2001:db8::5/64]
  ifconfig [a/../ifcfg-x] [add] [2001:db8::5/64]
  IPV6ADDR_SECONDARIES="2001:db8::5/64"
  IPV6ADDR_SECONDARIES="2001:db8::5/64"
