// Files that tests write for themselves, in a folder that goes with the test.
#pragma once

#include <png.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "TemporaryDirectory.h"
#include "scene/SimError.h"

namespace Simulator {

/// The number and words with which fnCall refuses; number 0 when it does not.
template <typename F>
std::pair<long, std::string> RefusalOf(F&& fnCall) {
  try {
    fnCall();
    return {0, ""};
  } catch (const ClSimError& oError) {
    return {oError.Number(), oError.what()};
  }
}

class ClTestFolder : public ClTemporaryDirectory {
 public:
  std::string Write(const std::string& sName, const std::string& sText) const {
    std::ofstream(Path(sName), std::ios::binary) << sText;
    return Path(sName);
  }

  static std::string Read(const std::string& sPath) {
    std::ifstream oFile(sPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(oFile), std::istreambuf_iterator<char>()};
  }

  /// A grey PNG whose pixels a function of x and y gives.
  template <typename F>
  std::string WritePng(const std::string& sName, unsigned nWidth, unsigned nHeight, F&& fnPixel) const {
    std::vector<uint8_t> aPixels;
    for (unsigned y = 0; y < nHeight; ++y)
      for (unsigned x = 0; x < nWidth; ++x) aPixels.push_back(static_cast<uint8_t>(fnPixel(x, y)));
    png_image oImage;
    std::memset(&oImage, 0, sizeof oImage);
    oImage.version = PNG_IMAGE_VERSION;
    oImage.width = nWidth;
    oImage.height = nHeight;
    oImage.format = PNG_FORMAT_GRAY;
    if (!png_image_write_to_file(&oImage, Path(sName).c_str(), 0, aPixels.data(), 0, nullptr))
      throw std::runtime_error(oImage.message);
    return Path(sName);
  }
};

}  // namespace Simulator
