// Time that all threads of the program wait passes at once: seconds of time-outs take milliseconds.
#pragma once

/// While it stands, the monotonic clock of the program counts the processor time of its threads, however busy
/// the machine is with others, and jumps to the nearest moment that a thread waits for whenever none of them
/// runs or is about to. Condition variables and sleeps of a millisecond and more are seen; a program that
/// links this gets its calls of the C library for them.
///
/// Threads  one object at a time.
class ClVirtualTime {
 public:
  ClVirtualTime();
  ClVirtualTime(const ClVirtualTime&) = delete;
  ClVirtualTime& operator=(const ClVirtualTime&) = delete;
  ~ClVirtualTime();
};
