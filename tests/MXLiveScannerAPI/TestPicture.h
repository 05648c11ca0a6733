// Pictures made by hand.
#pragma once

#include <algorithm>
#include <vector>

#include "MXTools/FpImage.h"

class ClTestPicture : public ClImage {
 public:
  ClTestPicture(int nWidth, int nHeight, int nGrey) {
    NewWithType(eUint8, nWidth, nHeight, 1, 0, 0, true);
    ClImage::operator=(static_cast<unsigned char>(nGrey));
  }
  /// 200 by 100, of which the first pixels have a grey each.
  ClTestPicture(const std::vector<uint8_t>& aFirst, int nOthers) : ClTestPicture(200, 100, nOthers) {
    for (size_t n = 0; n < aFirst.size(); ++n) Row<uint8_t>(static_cast<int>(n / 200))[n % 200] = aFirst[n];
  }
  void Fill(int nX, int nY, int nWidth, int nHeight, int nGrey) {
    for (int y = nY; y < nY + nHeight; ++y)
      std::fill_n(Row<uint8_t>(y) + nX, nWidth, static_cast<uint8_t>(nGrey));
  }
};
