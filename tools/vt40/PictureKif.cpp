// The image container of the library's own image class: big-endian, version 2.
#include <cstring>

#include "Picture.h"

namespace {

constexpr unsigned int cnMagic = 0x4B494600;

unsigned long long BitsOf(double dValue) {
  unsigned long long nBits = 0;
  std::memcpy(&nBits, &dValue, sizeof(nBits));
  return nBits;
}

}  // namespace

void WriteKif(const ClPicture& oPicture, const std::string& sFile) {
  std::vector<unsigned char> aBytes;
  AppendBigEndian(aBytes, cnMagic, 4);
  AppendBigEndian(aBytes, 2, 4);  // version
  AppendBigEndian(aBytes, 1, 1);  // unsigned 8 bits
  AppendBigEndian(aBytes, oPicture.nWidth, 4);
  AppendBigEndian(aBytes, oPicture.nHeight, 4);
  AppendBigEndian(aBytes, 1, 4);  // planes
  AppendBigEndian(aBytes, oPicture.nPelsX, 4);
  AppendBigEndian(aBytes, oPicture.nPelsY, 4);
  AppendBigEndian(aBytes, 0, 1);              // rows without padding
  AppendBigEndian(aBytes, 1, 4);              // grey
  AppendBigEndian(aBytes, BitsOf(255.0), 8);  // white
  AppendBigEndian(aBytes, BitsOf(0.0), 8);    // black
  AppendBigEndian(aBytes, 0, 4);              // tag
  aBytes.insert(aBytes.end(), oPicture.aPixels.begin(), oPicture.aPixels.end());
  AppendBigEndian(aBytes, cnMagic, 4);
  WriteFile(aBytes, sFile);
}
