The container check: does a line of /proc/qv/veinfo hold the text.

Without the file, the answer is 0, even for an empty text. No line feed follows it.

  $ fresh || exit 80
  $ addrtool --qv-assigned-ip 10.0.0.1
  0 (no-eol)
  $ addrtool -v 10.0.0.1 -v ''
  00 (no-eol)
  $ mkdir /proc/qv
  $ addrtool -v 10.0.0.1 -v ''
  00 (no-eol)

Each text is searched in the whole file, also in what looks like a comment. The answers follow each
other.

  $ printf '%s\n' '101 0 2 10.0.0.1 10.0.0.2' '#2001:db8::1' >/proc/qv/veinfo
  $ addrtool -v 10.0.0.1 -v 10.0.0.2 -v 10.0.0.3 -v 2001:db8::1 -v 10.0.0.1
  11011 (no-eol)

Any part of a line counts, byte by byte.

  $ printf '%s\n' '' '  10.0.0.12 Eth0' '' 2001:db8::1 >/proc/qv/veinfo
  $ each '-v 10.0.0.1' '-v 0.0.0.12' "-v ' 10.0.0.12 '" '-v Eth0' "-v '  '" '-v :' "-v ''"
  1: 1 (no line feed)
  $ each "-v '10.0.0.12  '" "-v ' 2001'" '-v 2001:DB8::1' '-v 2001:db8:0::1' '-v eth0' \
  >   '-v 10.0.0.2' "-v '10.0.0.*'" '-v 10x0' "-v '^'" "-v '[0-9]'" '-v 10.0.0.120' "-v '10.0.0.12	'" \
  >   '-v=10.0.0.1' '--qv==10.0.0.1'
  1: 0 (no line feed)

A line ends only at its line feed, and a text never spans two lines.

  $ printf 'a\0 10.0.0.1\r\n10.0.\n0.2\n' >/proc/qv/veinfo
  $ addrtool -v 10.0.0.1 -v $'10.0.0.1\r' -v 10.0.0.2 -v $'10.0.\n0.2' -v $'\n' -v $'\r'
  110001 (no-eol)

A last line without a line feed is searched. So is a long one.

  $ printf 'first\n10.0.0.1' >/proc/qv/veinfo
  $ addrtool -v 10.0.0.9 -v 10.0.0.1
  01 (no-eol)
  $ (head -c 3000000 /dev/zero; printf 10.0.0.1; head -c 3000000 /dev/zero) >/proc/qv/veinfo
  $ addrtool -v 10.0.0.9 -v 10.0.0.1
  01 (no-eol)

An empty text needs only a file that opens: even an empty file, or a directory.

  $ : >/proc/qv/veinfo
  $ addrtool -v '' -v 10.0.0.1
  10 (no-eol)
  $ rm /proc/qv/veinfo; mkdir /proc/qv/veinfo
  $ addrtool -v '' -v 10.0.0.1
  10 (no-eol)

The kind, the owner and the mode of the file do not matter.

  $ rmdir /proc/qv/veinfo; echo 10.0.0.1 >veinfo; chmod 666 veinfo; ln -s /etc/veinfo /proc/qv/veinfo
  $ addrtool -v 10.0.0.1 -v 10.0.0.2
  10 (no-eol)
  $ ln -sf /dev/null /proc/qv/veinfo
  $ addrtool -v '' -v 10.0.0.2
  10 (no-eol)
  $ rm /proc/qv/veinfo; mkfifo /proc/qv/veinfo
  $ timeout 0.2 addrtool -v 10.0.0.1
  [124]

A file that cannot be read gives 0, without a message.

  $ rm /proc/qv/veinfo
  $ for target in veinfo missing /proc/self/mem; do
  >   ln -sf $target /proc/qv/veinfo
  >   streams addrtool -v 10.0.0.1 -v ''
  > done
  1: 00 (no line feed)
  1: 00 (no line feed)
  1: 01 (no line feed)
