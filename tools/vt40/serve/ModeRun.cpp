// Each mode's step and capture.
#include "ModeRun.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iterator>

#include "Http.h"
#include "KelvarinLiveScannerVT40.h"

namespace Serve {
namespace {

constexpr struct {
  const char* szName;
  int nMode;
} caModes[] = {{"off", KLV_VT40_CAPTURE_MODE_OFF},
               {"preview", KLV_VT40_CAPTURE_MODE_PREVIEW},
               {"full", KLV_VT40_CAPTURE_MODE_FULL},
               {"auto", KLV_VT40_CAPTURE_MODE_AUTO},
               {"auto-live", KLV_VT40_CAPTURE_MODE_AUTO_LIVE},
               {"roll", KLV_VT40_CAPTURE_MODE_ROLL},
               {"signature", KLV_VT40_CAPTURE_MODE_SIGNATURE}};
/// Seconds without the pen that end a signature.
constexpr double cdPenRest = 2.0;

const auto* FindMode(const std::string& sMode) {
  return std::find_if(std::begin(caModes), std::end(caModes),
                      [&](const auto& o) { return sMode == o.szName; });
}

EFrameKind KindOf(const std::string& sMode) {
  return sMode == "full"        ? eFrameFull
         : sMode == "roll"      ? eFrameRoll
         : sMode == "signature" ? eFrameSignature
                                : eFramePreview;
}

double MillisecondsNow() {
  return std::chrono::duration<double, std::milli>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

}  // namespace

bool IsMode(const std::string& sMode) {
  return FindMode(sMode) != std::end(caModes);
}

ClModeRun::ClModeRun(ClScanner& oScanner, std::string sMode, ClStationSink& oSink, ClFramePool& oPool,
                     uint32_t& nFrame)
    : m_oScanner(oScanner), m_sMode(std::move(sMode)), m_oSink(oSink), m_oPool(oPool), m_nFrame(nFrame) {
  m_oScanner.SetMode(FindMode(m_sMode)->nMode);
}

void ClModeRun::Step() {
  const std::shared_ptr<ClFrame> pFrame = m_oPool.Take();
  pFrame->eKind = KindOf(m_sMode);
  // The number is that of the frame that comes; one that does not come leaves no gap.
  pFrame->nNumber = m_nFrame + 1;
  switch (pFrame->eKind) {
    case eFrameFull:
      m_oScanner.GetImage(pFrame->oPicture);
      pFrame->dTime = MillisecondsNow();
      break;
    case eFrameRoll:
      StepRoll(*pFrame);
      break;
    case eFrameSignature:
      StepSignature(*pFrame);
      break;
    case eFramePreview:
      StepPreview(*pFrame);
      break;
  }
  ++m_nFrame;
  m_oSink.Frame(pFrame);
}

void ClModeRun::StepPreview(ClFrame& oFrame) {
  const StDelivery oDelivery = m_oScanner.GetPreview(oFrame.oPicture);
  oFrame.dTime = MillisecondsNow();
  const bool bDone = oDelivery.bDone && IsAutomatic();
  const StFingers oSeen = m_oFingers.Observe(oFrame.oPicture, bDone, m_bTaken);
  nlohmann::ordered_json oFacts = {{"event", "facts"}, {"kind", "auto"}};
  oFacts.update(FactsOf(oSeen, oFrame.nNumber));
  oFacts["condition"] = m_oScanner.Condition();
  oFacts["score"] = oDelivery.dScore;
  m_oSink.Facts(oFacts);
  // The scanner goes on reporting "done" until the fingers are lifted.
  if (bDone && !m_bTaken) m_oSink.Taken(TakeFull(&oFrame.oPicture));
  m_bTaken = bDone;
}

void ClModeRun::StepRoll(ClFrame& oFrame) {
  const StDelivery oDelivery = m_oScanner.GetRoll(oFrame.oPicture);
  oFrame.dTime = MillisecondsNow();
  const StStrip oStrip = StripOf(oFrame.oPicture);
  // The finished print stands until the next finger begins one.
  if (oDelivery.bDone) {
    m_nFinished = oStrip.Width();
  } else if (oStrip.Width() != m_nFinished) {
    m_nFinished = 0;
  }
  const bool bRolling = oStrip.Width() != 0 && m_nFinished == 0;
  m_oSink.Facts({{"event", "facts"},
                 {"kind", "roll"},
                 {"frame", oFrame.nNumber},
                 {"left", oStrip.nFirst},
                 {"width", oStrip.Width()},
                 {"state", bRolling ? "rolling" : "no finger"}});
  if (oDelivery.bDone) m_oSink.Taken(TakeRoll(oFrame.oPicture, oDelivery));
}

void ClModeRun::StepSignature(ClFrame& oFrame) {
  m_oScanner.GetSignaturePreview(oFrame.oPicture);
  oFrame.dTime = MillisecondsNow();
  const StInk oInk = InkOf(oFrame.oPicture);
  m_oSink.Facts(
      {{"event", "facts"}, {"kind", "signature"}, {"frame", oFrame.nNumber}, {"ink", JsonOf(oInk)}});
  if (!m_oRest.HasCome(oInk, cdPenRest)) return;
  m_oSink.Taken(TakeSignature(true));
  m_oScanner.SetProperty("nResetImage", "1");
  m_oRest = ClPenRest();
}

StTaken ClModeRun::Begin(const char* szKind, const StDelivery& oDelivery) const {
  StTaken oTaken;
  oTaken.oFacts = {{"kind", szKind},
                   {"mode", m_sMode},
                   {"score", oDelivery.dScore},
                   {"done", oDelivery.bDone},
                   {"condition", m_oScanner.Condition()}};
  return oTaken;
}

StTaken ClModeRun::TakeFull(const ClPicture* pPreview) {
  ClPicture oPicture;
  const StDelivery oDelivery = m_oScanner.GetImage(oPicture);
  StTaken oTaken = Begin("full", oDelivery);
  oTaken.aPictures.emplace_back("full", std::move(oPicture));
  if (pPreview != nullptr) oTaken.aPictures.emplace_back("preview", *pPreview);
  return oTaken;
}

StTaken ClModeRun::TakeRoll(const ClPicture& oPicture, const StDelivery& oDelivery) const {
  StTaken oTaken = Begin("roll", oDelivery);
  if (oDelivery.bDone) oTaken.oFacts["verdict"] = VerdictOf(oDelivery.nResult);
  oTaken.oFacts["millimetres"] = std::round(10.0 * Millimetres(StripOf(oPicture), oPicture)) / 10.0;
  oTaken.aPictures.emplace_back("roll", oPicture);
  return oTaken;
}

StTaken ClModeRun::TakeSignature(bool bDone) {
  ClPicture oPicture;
  StDelivery oDelivery = m_oScanner.GetSignature(oPicture);
  // The library calls every drawing finished; here it is the pen's rest that finishes one.
  oDelivery.bDone = bDone;
  StTaken oTaken = Begin("signature", oDelivery);
  oTaken.oFacts["ink"] = JsonOf(InkOf(oPicture));
  oTaken.aPictures.emplace_back("signature", std::move(oPicture));
  return oTaken;
}

StTaken ClModeRun::Capture() {
  if (IsAutomatic())
    throw ClServiceError(409, "INVALID_MODE", "in mode \"" + m_sMode + "\" the scanner captures by itself",
                         "Lay fingers down and wait for the event \"result\", or set mode preview.");
  if (m_sMode == "signature") return TakeSignature(false);
  if (m_sMode != "roll") return TakeFull(nullptr);
  ClPicture oPicture;
  const StDelivery oDelivery = m_oScanner.GetRoll(oPicture);
  return TakeRoll(oPicture, oDelivery);
}

}  // namespace Serve
