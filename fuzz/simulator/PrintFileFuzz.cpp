// Feeds PNG files as prints: what is read has ridges and depth of one size, within the largest side.
#include <png.h>

#include "MemoryFile.h"
#include "PngChunks.h"
#include "scene/PrintFile.h"
#include "scene/SimError.h"

std::vector<Bytes> Seeds() {
  std::vector<Bytes> aSeeds;
  for (const png_uint_32 nFormat :
       std::initializer_list<png_uint_32>{PNG_FORMAT_GRAY, PNG_FORMAT_GA, PNG_FORMAT_RGB, PNG_FORMAT_RGBA,
                                          PNG_FORMAT_RGB_COLORMAP, PNG_FORMAT_LINEAR_Y}) {
    png_image oImage = {};
    oImage.version = PNG_IMAGE_VERSION;
    // One is wider than a print may be, once it has the other resolution.
    oImage.width = nFormat == PNG_FORMAT_LINEAR_Y ? 1700 : 5;
    oImage.height = 3;
    oImage.format = nFormat;
    oImage.colormap_entries = 2;
    const Bytes aPixels(PNG_IMAGE_SIZE(oImage), 1), aColors(8, 77);
    Bytes aFile(16384);
    png_alloc_size_t nSize = aFile.size();
    Require(
        png_image_write_to_memory(&oImage, aFile.data(), &nSize, 0, aPixels.data(), 0, aColors.data()) != 0,
        "the seed can be written");
    aFile.resize(nSize);
    aSeeds.push_back(aFile);
    // After signature and header comes the resolution: 8000 pels per metre, 20000, and none that is real.
    for (const auto& [nHigh, nLow] : {std::pair<uint8_t, uint8_t>{31, 64}, {78, 32}, {1, 0}}) {
      const Bytes aPels = {0,    0, 0, 9,     'p',  'H', 'Y', 's', 0, 0, nHigh,
                           nLow, 0, 0, nHigh, nLow, 1,   0,   0,   0, 0};
      Bytes aWith = aFile;
      aWith.insert(aWith.begin() + 33, aPels.begin(), aPels.end());
      aSeeds.push_back(aWith);
    }
  }
  return aSeeds;
}

Bytes Repaired(const Bytes& aInput) {
  return WithRightChecksums(aInput);
}

void Feed(const Bytes& aInput) {
  const ClMemoryFile oFile(aInput);
  RefusedWith<Simulator::ClSimError>([&] {
    const Simulator::ClPrint oPrint = Simulator::ReadPrintFile(oFile.Path());
    Require(
        oPrint.oRidge.Width() == oPrint.oDepth.Width() && oPrint.oRidge.Height() == oPrint.oDepth.Height(),
        "both planes have one size");
    Require(oPrint.oRidge.Width() <= 4096 && oPrint.oRidge.Height() <= 4096, "no print is larger than told");
  });
}
