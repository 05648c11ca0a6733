// What a host derives from to time the processors.
#pragma once

/// Threads  of the host's choice: processors call it from the threads that they run in.
class ClProfileTimer {
 public:
  virtual void TimerStart(const char* szFormat, ...) __attribute__((format(printf, 2, 3)));
  virtual void TimerStop(const char* szFormat, ...) __attribute__((format(printf, 2, 3)));
  virtual ~ClProfileTimer() = default;
};
