// Feeds BMP files and blocks of memory that are said to be a bitmap: what loads is stored and loads again as
// the same, what attaches is copied, both give their pixels, and nothing outside the input is read.
#include "MXTools/Bitmap.h"
#include "MXTools/FpImage.h"
#include "StreamBytes.h"

namespace {

/// Going over the pixels of a larger bitmap would take all the time.
constexpr unsigned int cnMostPixelBytes = 1u << 12;
/// From here on a file of runs has to hold some of its pixels.
constexpr uint64_t cnLeastOfLarge = 1u << 26;

/// Whether a few runs stand for many pixels: the block is made in full each time. Larger ones are refused
/// before.
bool IsSlow(const Bytes& aFile) {
  const size_t nHeader = aFile.size() > 1 && aFile[0] == 'B' && aFile[1] == 'M' ? 14 : 0;
  if (aFile.size() < nHeader + 20) return false;
  const auto Field = [&](size_t nOffset) { return ClBitmap::LongFromMem(&aFile[nHeader + nOffset], 4); };
  const auto nHeight = static_cast<int32_t>(Field(8));
  const uint64_t nPixels =
      uint64_t{Field(4)} * static_cast<uint64_t>(nHeight < 0 ? -int64_t{nHeight} : nHeight);
  return Field(16) == ClBitmap::eRLE8 && nPixels > cnMostPixelBytes && nPixels <= cnLeastOfLarge;
}

Bytes Stored(const ClBitmap& oBitmap) {
  return Written([&](ClStream& oStream) { oBitmap.Store(oStream); });
}

void GoOver(const ClBitmap& oBitmap) {
  ClImage oImage;
  oBitmap.GetImage(oImage);
  // Rows without columns, of which a short file may claim billions, have no pixels to ask for.
  const long nHeight = oBitmap.Header()->biWidth > 0 ? oBitmap.Header()->biHeight : 0;
  for (long nY = 0; nY < nHeight; ++nY)
    for (long nX = 0; nX < oBitmap.Header()->biWidth; ++nX) oBitmap.GetPixel(nX, nY);
  oBitmap.IsGray(true);
  ClBitmap oCopy;
  oCopy.CopyFrom(oBitmap, true);
  Require(oCopy == oBitmap, "a copy is the same");
  if (nHeight > 0) oCopy.SetPixel(0, nHeight - 1, 0x808080);
}

/// A block of the caller's.
void FeedBlock(Bytes aBlock) {
  ClBitmap oBitmap;
  if (Refused([&] { oBitmap.Attach(aBlock.data(), static_cast<unsigned int>(aBlock.size())); })) {
    Require(oBitmap.IsEmpty(), "a refused block leaves the bitmap as it was");
    return;
  }
  if (ClBitmap::ImageSize(oBitmap.Header()) > cnMostPixelBytes) return;
  ClBitmap oCopy;
  oCopy.CopyFrom(oBitmap, true);
  Require(oCopy == oBitmap, "a copy is the same");
  Bytes aCopied(oCopy.BlockSize());
  oCopy.CopyTo(aCopied.data());
  // Runs are not decoded in memory; other bitmaps have all pixels that their header claims.
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
}

/// A file, or one without its file header.
void FeedFile(const Bytes& aFile) {
  if (IsSlow(aFile)) return;
  ClBitmap oBitmap;
  if (Refused([&] {
        ClBytesStream oStream(aFile);
        oBitmap.Load(oStream);
      })) {
    Require(oBitmap.IsEmpty(), "after a failure the bitmap is empty");
    return;
  }
  if (ClBitmap::ImageSize(oBitmap.Header()) > cnMostPixelBytes) return;
  // Masks without a size of the image are read, since some writers leave it out, but not written.
  if (oBitmap.Header()->biCompression != ClBitmap::ePlain && oBitmap.Header()->biSizeImage == 0) {
    Require(Refused([&] { Stored(oBitmap); }), "masks are not stored without a size");
    return;
  }
  const Bytes aStored = Stored(oBitmap);
  ClBytesStream oStream(aStored);
  ClBitmap oAgain;
  oAgain.Load(oStream);
  Require(oAgain == oBitmap, "what is stored loads again");
  // A bitmap without rows may be wider than any image.
  if (oBitmap.Header()->biHeight > 0) GoOver(oBitmap);
}

}  // namespace

std::vector<Bytes> Seeds() {
  std::vector<Bytes> aSeeds;
  for (const long nBits : {1, 4, 8, 16, 24, 32}) {
    ClBitmap oBitmap;
    oBitmap.Create(7, 3, nBits, ClBitmap::ePlain);
    oBitmap.SetPixel(5, 2, 0xFFFFFF);
    aSeeds.push_back(Stored(oBitmap));
    aSeeds.emplace_back(oBitmap.BlockSize());
    oBitmap.CopyTo(aSeeds.back().data());
  }
  ClBitmap oMasks;
  oMasks.Create(5, 2, 16, ClBitmap::eBitFields);
  aSeeds.push_back(Stored(oMasks));
  // Run-length files are read only, so that the last seed is a plain one with another mark and runs in place
  // of rows.
  Bytes aRuns = aSeeds[4];
  aRuns[30] = ClBitmap::eRLE8;
  aRuns.resize(14 + 40 + 1024);
  aRuns.insert(aRuns.end(), {7, 9, 0, 0, 0, 3, 1, 2, 3, 0, 0, 2, 1, 1, 2, 5, 0, 1});
  aSeeds.push_back(aRuns);
  return aSeeds;
}

void Feed(const Bytes& aFile) {
  FeedFile(aFile);
  FeedBlock(aFile);
}
