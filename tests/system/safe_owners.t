A file that addrtool-safe replaces keeps its owner.
Needs a real processor.
Needs other owners.

  $ fresh || exit 80
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0
  $ chown 12:34 $file; sed -i '$s/64/0/' $file; addrtool-safe repair >/dev/null; stat -c %u:%g $file
  12:34
