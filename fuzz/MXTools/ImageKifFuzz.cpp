// Feeds image containers: what loads has read all its pixels, and comes back from its stored form.
#include <cstring>

#include "MXTools/FpImage.h"
#include "StreamBytes.h"

namespace {

Bytes Stored(const ClImage& oImage) {
  return Written([&](ClStream& oStream) { oImage.Store(oStream); });
}

}  // namespace

std::vector<Bytes> Seeds() {
  std::vector<Bytes> aSeeds;
  for (const uint8_t nType :
       {ClImage::eUint8, ClImage::eInt16, ClImage::eUint32, ClImage::eFloat32, ClImage::eDouble64}) {
    ClImage oImage;
    oImage.NewWithType(nType, 3, 2, nType == ClImage::eUint8 ? 3 : 1, 19685, 19685, true);
    oImage = static_cast<unsigned char>(0);
    aSeeds.push_back(Stored(oImage));
  }
  aSeeds.push_back(Stored(ClImage()));
  // Older versions lack the field of alignment, and the oldest the tag.
  Bytes aVersion1 = aSeeds[0];
  aVersion1[7] = 1;
  aVersion1.erase(aVersion1.begin() + 29);
  aSeeds.push_back(aVersion1);
  return aSeeds;
}

void Feed(const Bytes& aFile) {
  for (const bool bFailureFlag : {false, true}) {
    ClBytesStream oStream(aFile);
    oStream.m_bFailureFlag = bFailureFlag;
    ClImage oImage;
    if (Refused([&] { oImage.Load(oStream); })) continue;
    const int nElement = oImage.ElementSize();
    Require(oImage.Data() == nullptr || (nElement <= 8 && (nElement & (nElement - 1)) == 0),
            "pixels were read");
    // Reads them all.
    Bytes aPixels(oImage.Data() != nullptr ? oImage.DataBytes() : 0);
    if (!aPixels.empty()) std::memcpy(aPixels.data(), oImage.Data(), aPixels.size());
    const Bytes aStored = Stored(oImage);
    ClBytesStream oAgain(aStored);
    ClImage oLoaded;
    oLoaded.Load(oAgain);
    Require(Stored(oLoaded) == aStored, "what is stored loads again");
  }
}
