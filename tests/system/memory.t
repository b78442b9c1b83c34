Memory that runs out.

Needs tracing.

Needs no sanitizer.

A failure of any standard kind is reported, such as a lack of memory for the addresses.

  $ fresh || exit 80
  $ for ((n = 0; n < 2000; n++)); do echo "10.0.$((n / 250)).$((n % 250)) $n"; done |
  >   sed 's|\(.*\) \(.*\)|address add \1/32 dev eth0 label eth0:\2|' | ip -batch -
  $ calls brk,mmap,socket addrtool -l | sed '/^socket/q' >early
  $ later() { echo "$1:when=$(($(grep -c "^$1" early) + 1))+"; }
  $ fail "$(later brk)" retval=0 "$(later mmap)" ENOMEM addrtool -l -v 10.0.0.1
  std::bad_alloc
  [1]
