// Feeds PNG files to the tool's reader: what it reads is written and reads again as the same picture.
#include "MemoryFile.h"
#include "Picture.h"
#include "PngChunks.h"
#include "ToolError.h"

std::vector<Bytes> Seeds() {
  ClPicture oPicture;
  oPicture.nWidth = 6;
  oPicture.nHeight = 4;
  for (unsigned int n = 0; n < 24; ++n) oPicture.aPixels.push_back(static_cast<unsigned char>(10 * n));
  std::vector<Bytes> aSeeds;
  for (const unsigned int nPels : {19685u, 0u}) {
    oPicture.nPelsX = oPicture.nPelsY = nPels;
    const ClMemoryFile oFile;
    WritePng(oPicture, oFile.Path(), {"software", "serial", "mode", true});
    aSeeds.push_back(oFile.Content());
  }
  return aSeeds;
}

Bytes Repaired(const Bytes& aInput) {
  return WithRightChecksums(aInput);
}

void Feed(const Bytes& aInput) {
  const ClMemoryFile oFile(aInput);
  ClPicture oPicture;
  if (RefusedWith<ClToolError>([&] { oPicture = ReadPng(oFile.Path()); })) return;
  Require(oPicture.aPixels.size() == size_t{oPicture.nWidth} * oPicture.nHeight,
          "a picture has all its pixels");
  // Writing a large one takes much longer than reading it.
  if (oPicture.aPixels.size() > 4096) return;
  const ClMemoryFile oStored;
  WritePng(oPicture, oStored.Path(), {});
  const ClPicture oAgain = ReadPng(oStored.Path());
  Require(oAgain.nWidth == oPicture.nWidth && oAgain.aPixels == oPicture.aPixels,
          "what is written reads again");
}
