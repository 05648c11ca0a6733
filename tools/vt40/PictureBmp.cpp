// BMP files of 8 bits with a grey palette.
#include "Picture.h"

void WriteBmp(const ClPicture& oPicture, const std::string& sFile) {
  constexpr unsigned int cnHeaders = 14 + 40;
  constexpr unsigned int cnPalette = 256 * 4;
  const unsigned int nRowBytes = (oPicture.nWidth + 3) & ~3u;
  const unsigned int nImageBytes = nRowBytes * oPicture.nHeight;
  std::vector<unsigned char> aBytes = {'B', 'M'};
  AppendLittleEndian(aBytes, cnHeaders + cnPalette + nImageBytes, 4);
  AppendLittleEndian(aBytes, 0, 4);
  AppendLittleEndian(aBytes, cnHeaders + cnPalette, 4);
  AppendLittleEndian(aBytes, 40, 4);
  AppendLittleEndian(aBytes, oPicture.nWidth, 4);
  AppendLittleEndian(aBytes, oPicture.nHeight, 4);
  AppendLittleEndian(aBytes, 1, 2);
  AppendLittleEndian(aBytes, 8, 2);
  AppendLittleEndian(aBytes, 0, 4);
  AppendLittleEndian(aBytes, nImageBytes, 4);
  AppendLittleEndian(aBytes, oPicture.nPelsX, 4);
  AppendLittleEndian(aBytes, oPicture.nPelsY, 4);
  AppendLittleEndian(aBytes, 256, 4);
  AppendLittleEndian(aBytes, 0, 4);
  for (unsigned int n = 0; n < 256; ++n) AppendLittleEndian(aBytes, n * 0x010101u, 4);
  // The format's rows run from the bottom up.
  for (unsigned int y = oPicture.nHeight; y-- > 0;) {
    aBytes.insert(aBytes.end(), oPicture.Row(y), oPicture.Row(y) + oPicture.nWidth);
    aBytes.resize(aBytes.size() + nRowBytes - oPicture.nWidth);
  }
  WriteFile(aBytes, sFile);
}
