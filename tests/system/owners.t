The owners of replaced files.

Needs other owners.

A replaced file keeps owner, group and mode, also the bits that a change of owner clears.

  $ fresh || exit 80
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0
  $ for name in $file $file:1; do
  >   touch $name; chown 12:34 $name; chmod 7640 $name; done; changed >/dev/null
  $ addrtool -a eth0 192.0.2.10 255.255.255.0; addrtool -a eth0 2001:db8::5 64; changed
  + eth0:1 192.0.2.10/24
  + eth0 2001:db8::5/64
  + ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::5/64"
  + ifcfg-eth0:1: DEVICE="eth0:1"
  + ifcfg-eth0:1: IPADDR="192.0.2.10"
  + ifcfg-eth0:1: NETMASK="255.255.255.0"
  $ addrtool -d 2001:db8::5; changed
  - eth0 2001:db8::5/64
  - ifcfg-eth0: IPV6ADDR_SECONDARIES="2001:db8::5/64"

A new file is owned by root and root's group, whatever the folder and the caller are.

  $ fresh; chown 12:34 /etc/sysconfig/network-scripts; chmod g+ws /etc/sysconfig/network-scripts
  $ setpriv --regid 34 --clear-groups addrtool -a eth0 192.0.2.10 255.255.255.0
  $ cp "$(command -v addrtool)" /etc/; may=+chown,+dac_override,+fowner,+net_admin
  $ setpriv --reuid 12 --clear-groups --inh-caps=$may --ambient-caps=$may \
  >   /etc/addrtool -a eth0 192.0.2.11 255.255.255.0; rm /etc/addrtool
  $ stat -c '%u:%g %a' $file:1 $file:2
  0:0 644
  0:0 644

A new file in place of a link to nothing is root's too, and one in place of a link has the owner of
its target.

  $ fresh; ln -s nothing $file:1; chown -h 12:34 $file:1
  $ touch /etc/sysconfig/target; chown 56:78 /etc/sysconfig/target; ln -s ../target $file:2
  $ chown -h 12:34 $file:2
  $ for n in 1 2; do
  >   addrtool -a eth0 192.0.2.1$n 255.255.255.0; stat -c '%F %u:%g %a' $file:$n; done
  regular file 0:0 644
  regular file 56:78 644

Whether the caller is root is not looked at. The command and the files decide.

  $ fresh; record 'exit 3'; cp "$(command -v addrtool)" /etc/
  $ for arguments in '-a eth0 192.0.2.10 255.255.255.0' '-a eth0 2001:db8::5 64' '-l'; do
  >   setpriv --reuid 12 --clear-groups /etc/addrtool $arguments </dev/null; done; rm /etc/addrtool
  ifconfig [eth0:1] [192.0.2.10] [netmask] [255.255.255.0] [up]
  /sbin/ifconfig 'eth0:1' '192.0.2.10' netmask  '255.255.255.0' up exited with non-zero status 3
  ifconfig [eth0] [add] [2001:db8::5/64]
  /sbin/ifconfig eth0 add 2001:db8::5/64 exited with non-zero status 3
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
