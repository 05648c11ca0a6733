// Feeds PNG files to the tool's reader: what it reads is written and reads again as the same picture.
#include "MemoryFile.h"
#include "Picture.h"
#include "PngChunks.h"
#include "ToolError.h"

std::vector<Bytes> Seeds() {
  ClPicture oPicture;
  oPicture.nWidth = 6;
  oPicture.nHeight = 4;
  oPicture.nPelsX = oPicture.nPelsY = 19685;
  for (unsigned int n = 0; n < 24; ++n) oPicture.aPixels.push_back(static_cast<unsigned char>(10 * n));
  const ClMemoryFile oFile;
  WritePng(oPicture, oFile.Path());
  return {oFile.Content()};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  const Bytes aFile = WithRightChecksums(pData, nSize);
  const ClMemoryFile oFile(aFile.data(), aFile.size());
  ClPicture oPicture;
  if (RefusedWith<ClToolError>([&] { oPicture = ReadPng(oFile.Path()); })) return 0;
  Require(oPicture.aPixels.size() == size_t{oPicture.nWidth} * oPicture.nHeight,
          "a picture has all its pixels");
  // Writing a large one takes much longer than reading it.
  if (oPicture.aPixels.size() > 4096) return 0;
  const ClMemoryFile oStored;
  WritePng(oPicture, oStored.Path());
  const ClPicture oAgain = ReadPng(oStored.Path());
  Require(oAgain.nWidth == oPicture.nWidth && oAgain.aPixels == oPicture.aPixels,
          "what is written reads again");
  return 0;
}
