// The looks at a frame.
#include "Observers.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "ErrorNames.h"
#include "KelvarinLiveScannerVT40.h"
#include "MXLiveScannerAPI/CaptureLimits.h"

namespace {

/// What a stall of this program is not: previews without new ink.
constexpr int cnFewestPreviews = 8;

}  // namespace

StFingers ClFingerObserver::Observe(const ClPicture& oPreview, bool bDone, bool bTaken) {
  StFingers oSeen{"hold still", "the fingers have just come to rest"};
  // Outside the fingers the preview is white.
  oSeen.nPixels = static_cast<int>(std::count_if(oPreview.aPixels.begin(), oPreview.aPixels.end(),
                                                 [](unsigned char n) { return n < 255; }));
  for (size_t n = 0; n < m_aPrevious.size(); ++n) {
    const int nDifference = oPreview.aPixels[n] - m_aPrevious[n];
    oSeen.nMotion += static_cast<uint64_t>(nDifference * nDifference);
  }
  m_aPrevious = oPreview.aPixels;
  Judge(oSeen, bDone, bTaken);
  m_nPreviousPixels = oSeen.nPixels;
  return oSeen;
}

void ClFingerObserver::Judge(StFingers& oSeen, bool bDone, bool bTaken) const {
  // The limits are the scanner's own, so that the reported reason is the one why it waits.
  using namespace CaptureLimits;
  if (bDone) {
    oSeen.szState = bTaken ? "lift" : "done";
    oSeen.szReason = bTaken ? "these fingers are captured; lift them" : "";
  } else if (oSeen.nPixels <= cnNoFingerPixels) {
    oSeen.szState = "no finger";
    oSeen.szReason = "nothing lies on the platen";
  } else if (oSeen.nMotion > cnStillMotion) {
    oSeen.szState = "finger";
    oSeen.szReason = "the fingers move";
  } else if (!IsSteady(m_nPreviousPixels, oSeen.nPixels)) {
    oSeen.szState = "finger";
    oSeen.szReason = "the area of the fingers changes";
  }
}

nlohmann::ordered_json FactsOf(const StFingers& oSeen, unsigned int nFrame) {
  return {{"frame", nFrame},
          {"state", oSeen.szState},
          {"fingerPixels", oSeen.nPixels},
          {"motion", oSeen.nMotion},
          {"reason", oSeen.szReason}};
}

StStrip StripOf(const ClPicture& oPicture) {
  constexpr unsigned int cnDark = 128;
  constexpr unsigned int cnMinDarkPixels = 10;
  std::vector<unsigned int> aDark(oPicture.nWidth);
  for (unsigned int y = 0; y < oPicture.nHeight; ++y) {
    const unsigned char* pRow = oPicture.Row(y);
    for (unsigned int x = 0; x < oPicture.nWidth; ++x) aDark[x] += pRow[x] < cnDark;
  }
  StStrip oStrip;
  for (unsigned int x = 0; x < oPicture.nWidth; ++x) {
    if (aDark[x] < cnMinDarkPixels) continue;
    if (oStrip.nEnd == 0) oStrip.nFirst = x;
    oStrip.nEnd = x + 1;
  }
  return oStrip;
}

double Millimetres(const StStrip& oStrip, const ClPicture& oPicture) {
  return oPicture.nPelsX == 0 ? 0.0 : 1000.0 * oStrip.Width() / oPicture.nPelsX;
}

nlohmann::ordered_json VerdictOf(long nVerdict) {
  const char* szName = NameOfNumber(nVerdict);
  return {{"number", nVerdict},
          {"name", szName != nullptr ? szName : "KLV_ERROR"},
          {"text", nVerdict == KLV_SUCCESS ? "The roll is clean." : LS_VT40GetErrorDescriptionA(nVerdict)}};
}

StInk InkOf(const ClPicture& oPicture) {
  StInk oInk{oPicture.nWidth, oPicture.nHeight, 0, 0, 0};
  for (unsigned int y = 0; y < oPicture.nHeight; ++y) {
    for (unsigned int x = 0; x < oPicture.nWidth; ++x) {
      if (oPicture.Row(y)[x] >= cnInkLimit) continue;
      ++oInk.nPixels;
      oInk.nLeft = std::min(oInk.nLeft, x);
      oInk.nRight = std::max(oInk.nRight, x + 1);
      oInk.nTop = std::min(oInk.nTop, y);
      oInk.nBottom = y + 1;
    }
  }
  return oInk.nPixels != 0 ? oInk : StInk();
}

nlohmann::ordered_json JsonOf(const StInk& oInk) {
  return {{"pixels", oInk.nPixels},
          {"left", oInk.nLeft},
          {"top", oInk.nTop},
          {"width", oInk.nRight - oInk.nLeft},
          {"height", oInk.nBottom - oInk.nTop}};
}

bool ClPenRest::HasCome(const StInk& oInk, double dSeconds, Clock::time_point tNow) {
  if (oInk.nPixels == 0 || oInk.nPixels != m_nPixels) {
    m_nPixels = oInk.nPixels;
    m_nUnchanged = 0;
    m_tChange = tNow;
    return false;
  }
  ++m_nUnchanged;
  return m_nUnchanged >= cnFewestPreviews && tNow - m_tChange >= std::chrono::duration<double>(dSeconds);
}
