A run of addrtool-safe that is killed at a system call is completed by the next one.
Needs a real processor.
Needs tracing.
Needs no sanitizer.

A replaced file survives a power failure: the file is synced before the rename, its folder after it.

  $ fresh || exit 80
  $ start() { fresh; addrtool-safe present eth0 192.0.2.11/24 2001:db8::{6,7}/64 >/dev/null; }
  $ has() {  # TEXT: 1 if it is up, and 1 if it is saved. A temporary file saves nothing.
  >   echo $(addresses | grep -cF "$1")$(grep -hsF "$1" $network_scripts/ifcfg-eth0{,:?} | wc -l); }
  $ sed -i '$s/64/0/' $network_scripts/ifcfg-eth0
  $ strace -qq -y -e fsync,rename -o /run/calls addrtool-safe repair >/dev/null
  $ grep -o '^rename\|^fsync.*)' /run/calls
  fsync(4</etc/sysconfig/network-scripts/.addrtool-safe>)
  rename
  fsync(4</etc/sysconfig/network-scripts>)

The kill hits addrtool-safe or a command. The next run ends with 0, as asked. Or it ends with 3 and
a true message, and --readd, or the opposite before, helps. KILLS=1 tries each call, in an hour.

  $ hits=0; while read -r words; do
  >   address=${words##* }; address=${address%/*}
  >   case $words in present*) good=11 bad=10 helps="${words/ / --readd }" ;;
  >   *) good=00 bad=01 helps="present eth0 $address/24 && addrtool-safe $words" ;; esac
  >   [[ $address != *:* ]] || helps=${helps/24/64}
  >   start; rm -f /run/trace.*; strace -ff -o /run/trace addrtool-safe $words >/dev/null
  >   for trace in /run/trace.*; do awk -F'(' '/^[a-z]/ { print $1 ":" ++n[$1] }' $trace; done |
  >     sort -u | awk "NR % ${KILLS:-263} == 0" >/proc/.sandbox/kills
  >   while IFS=: read -r call number; do
  >     start; (strace -f -o /run/kill -e inject=$call:signal=KILL:when=$number \
  >       addrtool-safe $words; true) </dev/null &>/dev/null
  >     grep -q 'killed by SIGKILL' /run/kill || continue  # not every run makes so many such calls
  >     hits=$((hits + 1))
  >     addrtool-safe $words &>/run/message; result="$? $(has $address)"
  >     if [[ $result == "3 $bad" ]] && grep -q 'saved' /run/message; then
  >       eval "addrtool-safe $helps" >/dev/null; result="$? $(has $address)"; fi
  >     [[ $result == "0 $good" ]] && ! grep 'ADDR.*/0' $network_scripts/ifcfg-eth0 ||
  >       { echo "$words, $call:$number: $result"; cat /run/message; }
  >   done </proc/.sandbox/kills
  > done <<'END'
  > present eth0 192.0.2.10/24
  > present eth0 2001:db8::5/64
  > absent 192.0.2.11
  > absent 2001:db8::6
  > END
  $ ((hits > 8)) || echo "only $hits kills"
