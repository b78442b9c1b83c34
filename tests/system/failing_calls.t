System calls that fail.

Needs tracing.

A failing step of the reading gives one message. No step is repeated, and no action follows.

  $ fresh || exit 80
  $ for failure in 'socket EMFILE' 'sendto ENOBUFS' 'recvfrom:when=1 ENOMEM' \
  >     'recvfrom:when=2 ENOMEM' 'recvfrom:when=1 EINTR' 'recvfrom:when=1 EAGAIN' \
  >     'ioctl:when=1 EPERM' 'recvfrom:when=1 retval=0' 'recvfrom:when=2 retval=15'; do
  >   fail $failure addrtool -l -v 10.0.0.1 -d 192.0.2.1 || echo "[$?]"
  > done
  Fail to open netlink socket: Too many open files
  [1]
  Can not send RTM_GETADDR request: No buffer space available
  [1]
  Can not get RTM_GETADDR request response: Cannot allocate memory
  [1]
  Can not get RTM_GETADDR request response: Cannot allocate memory
  [1]
  Can not get RTM_GETADDR request response: Interrupted system call
  [1]
  Can not get RTM_GETADDR request response: Resource temporarily unavailable
  [1]
  Fail to detect interface name by index: Operation not permitted
  [1]
  Incorrect format of RTM_GETADDR request response
  [1]
  Incorrect format of RTM_GETADDR request response
  [1]

A request that is sent in part is no failure.

  $ fail sendto retval=23 recvfrom:when=1 ENOMEM addrtool -l
  Can not get RTM_GETADDR request response: Cannot allocate memory
  [1]

The socket is closed even if its close fails, and that failure is not the one reported.

  $ fail socket:when=1 retval=99 sendto ENOMEM addrtool -l
  Can not send RTM_GETADDR request: Cannot allocate memory
  [1]
  $ grep -c '^close(99.*EBADF' /proc/.sandbox/calls
  1

A failing read of the kernel changes nothing.

  $ addrtool -a eth0 192.0.2.10 255.255.255.0
  $ changed >/dev/null
  $ fail sendto ENOBUFS addrtool -a eth0 192.0.2.11 255.255.255.0
  Can not send RTM_GETADDR request: No buffer space available
  [1]
  $ fail sendto ENOBUFS addrtool -d 192.0.2.10
  Can not send RTM_GETADDR request: No buffer space available
  [1]
  $ fail sendto ENOBUFS addrtool -d 2001:db8::1
  Can not send RTM_GETADDR request: No buffer space available
  [1]
  $ fail sendto:when=2 ENOBUFS addrtool -l -a eth0 192.0.2.11 255.255.255.0
  192.0.2.1 255.255.255.0 eth0 1
  192.0.2.10 255.255.255.0 eth0 0
  2001:db8::1 64 eth0 0
  Can not send RTM_GETADDR request: No buffer space available
  [1]
  $ changed

A write of the listing that is cut short or interrupted goes on.

  $ fresh
  $ fail write:when=1 retval=10 addrtool -l
  255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  $ fail write:when=1 EINTR addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  $ fail write:when=2 EINTR addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  $ fail write:when=1..3 EINTR addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0

An output that is full for now is waited for without limit, even if a signal interrupts the wait.

  $ fail write:when=1 EAGAIN addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  $ fail write:when=1 EAGAIN /poll:when=1 EINTR addrtool -l
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  $ sed -n 's/^p*poll(\(.*\), \(-1\|NULL\)[,)].*/poll(\1, -1)/p' /proc/.sandbox/calls
  poll([{fd=1, events=POLLOUT}], 1, -1)

Any other failure of a write ends the listing without a message, so that no line is missing between.

  $ for failure in 'when=1 ENOSPC' 'when=2 ENOSPC' 'when=2 EIO' 'when=2 retval=0'; do
  >   fail write:$failure addrtool -l
  >   grep -c '^write(1' /proc/.sandbox/calls
  > done
  1
  192.0.2.1 255.255.255.0 eth0 1
  2
  192.0.2.1 255.255.255.0 eth0 1
  2
  192.0.2.1 255.255.255.0 eth0 1
  2
  $ fail write:when=2 EAGAIN /poll ENOMEM addrtool -l
  192.0.2.1 255.255.255.0 eth0 1

A write of nothing sets no errno, so an EINTR that the close before it left there does not count.

  $ closes=$(calls close,write addrtool -l | sed '/^write/,$d' | grep -c '^close')
  $ fail close:when=$closes EINTR write:when=1 retval=0 addrtool -l

The next action follows all the same.

  $ fail write:when=1 EIO addrtool -l -l -d 192.0.2.1
  192.0.2.1 255.255.255.0 eth0 1
  2001:db8::1 64 eth0 0
  192.0.2.1: cannot delete main IP on interface
  [1]
