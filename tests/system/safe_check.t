What the check of addrtool-safe finds, and what its repair mends.
Needs a real processor.

  $ fresh || exit 80
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0
  $ other() { unshare --user --map-user=9 addrtool-safe "$@" 2>&1 | sed "s|${file%/*}|DIR|g"; }
  $ check() { for command in "$@"; do fresh; eval "$command"; other check; done; }

Each finding is found, without root. Addresses from DHCP and interfaces without a file are no
findings. A direct add zeroes a length. The check names it, and repair mends it.

  $ check 'ip address add 192.0.2.10/24 dev eth0 label eth0:1' 'echo IPADDR1=192.0.2.77 >>$file' \
  >   'sed -i \$s/64/0/ $file' 'echo IPV6ADDR=\" >>$file' ': >$file' 'truncate -s -1 $file' \
  >   'touch -d "-61 sec" $file.aB3dEf' 'echo DEVICE=eth0 >$file-2' \
  >   'sed -i s/INIT=yes/INIT=no/ $file' | sort -u
  192.0.2.1/24 is up but not saved: write it into DIR/ifcfg-eth0
  192.0.2.10/24 is up but not saved: run 'addrtool-safe present --readd eth0 192.0.2.10/24'
  192.0.2.77 is saved but not up: bring it up, or remove it from DIR/ifcfg-eth0
  2001:db8::1/64 is up but not saved: write it into DIR/ifcfg-eth0
  DIR/ifcfg-eth0 has a bad or second line: correct IPV6ADDR="
  DIR/ifcfg-eth0 has a bad or second line: correct IPV6ADDR=2001:db8::1/64
  DIR/ifcfg-eth0 has no final line feed: run 'addrtool-safe repair eth0'
  DIR/ifcfg-eth0 ignores IPv6 addresses: add IPV6INIT=yes
  DIR/ifcfg-eth0 is empty or has a byte order mark: correct it
  DIR/ifcfg-eth0 saves 2001:db8::1/0: run 'addrtool-safe repair eth0'
  DIR/ifcfg-eth0-2 is a second profile of eth0: remove it
  DIR/ifcfg-eth0.aB3dEf is left over: run 'addrtool-safe repair eth0'
  $ check 'sed -i "s/static/dhcp/; /^IPADDR/d; s/$/ /" $file' 'rm $file' \
  >   'ip address change 192.0.2.1/24 dev eth0 valid_lft 9 preferred_lft 9; sed -i /^IPADDR/d $file'
  $ check 'chmod 0 $file'; interface eth1 ::9/64; addrtool-safe check eth0; addrtool-safe check eth7
  [Errno 13] Permission denied: 'DIR/ifcfg-eth0'
  eth7 has neither an address nor a file: name another interface
  [1]
  $ fresh; addrtool-safe present eth0 2001:db8::5/64 >/dev/null; addrtool --add eth0 2001:db8::6 64
  $ addrtool-safe check; echo $?; addrtool-safe repair | grep '^[-+]I'; addrtool-safe check
  /etc/sysconfig/network-scripts/ifcfg-eth0 saves 2001:db8::5/0: run 'addrtool-safe repair eth0'
  4
  -IPV6ADDR_SECONDARIES="2001:db8::6/64 2001:db8::5/0"
  +IPV6ADDR_SECONDARIES="2001:db8::6/64 2001:db8::5/64"

Repair mends the final line feed and left-over files, and nothing else. With --check, it shows how.

  $ fresh; truncate -s -1 $file; echo left >$file.aB3dEf; touch -d "-61 sec" $file.aB3dEf
  $ touch $file.aB3dEg; ip address add 192.0.2.9/24 dev eth0; state >/proc/.sandbox/state
  $ addrtool-safe repair --check >/run/shown; changed; addrtool-safe repair eth0 | diff - /run/shown
  $ grep '^[-+\\]' /run/shown; changed
  --- /etc/sysconfig/network-scripts/ifcfg-eth0.aB3dEf
  +++ /dev/null
  -left
  --- /etc/sysconfig/network-scripts/ifcfg-eth0
  +++ /etc/sysconfig/network-scripts/ifcfg-eth0
  -IPV6ADDR=2001:db8::1/64
  \ No newline at end of file
  +IPV6ADDR=2001:db8::1/64
  - ifcfg-eth0: IPV6ADDR=2001:db8::1/64 (no line feed)
  - ifcfg-eth0.aB3dEf 0:0 644
  - ifcfg-eth0.aB3dEf: left
  + ifcfg-eth0: IPV6ADDR=2001:db8::1/64
