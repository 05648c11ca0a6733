// Time that all threads of the program wait passes at once: seconds of time-outs take milliseconds.
#pragma once

/// While it stands, the monotonic clock of the program jumps to the nearest moment that a thread waits for
/// whenever none of its threads runs or is about to. Work takes the time that it takes. Condition variables
/// and sleeps of a millisecond and more are seen; a program that links this gets its calls of the C library
/// for them.
///
/// Threads  one object at a time.
class ClVirtualTime {
 public:
  ClVirtualTime();
  ClVirtualTime(const ClVirtualTime&) = delete;
  ClVirtualTime& operator=(const ClVirtualTime&) = delete;
  ~ClVirtualTime();
};
