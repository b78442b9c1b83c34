addrtool-safe beside NetworkManager. A stand-in for nmcli answers as the real one.
Needs a real processor.

  $ fresh || exit 80
  $ file=/etc/sysconfig/network-scripts/ifcfg-eth0; run=/proc/.sandbox; mkdir $run/{bin,bin-work}
  $ mount -t overlay -o lowerdir=/usr/bin,upperdir=$run/bin,workdir=$run/bin-work bin /usr/bin
  $ cat >/usr/bin/nmcli <<'END'
  > #!/bin/sh
  > cd /proc/.sandbox; case $* in *RUNNING*) cat running ;; *FILENAME*) cat profiles ;;
  > *) echo "nmcli $*" >>asked; cat answer ;; esac
  > END
  $ chmod 755 /usr/bin/nmcli; echo running >$run/running; : >$run/answer; : >$run/asked
  $ printf '%s\n' "System eth0:eth0:$file" 'a\:b:lo:/run/lo.nmconnection' >$run/profiles
  $ safe() { addrtool-safe "$@" || echo "[$?]"; cat $run/asked; : >$run/asked; }

It loads the one file after each change, even if nothing was to change, and after a repair. A check
loads nothing. A load that fails has status 0, so any output counts.

  $ safe present eth0 192.0.2.10/24; safe absent 192.0.2.10 192.0.2.11; safe absent 192.0.2.10
  add 192.0.2.10/24
  nmcli connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  delete 192.0.2.10/24
  nmcli connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  nmcli connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  $ safe present --check eth0 192.0.2.10/24; safe check
  would add 192.0.2.10/24
  $ truncate -s -1 $file; safe repair | tail -n 1; safe repair
  nmcli connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  $ echo "Could not load file '$file'" >$run/answer; safe present eth0 192.0.2.11/24
  add 192.0.2.11/24
  NetworkManager cannot read /etc/sysconfig/network-scripts/ifcfg-eth0: correct it
  [3]
  nmcli connection load /etc/sysconfig/network-scripts/ifcfg-eth0

Another profile is refused, and a check names it. Without NetworkManager, nothing is loaded.

  $ echo "other:eth0:/etc/NetworkManager/eth0.nmconnection" >>$run/profiles
  $ safe present eth0 192.0.2.12/24; safe check
  /etc/NetworkManager/eth0.nmconnection is a second profile of eth0: remove it
  [1]
  /etc/NetworkManager/eth0.nmconnection is a second profile of eth0: remove it
  [4]
  $ sed -i '/eth0/d' $run/profiles; safe present eth0 192.0.2.12/24
  NetworkManager does not use /etc/sysconfig/network-scripts/ifcfg-eth0: activate it with nmcli
  [1]
  $ : >$run/running; safe present eth0 192.0.2.12/24
  add 192.0.2.12/24
