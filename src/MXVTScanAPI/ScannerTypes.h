// Small types that describe scanners of the product family.
#pragma once

#include <cstdint>

namespace ScannerTypes {

/// Size of a sensor image in pixels.
struct Resolution {
  uint32_t nWidth;
  uint32_t nHeight;
  uint32_t nPlanes;
};

/// What an implementation may report about the device that it was assigned.
struct DeviceDescription {
  unsigned int nDevice = 0;
};

}  // namespace ScannerTypes

class ClMXVTScanAPI {
 public:
  enum EScannerProductID_t : int {
    eProductNone = 0,
    eProductVT4 = 16,   ///< the single-finger scanner
    eProductVT40 = 17,  ///< the ten-finger scanner; devices are queried by this number
    eProductVT40B = 23  ///< a ten-finger scanner with the same sensor
  };
};
