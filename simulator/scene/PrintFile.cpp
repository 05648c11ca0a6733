// Reads a print from a PNG file.
#include "scene/PrintFile.h"

#include <png.h>

#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <memory>

#include "scene/Platen.h"
#include "scene/RegularFile.h"
#include "scene/SimError.h"

namespace Simulator {
namespace {

constexpr uint32_t cnLargestSide = 4096;

struct ClFileCloser {
  void operator()(std::FILE* pFile) const { std::fclose(pFile); }
};

/// The file's pixels per metre, or 19685 when it has none within a sensible range.
double PelsOf(png_structp pPng, png_infop pInfo) {
  const png_uint_32 nPels = png_get_x_pixels_per_meter(pPng, pInfo);
  return nPels >= 3000 && nPels <= 80000 ? static_cast<double>(nPels) : 19685.0;
}

/// Reads one file. libpng leaves by longjmp when something is wrong, so that the two functions that call it
/// hold nothing that needs a destructor; a member keeps the text of an error.
class ClPngReader {
 public:
  explicit ClPngReader(const std::string& sPath) : m_sPath(sPath) {
    NeedRegularFile(m_sPath, "print file \"" + m_sPath + "\"");
    m_pFile.reset(std::fopen(m_sPath.c_str(), "rb"));
    if (!m_pFile) throw ClSimError(eFileOpen, "can't open print file \"" + m_sPath + "\"");
    m_pPng =
        png_create_read_struct(PNG_LIBPNG_VER_STRING, this, &ClPngReader::OnError, &ClPngReader::OnWarning);
    if (m_pPng) m_pInfo = png_create_info_struct(m_pPng);
    if (!m_pInfo) {
      png_destroy_read_struct(&m_pPng, nullptr, nullptr);
      throw ClSimError(eOutOfMemory, "no memory for reading \"" + m_sPath + "\"");
    }
  }
  ClPngReader(const ClPngReader&) = delete;
  ClPngReader& operator=(const ClPngReader&) = delete;
  ~ClPngReader() { png_destroy_read_struct(&m_pPng, &m_pInfo, nullptr); }

  TpPlane<uint8_t> Read(double& dPels) {
    if (!ReadHeader()) Fail();
    dPels = PelsOf(m_pPng, m_pInfo);
    const png_uint_32 nWidth = png_get_image_width(m_pPng, m_pInfo),
                      nHeight = png_get_image_height(m_pPng, m_pInfo);
    if (png_get_rowbytes(m_pPng, m_pInfo) != nWidth)
      throw ClSimError(eFileRead, "print file \"" + m_sPath + "\" has a pixel format that can't be read");
    TpPlane<uint8_t> oGrey(static_cast<int>(nWidth), static_cast<int>(nHeight));
    std::vector<png_bytep> aRows(nHeight);
    for (png_uint_32 y = 0; y < nHeight; ++y) aRows[y] = oGrey.Row(static_cast<int>(y));
    if (!ReadRows(aRows.data())) Fail();
    return oGrey;
  }

 private:
  bool ReadHeader() {
    if (setjmp(png_jmpbuf(m_pPng))) return false;
    png_init_io(m_pPng, m_pFile.get());
    png_set_user_limits(m_pPng, cnLargestSide, cnLargestSide);
    png_read_info(m_pPng, m_pInfo);
    png_set_expand(m_pPng);
    png_set_scale_16(m_pPng);
    png_color_16 oWhite{0, 255, 255, 255, 255};
    png_set_background(m_pPng, &oWhite, PNG_BACKGROUND_GAMMA_SCREEN, 0, 1.0);
    if (png_get_color_type(m_pPng, m_pInfo) & PNG_COLOR_MASK_COLOR)
      png_set_rgb_to_gray_fixed(m_pPng, PNG_ERROR_ACTION_NONE, PNG_RGB_TO_GRAY_DEFAULT,
                                PNG_RGB_TO_GRAY_DEFAULT);
    png_set_interlace_handling(m_pPng);
    png_read_update_info(m_pPng, m_pInfo);
    return true;
  }

  bool ReadRows(png_bytepp ppRows) {
    if (setjmp(png_jmpbuf(m_pPng))) return false;
    png_read_image(m_pPng, ppRows);
    png_read_end(m_pPng, nullptr);
    return true;
  }

  [[noreturn]] void Fail() const {
    throw ClSimError(eFileRead, "can't read print file \"" + m_sPath + "\": " + m_szError);
  }

  [[noreturn]] static void OnError(png_structp pPng, png_const_charp szText) {
    auto* pThis = static_cast<ClPngReader*>(png_get_error_ptr(pPng));
    std::snprintf(pThis->m_szError, sizeof pThis->m_szError, "%s", szText);
    png_longjmp(pPng, 1);
  }
  static void OnWarning(png_structp, png_const_charp) {}

  std::string m_sPath;
  std::unique_ptr<std::FILE, ClFileCloser> m_pFile;
  png_structp m_pPng = nullptr;
  png_infop m_pInfo = nullptr;
  char m_szError[128] = "";
};

/// Mean darkness in a square window, by running sums over rows, then columns; the window is clipped to the
/// picture.
TpPlane<uint8_t> BoxMean(const TpPlane<uint8_t>& oIn, int nReach) {
  TpPlane<uint8_t> oRows(oIn.Width(), oIn.Height()), oOut(oIn.Width(), oIn.Height());
  const auto Run = [nReach](const uint8_t* pIn, uint8_t* pOut, int nCount, ptrdiff_t nStep) {
    int nSum = 0, nHeld = 0;
    for (int i = -nReach; i < nCount; ++i) {
      if (i + nReach < nCount) nSum += pIn[(i + nReach) * nStep], ++nHeld;
      if (i - nReach - 1 >= 0) nSum -= pIn[(i - nReach - 1) * nStep], --nHeld;
      if (i >= 0) pOut[i * nStep] = static_cast<uint8_t>(nSum / nHeld);
    }
  };
  for (int y = 0; y < oIn.Height(); ++y) Run(oIn.Row(y), oRows.Row(y), oIn.Width(), 1);
  for (int x = 0; x < oIn.Width(); ++x) Run(oRows.Data() + x, oOut.Data() + x, oIn.Height(), oIn.Width());
  return oOut;
}

int Rescaled(int nSide, double dFactor) {
  return std::max(1, static_cast<int>(std::lround(nSide * dFactor)));
}

TpPlane<uint8_t> Rescale(const TpPlane<uint8_t>& oIn, double dFactor) {
  const int nWidth = Rescaled(oIn.Width(), dFactor), nHeight = Rescaled(oIn.Height(), dFactor);
  TpPlane<uint8_t> oOut(nWidth, nHeight);
  for (int y = 0; y < nHeight; ++y) {
    const double dY = std::clamp((y + 0.5) / dFactor - 0.5, 0.0, oIn.Height() - 1.0);
    const int nY = std::min(static_cast<int>(dY), std::max(0, oIn.Height() - 2));
    const int nBelow = std::min(nY + 1, oIn.Height() - 1);
    for (int x = 0; x < nWidth; ++x) {
      const double dX = std::clamp((x + 0.5) / dFactor - 0.5, 0.0, oIn.Width() - 1.0);
      const int nX = std::min(static_cast<int>(dX), std::max(0, oIn.Width() - 2));
      const int nRight = std::min(nX + 1, oIn.Width() - 1);
      const double dA = dX - nX, dB = dY - nY;
      const double dTop = oIn.At(nX, nY) * (1.0 - dA) + oIn.At(nRight, nY) * dA;
      const double dLow = oIn.At(nX, nBelow) * (1.0 - dA) + oIn.At(nRight, nBelow) * dA;
      oOut.At(x, y) = static_cast<uint8_t>(std::lround(dTop * (1.0 - dB) + dLow * dB));
    }
  }
  return oOut;
}

}  // namespace

ClPrint ReadPrintFile(const std::string& sPath) {
  double dPels = 0.0;
  TpPlane<uint8_t> oGrey = ClPngReader(sPath).Read(dPels);
  const double dFactor = 19685.0 / dPels;
  if (std::fabs(dFactor - 1.0) > 0.005) {
    // The size is checked first: at the lowest resolution a print would grow to 40 times its pixels.
    if (std::max(Rescaled(oGrey.Width(), dFactor), Rescaled(oGrey.Height(), dFactor)) >
        static_cast<int>(cnLargestSide))
      throw ClSimError(eFileRead,
                       "print file \"" + sPath + "\" is larger than 4096 pixels at 500 dots per inch");
    oGrey = Rescale(oGrey, dFactor);
  }
  ClPrint oPrint;
  oPrint.oRidge.Resize(oGrey.Width(), oGrey.Height());
  for (size_t i = 0; i < oGrey.Count(); ++i)
    oPrint.oRidge.Data()[i] = static_cast<uint8_t>(255 - oGrey.Data()[i]);
  // Skin is where the neighbourhood of some ridge periods is dark; specks of dirt are not.
  const TpPlane<uint8_t> oMean = BoxMean(BoxMean(oPrint.oRidge, 9), 9);
  oPrint.oDepth.Resize(oMean.Width(), oMean.Height());
  for (size_t i = 0; i < oMean.Count(); ++i)
    oPrint.oDepth.Data()[i] = static_cast<uint8_t>(std::clamp((oMean.Data()[i] - 12) * 8, 0, 255));
  return oPrint;
}

}  // namespace Simulator
