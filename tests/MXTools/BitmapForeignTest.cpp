// Bitmaps of every depth against another reader and writer of the format.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "MXTools/Bitmap.h"
#include "TemporaryDirectory.h"

namespace {

class BitmapForeign : public testing::Test {
 protected:
  std::string Path(const std::string& sName) const { return m_oDirectory.Path(sName); }

  void Convert(const std::string& sArguments) const {
    const std::string sCommand = std::string(KLV_CONVERT) + " " + sArguments;
    ASSERT_EQ(std::system(sCommand.c_str()), 0) << sCommand;
  }

  /// Red, green and blue of each pixel, top row first.
  static std::vector<int> ColorsOf(const ClBitmap& oBitmap) {
    std::vector<int> aColors;
    for (long y = oBitmap.Header()->biHeight - 1; y >= 0; --y) {
      for (long x = 0; x < oBitmap.Header()->biWidth; ++x) {
        for (const int nShift : {16, 8, 0})
          aColors.push_back(static_cast<int>(oBitmap.GetPixel(x, y) >> nShift & 255));
      }
    }
    return aColors;
  }

  std::vector<int> ColorsOf(const std::string& sFile) const {
    Convert("'" + Path(sFile) + "' -alpha off -depth 8 'rgb:" + Path("back") + "'");
    std::ifstream oFile(Path("back"), std::ios::binary);
    std::vector<int> aColors;
    for (int nByte = 0; (nByte = oFile.get()) >= 0;) aColors.push_back(nByte);
    return aColors;
  }

  ClTemporaryDirectory m_oDirectory;
};

TEST_F(BitmapForeign, WritesWhatWeReadInEveryDepth) {
  std::mt19937 oRandom(62);
  std::ofstream oSource(Path("source.ppm"), std::ios::binary);
  oSource << "P6\n37 11\n255\n";
  for (int n = 0; n < 37 * 11 * 3; ++n) oSource.put(static_cast<char>(oRandom()));
  oSource.close();
  const std::pair<const char*, int> aCases[] = {{"-monochrome -type bilevel BMP3:", 1},
                                                {"+dither -colors 12 -type palette BMP3:", 4},
                                                {"+dither -colors 200 -type palette BMP3:", 8},
                                                {"+dither -colors 20 -type palette -compress RLE BMP3:", 8},
                                                {"-colorspace gray -type palette BMP3:", 8},
                                                {"-define bmp:subtype=RGB555 BMP:", 16},
                                                {"-define bmp:subtype=RGB565 BMP:", 16},
                                                {"-type truecolor BMP3:", 24},
                                                {"-alpha on -channel A -evaluate set 50% BMP:", 32}};
  for (const auto& [szOptions, nBits] : aCases) {
    SCOPED_TRACE(szOptions);
    Convert("'" + Path("source.ppm") + "' " + szOptions + "'" + Path("theirs.bmp") + "'");
    ClBitmap oBitmap;
    oBitmap.Load(Path("theirs.bmp").c_str());
    EXPECT_EQ(oBitmap.Header()->biBitCount, nBits);
    const std::vector<int> aOurs = ColorsOf(oBitmap), aTheirs = ColorsOf("theirs.bmp");
    ASSERT_EQ(aOurs.size(), aTheirs.size());
    // Five bits become eight by a product here and by repeated bits elsewhere, which may differ by one.
    for (size_t n = 0; n < aOurs.size(); ++n) ASSERT_NEAR(aOurs[n], aTheirs[n], nBits == 16 ? 1 : 0) << n;
  }
}

}  // namespace
