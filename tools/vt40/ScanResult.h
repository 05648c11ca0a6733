// What the scan library answers to calls whose answer the library does not pass on.
#pragma once

/// Listens in, as long as it lives, to the calls that sound the buzzer and set the status LEDs.
///
/// Threads  thread-bound; one object at a time. The library must be initialised.
class ClScanResult {
 public:
  ClScanResult();
  ClScanResult(const ClScanResult&) = delete;
  ClScanResult& operator=(const ClScanResult&) = delete;
  ~ClScanResult();

  /// The answer to the last of these calls: 0, or the number by which the scan library has refused.
  static long Last();
};
