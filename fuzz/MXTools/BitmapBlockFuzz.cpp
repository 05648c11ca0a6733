// Feeds blocks of memory that are said to be a bitmap: what attaches is copied, and none of it lies outside the block.
#include "MXTools/Bitmap.h"
#include "MXTools/FpImage.h"
#include "StreamBytes.h"

namespace {

constexpr unsigned int cnMostPixelBytes = 1u << 16;

}  // namespace

std::vector<Bytes> Seeds() {
  std::vector<Bytes> aSeeds;
  for (const long nBits : {1, 8, 16, 24}) {
    ClBitmap oBitmap;
    oBitmap.Create(6, 3, nBits, nBits == 16 ? ClBitmap::eBitFields : ClBitmap::ePlain);
    Bytes aBlock(oBitmap.BlockSize());
    oBitmap.CopyTo(aBlock.data());
    aSeeds.push_back(aBlock);
    aSeeds.push_back(Written([&](ClStream& oStream) { oBitmap.Store(oStream); }));
  }
  return aSeeds;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  Bytes aBlock(pData, pData + nSize);
  ClBitmap oBitmap;
  if (Refused([&] { oBitmap.Attach(aBlock.data(), static_cast<unsigned int>(aBlock.size())); })) {
    Require(oBitmap.IsEmpty(), "a refused block leaves the bitmap as it was");
    return 0;
  }
  if (ClBitmap::ImageSize(oBitmap.Header()) > cnMostPixelBytes) return 0;
  ClBitmap oCopy;
  oCopy.CopyFrom(oBitmap, true);
  Require(oCopy == oBitmap, "a copy is the same");
  Bytes aCopied(oCopy.BlockSize());
  oCopy.CopyTo(aCopied.data());
  // Runs have no pixels of their own, and other bitmaps have all that their header tells.
  Refused([&] {
    ClImage oImage;
    oCopy.GetImage(oImage);
    oCopy.IsGray(false);
    oCopy.IsGray(true);
    const tagBITMAPINFOHEADER& rHeader = *oCopy.Header();
    for (long nX = 0; nX < rHeader.biWidth; ++nX) oCopy.SetPixel(nX, 0, oCopy.GetPixel(nX, 0));
  });
  Refused([&] {
    ClImage oShared;
    oShared.Attach(oBitmap);
  });
  return 0;
}
