// Lines, digits and capitals on white.
#include "quality/Plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr int cnPlotWidth = 720, cnPlotHeight = 480, cnMargin = 48, cnGlyph = 2;
constexpr unsigned int cnPlotPels = 3780;

/// Glyphs of three by five cells, row after row from the highest of 15 bits on: digits, then capitals.
constexpr unsigned int canDigits[] = {0x7B6F, 0x2C97, 0x73E7, 0x73CF, 0x5BC9,
                                      0x79CF, 0x79EF, 0x7249, 0x7BEF, 0x7BCF};
constexpr unsigned int canCapitals[] = {
    0x7BED, 0x6BAE, 0x3923, 0x6B6E, 0x79A7, 0x79A4, 0x396B, 0x5BED, 0x7497, 0x126F, 0x5BAD, 0x4927, 0x5FED,
    0x6B6D, 0x2B6A, 0x6BA4, 0x2B7B, 0x6BAD, 0x388E, 0x7492, 0x5B6F, 0x5B6A, 0x5BFD, 0x5AAD, 0x5A92, 0x72A7};

class ClPlot {
 public:
  ClPlot(double dEndX, double dEndY) : m_dEndX(dEndX), m_dEndY(dEndY) {
    m_oPicture.nWidth = cnPlotWidth;
    m_oPicture.nHeight = cnPlotHeight;
    m_oPicture.nPelsX = m_oPicture.nPelsY = cnPlotPels;
    m_oPicture.aPixels.assign(static_cast<size_t>(cnPlotWidth) * cnPlotHeight, 255);
  }

  double X(double d) const { return cnMargin + d / m_dEndX * (cnPlotWidth - 2 * cnMargin); }
  double Y(double d) const { return cnPlotHeight - cnMargin - d / m_dEndY * (cnPlotHeight - 2 * cnMargin); }

  void Set(int nX, int nY, unsigned char nGrey) {
    if (nX < 0 || nY < 0 || nX >= cnPlotWidth || nY >= cnPlotHeight) return;
    unsigned char& n = m_oPicture.aPixels[static_cast<size_t>(nY) * cnPlotWidth + static_cast<size_t>(nX)];
    n = std::min(n, nGrey);
  }

  void Line(double dX, double dY, double dToX, double dToY, unsigned char nGrey, bool bDashed, int nWide) {
    const int nSteps = static_cast<int>(std::max({std::fabs(dToX - dX), std::fabs(dToY - dY), 1.0}));
    for (int n = 0; n <= nSteps; ++n) {
      if (bDashed && n / 6 % 2 == 1) continue;
      const double dPart = static_cast<double>(n) / nSteps;
      const int nX = static_cast<int>(std::lround(dX + (dToX - dX) * dPart));
      const int nY = static_cast<int>(std::lround(dY + (dToY - dY) * dPart));
      for (int k = 0; k < nWide * nWide; ++k) Set(nX + k % nWide, nY + k / nWide, nGrey);
    }
  }

  void Text(int nX, int nY, const std::string& sText, unsigned char nGrey) {
    for (const char c : sText) {
      const unsigned int nBits = c >= '0' && c <= '9'   ? canDigits[c - '0']
                                 : c >= 'A' && c <= 'Z' ? canCapitals[c - 'A']
                                 : c == '.'             ? 0x2u
                                                        : 0;
      for (int n = 0; n < 15 * cnGlyph * cnGlyph; ++n) {
        const int nCell = n / (cnGlyph * cnGlyph), nPart = n % (cnGlyph * cnGlyph);
        if ((nBits >> (14 - nCell) & 1) == 0) continue;
        Set(nX + cnGlyph * (nCell % 3) + nPart % cnGlyph, nY + cnGlyph * (nCell / 3) + nPart / cnGlyph,
            nGrey);
      }
      nX += 4 * cnGlyph;
    }
  }

  void Axes(double dStepX, double dStepY) {
    char szText[32];
    for (int n = 0; n * dStepX <= m_dEndX * 1.0001; ++n) {
      const double d = n * dStepX;
      Line(X(d), Y(0), X(d), Y(m_dEndY), 225, false, 1);
      std::snprintf(szText, sizeof(szText), "%g", d);
      Text(static_cast<int>(X(d)) - 4, cnPlotHeight - cnMargin + 8, szText, 0);
    }
    for (int n = 0; n * dStepY <= m_dEndY * 1.0001; ++n) {
      const double d = n * dStepY;
      Line(X(0), Y(d), X(m_dEndX), Y(d), 225, false, 1);
      std::snprintf(szText, sizeof(szText), "%g", std::round(100 * d) / 100);
      Text(8, static_cast<int>(Y(d)) - 5, szText, 0);
    }
  }

  ClPicture Take() { return std::move(m_oPicture); }

 private:
  const double m_dEndX, m_dEndY;
  ClPicture m_oPicture;
};

}  // namespace

ClPicture DrawCurves(const std::vector<StCurve>& aCurves, double dEndX, double dStepX, double dEndY,
                     double dStepY) {
  ClPlot oPlot(dEndX, dEndY);
  oPlot.Axes(dStepX, dStepY);
  int nY = cnMargin + 6;
  for (const StCurve& o : aCurves) {
    for (size_t n = 1; n < o.aX.size(); ++n)
      oPlot.Line(oPlot.X(o.aX[n - 1]), oPlot.Y(o.aY[n - 1]), oPlot.X(o.aX[n]), oPlot.Y(o.aY[n]), o.nGrey,
                 o.bDashed, 2);
    oPlot.Line(cnPlotWidth - 250, nY + 4, cnPlotWidth - 215, nY + 4, o.nGrey, o.bDashed, 2);
    oPlot.Text(cnPlotWidth - 205, nY, o.sName, 0);
    nY += 16;
  }
  return oPlot.Take();
}
