The files of aliases.

A new file is root's and readable by all, whatever the umask and the directory are.

  $ fresh || exit 80
  $ chmod 2700 /etc/sysconfig/network-scripts; changed >/dev/null
  $ (umask 077; addrtool -a eth0 192.0.2.10 255.255.255.0)
  $ (umask 0; addrtool -a eth0 192.0.2.11 255.255.255.255)
  $ changed | grep ifcfg
  + ifcfg-eth0:1 0:0 644
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"
  + ifcfg-eth0:2 0:0 644
  + ifcfg-eth0:2: DEVICE="eth0:2"
  + ifcfg-eth0:2: IPADDR="192.0.2.11"
  + ifcfg-eth0:2: NETMASK="255.255.255.255"

An old file is replaced whole, whatever is in it. The new one has its mode.

  $ fresh; file=/etc/sysconfig/network-scripts/ifcfg-eth0:1
  $ for mode in 666 7640 0 444; do
  >   printf 'ONBOOT=no\nIPADDR=10.0.0.1\n# long %01000d\n' 0 >$file; chmod $mode $file
  >   addrtool -a eth0 192.0.2.10 255.255.255.0; stat -c %a $file
  >   cat $file; addrtool -d 192.0.2.10; done
  666
  DEVICE="eth0:1"
  IPADDR="192.0.2.10"
  NETMASK="255.255.255.0"
  7640
  DEVICE="eth0:1"
  IPADDR="192.0.2.10"
  NETMASK="255.255.255.0"
  0
  DEVICE="eth0:1"
  IPADDR="192.0.2.10"
  NETMASK="255.255.255.0"
  444
  DEVICE="eth0:1"
  IPADDR="192.0.2.10"
  NETMASK="255.255.255.0"

The old file is not written to.

  $ fresh; echo old >$file; ln $file /etc/sysconfig/another
  $ addrtool -a eth0 192.0.2.10 255.255.255.0; cat /etc/sysconfig/another; stat -c %h $file
  old
  1

A link is replaced by a file with the mode of its target, which stays.

  $ fresh; echo target >/etc/sysconfig/target; chmod 640 /etc/sysconfig/target
  $ ln -s ../target $file
  $ addrtool -a eth0 192.0.2.10 255.255.255.0; stat -c '%F %a' $file; cat /etc/sysconfig/target
  regular file 640
  target

A link to nothing, or to itself, is replaced as if it were not there.

  $ for target in nothing ifcfg-eth0:1; do fresh; ln -s $target $file
  >   addrtool -a eth0 192.0.2.10 255.255.255.0; stat -c '%F %a' $file
  >   ls /etc/sysconfig/network-scripts; done
  regular file 644
  ifcfg-eth0
  ifcfg-eth0:1
  regular file 644
  ifcfg-eth0
  ifcfg-eth0:1

A fourth line follows if /etc/SuSE-release exists, whatever it is. Each add looks for it.

  $ fresh; marker=/etc/SuSE-release
  $ for make in : touch mkdir mkfifo 'ln -s /dev/null' : 'ln -s /missing'; do
  >   rm -rf $marker; eval "$make $marker"; addrtool -a eth0 192.0.2.10 255.255.255.0
  >   echo "$make: $(tail -n +4 $file)"; addrtool -d 192.0.2.10; done
  :: 
  touch: STARTMODE='onboot'
  mkdir: STARTMODE='onboot'
  mkfifo: STARTMODE='onboot'
  ln -s /dev/null: STARTMODE='onboot'
  :: 
  ln -s /missing: 

Newer releases of the same maker, without that file, count as any other system.

  $ fresh; rm -f /etc/os-release; echo 'ID_LIKE="suse"' >/etc/os-release; touch /etc/SUSE-brand
  $ addrtool -a eth0 192.0.2.10 255.255.255.0; wc -l <$file; rm /etc/os-release /etc/SUSE-brand
  3

The shell reads that line as it was meant.

  $ fresh; touch $marker; addrtool -a eth0 192.0.2.10 255.255.255.0; (. $file; echo $STARTMODE)
  onboot
  $ cat $file
  DEVICE="eth0:1"
  IPADDR="192.0.2.10"
  NETMASK="255.255.255.0"
  STARTMODE='onboot'

A label with a slash names a file in a directory.

  $ fresh; ip address add 10.0.0.1/32 dev eth0 label eth0:a/b
  $ mkdir ${file%1}a; touch ${file%1}a/b; addrtool -d 10.0.0.1; ls ${file%1}a

If the file cannot be written, the address stays up. The message has the path and the error.

  $ fresh; rm -r /etc/sysconfig/network-scripts; changed >/dev/null
  $ streams addrtool -a eth0 192.0.2.10 255.255.255.0
  2: /etc/sysconfig/network-scripts/ifcfg-eth0:1: No such file or directory
  [1]
  $ changed
  + eth0:1 192.0.2.10/24

A delete and the IPv6 changes ignore a missing directory.

  $ addrtool -a eth0 2001:db8::5 64; addrtool -d 2001:db8::1; addrtool -d 192.0.2.10
  $ changed; ls /etc/sysconfig
  - eth0:1 192.0.2.10/24
  - eth0 2001:db8::1/64
  + eth0 2001:db8::5/64

A read-only directory is like a missing one.

  $ fresh; addrtool -a eth0 192.0.2.10 255.255.255.0; addrtool -a eth0 2001:db8::5 64
  $ mount --bind /etc/sysconfig /etc/sysconfig && mount -o remount,bind,ro /etc/sysconfig
  $ changed >/dev/null
  $ streams addrtool -a eth0 192.0.2.11 255.255.255.0
  2: /etc/sysconfig/network-scripts/ifcfg-eth0:2: Read-only file system
  [1]
  $ streams addrtool -a eth0 2001:db8::6 64
  $ streams addrtool -d 2001:db8::1 -d 192.0.2.10
  $ changed
  - eth0:1 192.0.2.10/24
  + eth0:2 192.0.2.11/24
  + eth0 2001:db8::6/64
  - eth0 2001:db8::1/64

So is a disk that has no room for another file, but a delete needs none.

  $ disk() { mkdir /etc/saved; mv /etc/sysconfig/network-scripts/* /etc/saved
  >   mount -t tmpfs -o mode=755,$1 none /etc/sysconfig/network-scripts
  >   mv /etc/saved/* /etc/sysconfig/network-scripts; rmdir /etc/saved; }
  $ fresh; addrtool -a eth0 192.0.2.10 255.255.255.0; disk nr_inodes=3; changed >/dev/null
  $ streams addrtool -a eth0 192.0.2.11 255.255.255.0 -d 192.0.2.10
  $ addrtool -a eth0 192.0.2.10 255.255.255.0
  /etc/sysconfig/network-scripts/ifcfg-eth0:2: No space left on device
  [1]
  $ streams addrtool -a eth0 2001:db8::6 64
  $ streams addrtool -a eth0 192.0.2.12 255.255.255.0
  2: /etc/sysconfig/network-scripts/ifcfg-eth0:3: No space left on device
  [1]
  $ changed
  - eth0:1 192.0.2.10/24
  + eth0:1 192.0.2.11/24
  + eth0:2 192.0.2.10/24
  + eth0:3 192.0.2.12/24
  + eth0 2001:db8::6/64
  - ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: IPADDR="192.0.2.11"

A full disk is not noticed. The new file is empty.

  $ full() { disk nr_blocks=$1
  >   head -c "$(getconf PAGESIZE)" /dev/zero >/etc/sysconfig/network-scripts/filler; }
  $ fresh; echo old >$file; full 3
  $ streams addrtool -a eth0 192.0.2.10 255.255.255.0; wc -c $file
  0 /etc/sysconfig/network-scripts/ifcfg-eth0:1
  $ fresh; full 2
  $ streams addrtool -a eth0 2001:db8::6 64; wc -c /etc/sysconfig/network-scripts/ifcfg-eth0
  0 /etc/sysconfig/network-scripts/ifcfg-eth0
  $ fresh; addrtool -a eth0 2001:db8::5 64; full 2
  $ streams addrtool -d 2001:db8::1; wc -c /etc/sysconfig/network-scripts/ifcfg-eth0
  0 /etc/sysconfig/network-scripts/ifcfg-eth0

A directory in place of the file fails at the end, and leaves the temporary file.

  $ fresh; mkdir $file; touch $file/precious
  $ streams addrtool -a eth0 192.0.2.10 255.255.255.0
  2: /etc/sysconfig/network-scripts/ifcfg-eth0:1: Is a directory
  [1]
  $ ls -R /etc/sysconfig/network-scripts | sed -E 's/[.]......$/.XXXXXX/'
  /etc/sysconfig/network-scripts:
  ifcfg-eth0
  ifcfg-eth0:1
  ifcfg-eth0:1.XXXXXX
  
  /etc/sysconfig/network-scripts/ifcfg-eth0:1:
  precious
