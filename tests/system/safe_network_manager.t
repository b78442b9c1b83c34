addrtool-safe beside NetworkManager. A stand-in for nmcli records what it is asked and gives the
answers of the real one.

Needs a real processor.

  $ fresh || exit 80
  $ run=/proc/.sandbox; file=/etc/sysconfig/network-scripts/ifcfg-eth0; mkdir $run/{bin,bin-work}
  $ printf '%s\n' '#!/bin/sh' 'case $* in *RUNNING*) cat /proc/.sandbox/running ;; *FILENAME*) cat /proc/.sandbox/profiles ;;' \
  >   '*) echo "nmcli $*" >>/proc/.sandbox/asked; cat /proc/.sandbox/answer ;; esac' >$run/bin/nmcli; chmod 755 $run/bin/nmcli
  $ mount -t overlay -o lowerdir=/usr/bin,upperdir=$run/bin,workdir=$run/bin-work bin /usr/bin
  $ echo running >$run/running; : >$run/answer; : >$run/asked
  $ printf '%s\n' "System eth0:eth0:$file" 'a\:b:lo:/run/NetworkManager/lo.nmconnection' >$run/profiles
  $ safe() { addrtool-safe "$@" || echo "[$?]"; cat $run/asked; : >$run/asked; }

It loads the one file after each change, and even if nothing was to change. A check loads nothing.

  $ safe present eth0 192.0.2.10/24; safe present eth0 192.0.2.10/24
  add 192.0.2.10/24
  nmcli connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  nmcli connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  $ safe absent 192.0.2.10; safe absent 192.0.2.10; safe present --check eth0 192.0.2.10/24; safe check
  delete 192.0.2.10/24
  nmcli connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  nmcli connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  would add 192.0.2.10/24

Repair loads a file that it has mended. A load that fails has status 0, so any output counts.

  $ truncate -s -1 $file; safe repair | tail -n 1; safe repair
  nmcli connection load /etc/sysconfig/network-scripts/ifcfg-eth0
  $ echo "Could not load file '$file'" >$run/answer; safe present eth0 192.0.2.11/24; : >$run/answer
  add 192.0.2.11/24
  NetworkManager cannot read /etc/sysconfig/network-scripts/ifcfg-eth0: correct it
  [3]
  nmcli connection load /etc/sysconfig/network-scripts/ifcfg-eth0

A second profile, and a profile in another file, are refused. The check names the second one.

  $ echo "other:eth0:/etc/NetworkManager/system-connections/eth0.nmconnection" >>$run/profiles
  $ safe present eth0 192.0.2.12/24; safe check; sed -i '/^System/d; /^other/d' $run/profiles; safe present eth0 192.0.2.12/24
  /etc/NetworkManager/system-connections/eth0.nmconnection is a second profile of eth0: remove it
  [1]
  /etc/NetworkManager/system-connections/eth0.nmconnection is a second profile of eth0: remove it
  [4]
  NetworkManager does not use /etc/sysconfig/network-scripts/ifcfg-eth0: activate it with nmcli
  [1]

Where NetworkManager does not run, nothing is loaded.

  $ : >$run/running; safe present eth0 192.0.2.12/24
  add 192.0.2.12/24
