The listing.

A fresh machine has one line for each address.

  $ fresh
  $ addrtool --list
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
