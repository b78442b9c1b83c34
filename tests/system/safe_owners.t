Other users and addrtool-safe.

Needs a real processor.
Needs other owners.

  $ fresh || exit 80
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0

Only root may change. Others may check, if they can read the files. A file keeps its owner.

  $ setpriv --reuid 12 addrtool-safe present eth0 192.0.2.10/24; setpriv --reuid 12 addrtool-safe check
  Only root may change addresses: run it as root
  $ chmod 600 $file; setpriv --reuid 12 addrtool-safe check
  [Errno 13] Permission denied: '/etc/sysconfig/network-scripts/ifcfg-eth0'
  [1]
  $ chown 12:34 $file; sed -i '$s/64/0/' $file; addrtool-safe repair >/dev/null; stat -c '%u:%g %a' $file
  12:34 600
