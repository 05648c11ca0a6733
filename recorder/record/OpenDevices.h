// The devices that the application has opened, and the size of the frames that each lends.
#pragma once

#include <array>
#include <cstdint>
#include <mutex>

namespace Recording {

/// What a sequence of frames is.
struct StShape {
  uint32_t nWidth = 0;
  uint32_t nHeight = 0;
  uint32_t nPlanes = 0;
  uint32_t nMode = 0;
  uint64_t Bytes() const { return uint64_t{nWidth} * nHeight * nPlanes; }
};

/// Threads  thread-safe; the lock is held for look-ups only.
class ClOpenDevices {
 public:
  /// The number of a device that was opened; 0 when there are more than the table holds.
  uint32_t Open(const void* hDevice);
  void Close(const void* hDevice);
  /// 0 for one that is not open.
  uint32_t NumberOf(const void* hDevice);
  StShape ShapeOf(const void* hDevice);
  void SetShape(const void* hDevice, const StShape& oShape);

 private:
  struct StDevice {
    const void* hDevice = nullptr;
    uint32_t nNumber = 0;
    StShape oShape;
  };

  StDevice* Find(const void* hDevice);

  std::mutex m_oMutex;  // guards all that follows
  uint32_t m_nOpened = 0;
  std::array<StDevice, 64> m_aDevices;
};

}  // namespace Recording
