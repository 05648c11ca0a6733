// Calls of the library, and what their numbers mean to the user of the tool.
#include "Scanner.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "ExitCodes.h"
#include "Interruption.h"
#include "KelvarinLiveScannerVT40.h"
#include "ScanResult.h"
#include "StandIn.h"
#include "ToolError.h"

namespace {

std::string Describe(const std::string& sWhat, long nError) {
  return sWhat + ": " + LS_VT40GetErrorDescriptionA(nError) + " (" + std::to_string(nError) + ")";
}

[[noreturn]] void Fail(EExitCode eCode, const std::string& sWhat, long nError,
                       const std::string& sMore = "") {
  throw ClToolError(eCode, Describe(sWhat, nError) + sMore, nError);
}

void Check(long nError, const std::string& sWhat) {
  if (nError != KLV_SUCCESS) Fail(ExitCodeOf(nError), sWhat, nError);
}

std::vector<std::string> ListSerials() {
  std::vector<char> aCells;
  unsigned int nCount = 0;
  long nError = LS_VT40QueryScanners(nullptr, &nCount);
  while (nError == KLV_ERROR_SIZE_TOO_SMALL) {
    // A scanner may be plugged in between the two calls.
    aCells.assign(static_cast<size_t>(nCount) * KLV_VT40_SERIAL_SIZE, '\0');
    nError = LS_VT40QueryScanners(aCells.data(), &nCount);
  }
  Check(nError, "list of scanners");
  std::vector<std::string> aSerials;
  for (unsigned int n = 0; n < nCount; ++n) {
    const std::string sCell(&aCells[static_cast<size_t>(n) * KLV_VT40_SERIAL_SIZE], KLV_VT40_SERIAL_SIZE);
    aSerials.push_back(sCell.substr(0, sCell.find('\0')));
  }
  return aSerials;
}

using SizeFunction = long (*)(void*, unsigned int*, unsigned int*);

/// The library truncates dots per inch: 499 stands for 500 dpi, or 19685 pels per metre.
unsigned int PelsPerMetre(unsigned int nTruncatedDpi) {
  return static_cast<unsigned int>(std::floor((nTruncatedDpi + 1) / 0.0254));
}

ClPicture FormOf(void* h, SizeFunction pfnSize, SizeFunction pfnDpi) {
  ClPicture oPicture;
  unsigned int nDpiX = 0;
  unsigned int nDpiY = 0;
  Check(pfnSize(h, &oPicture.nWidth, &oPicture.nHeight), "image size");
  Check(pfnDpi(h, &nDpiX, &nDpiY), "resolution");
  oPicture.nPelsX = PelsPerMetre(nDpiX);
  oPicture.nPelsY = PelsPerMetre(nDpiY);
  return oPicture;
}

}  // namespace

bool IsConnected(const std::string& sSerial) {
  const std::vector<std::string> aSerials = ListSerials();
  return std::find(aSerials.begin(), aSerials.end(), sSerial) != aSerials.end();
}

ClLibrary::ClLibrary() {
  CheckScanLibraryIsTrusted();
  const long nError = LS_VT40Initialize(nullptr);
  const std::string sReason = nError == KLV_SUCCESS ? "" : m_oSimulator.LastError();
  if (!sReason.empty()) throw ClToolError(eExitFile, sReason + "; see vt40-scene(5)", nError);
  if (nError == KLV_ERROR_FILE_OPEN_FAIL) {
    Fail(eExitScanLibrary, "the scan library libkelvarinvtscanapi.gcc.Release.32.so cannot be loaded", nError,
         "; install it where the dynamic linker finds it, or use the simulated scanner with --simulate");
  }
  if (nError != KLV_SUCCESS) Fail(eExitScanLibrary, "the scan library does not start", nError);
  try {
    StandIn::CheckUsed();
  } catch (...) {
    LS_VT40Uninitialize();
    throw;
  }
  m_oScanLibrary = LoadedScanLibrary();
}

ClLibrary::~ClLibrary() {
  LS_VT40Uninitialize();
}

std::string ClLibrary::Version() {
  unsigned int nSize = 0;
  LS_VT40GetVersionA(nullptr, &nSize);
  std::string sVersion(nSize, '\0');
  Check(LS_VT40GetVersionA(sVersion.data(), &nSize), "version");
  sVersion.resize(sVersion.find('\0'));
  return sVersion;
}

std::vector<std::string> ClLibrary::Serials() const {
  return ListSerials();
}

std::string ClLibrary::ChooseSerial(const std::string& sSerial) const {
  if (!sSerial.empty()) return sSerial;
  const std::vector<std::string> aSerials = Serials();
  if (aSerials.empty()) throw ClToolError(eExitNoScanner, "no scanner is connected");
  if (aSerials.size() > 1) {
    throw ClToolError(eExitUsage, std::to_string(aSerials.size()) +
                                      " scanners are connected; name one with --serial (see vt40 list)");
  }
  return aSerials.front();
}

ClScanner::ClScanner(const ClLibrary& oLibrary, const std::string& sSerial)
    : m_sSerial(oLibrary.ChooseSerial(sSerial)) {
  if (!IsConnected(m_sSerial)) {
    throw ClToolError(eExitNoScanner, "no scanner " + m_sSerial + " is connected; see vt40 list",
                      KLV_ERROR_DISCONNECTED);
  }
  const long nError = LS_VT40OpenScanner(m_sSerial.c_str(), &m_hScanner);
  if (nError != KLV_SUCCESS)
    Fail(ExitCodeOfOpening(nError), "scanner " + m_sSerial + " cannot be opened", nError);
  m_pWaiting = std::make_unique<ClWaitingCall>(m_sSerial);
}

ClScanner::~ClScanner() {
  // A handle must not be closed under a call that uses it; when the library ends, so does the call.
  if (!m_pWaiting->IsStuck()) LS_VT40CloseScanner(&m_hScanner);
}

std::string ClScanner::Versions() const {
  unsigned int nSize = 0;
  LS_VT40GetVersionString(m_hScanner, nullptr, &nSize);
  std::string sVersions(nSize, '\0');
  Check(LS_VT40GetVersionString(m_hScanner, sVersions.data(), &nSize), "versions");
  sVersions.resize(sVersions.find('\0'));
  return sVersions;
}

unsigned int ClScanner::Condition() const {
  unsigned int nCondition = 0;
  unsigned int nReserved = 0;
  Check(LS_VT40GetScannerCondition(m_hScanner, &nCondition, &nReserved), "condition");
  return nCondition;
}

void ClScanner::SetMode(int nMode) {
  const long nError = LS_VT40SetCaptureMode(m_hScanner, nMode);
  if (nError == KLV_ERROR_UNSUPPORTED && nMode == KLV_VT40_CAPTURE_MODE_AUTO_LIVE)
    Fail(eExitLiveness, "automatic capture with a liveness score", nError,
         "; the liveness library is missing");
  Check(nError, "capture mode");
}

ClPicture ClScanner::ImageForm() const {
  return FormOf(m_hScanner, LS_VT40GetImageSize, LS_VT40GetImageDPI);
}

ClPicture ClScanner::PreviewForm() const {
  return FormOf(m_hScanner, LS_VT40GetPreviewImageSize, LS_VT40GetPreviewImageDPI);
}

ClPicture ClScanner::RollForm() const {
  return FormOf(m_hScanner, LS_VT40GetRollImageSize, LS_VT40GetRollImageDPI);
}

ClPicture ClScanner::SignatureForm() const {
  return FormOf(m_hScanner, LS_VT40GetSignatureImageSize, LS_VT40GetImageDPI);
}

StDelivery ClScanner::Deliver(ImageFunction pfnImage, ClPicture oForm, ClPicture& oPicture,
                              const std::string& sWhat) {
  struct StCall {
    ClPicture oPicture;
    StDelivery oDelivery;
    unsigned char bDone = 0;
  };
  const auto pCall = std::make_shared<StCall>();
  pCall->oPicture = std::move(oForm);
  // The block that the caller has is used again.
  pCall->oPicture.aPixels = std::move(oPicture.aPixels);
  pCall->oPicture.aPixels.resize(static_cast<size_t>(pCall->oPicture.nWidth) * pCall->oPicture.nHeight);
  const long nError = m_pWaiting->Make([pCall, pfnImage, h = m_hScanner] {
    return pfnImage(h, pCall->oPicture.aPixels.data(), &pCall->oDelivery.dScore, &pCall->bDone,
                    &pCall->oDelivery.nResult);
  });
  oPicture = std::move(pCall->oPicture);
  if (nError == KLV_ERROR_DISCONNECTED) {
    // The library reports a silent scanner and a lost one by the same number; the list shows which it is.
    if (!IsConnected(m_sSerial)) Fail(eExitLost, sWhat, nError, "; scanner " + m_sSerial + " was unplugged");
    Fail(eExitTimeout, sWhat, nError, "; no image came in time from scanner " + m_sSerial);
  }
  Check(nError, sWhat);
  pCall->oDelivery.bDone = pCall->bDone != 0;
  return pCall->oDelivery;
}

StDelivery ClScanner::GetImage(ClPicture& oPicture) {
  return Deliver(LS_VT40GetImage, ImageForm(), oPicture, "capture");
}

StDelivery ClScanner::GetPreview(ClPicture& oPicture) {
  return Deliver(LS_VT40GetPreviewImage, PreviewForm(), oPicture, "preview");
}

StDelivery ClScanner::GetRoll(ClPicture& oPicture) {
  return Deliver(LS_VT40GetRollImage, RollForm(), oPicture, "roll");
}

StDelivery ClScanner::GetSignature(ClPicture& oPicture) {
  return Deliver(LS_VT40GetImage, SignatureForm(), oPicture, "signature");
}

StDelivery ClScanner::GetSignaturePreview(ClPicture& oPicture) {
  return Deliver(LS_VT40GetPreviewImage,
                 FormOf(m_hScanner, LS_VT40GetSignaturePreviewImageSize, LS_VT40GetPreviewImageDPI), oPicture,
                 "preview of the signature");
}

void ClScanner::SetLed(unsigned int nIndex, unsigned int nState) {
  const ClScanResult oResult;
  Check(LS_VT40SetLED(m_hScanner, static_cast<unsigned char>(nIndex), static_cast<unsigned char>(nState)),
        "LED");
  Check(ClScanResult::Last(), "LED of scanner " + m_sSerial);
}

void ClScanner::Beep(unsigned int nArg1, unsigned int nArg2) {
  const ClScanResult oResult;
  Check(LS_VT40Beep(m_hScanner, nArg1, nArg2), "beep");
  Check(ClScanResult::Last(), "buzzer of scanner " + m_sSerial);
}

void ClScanner::Display(std::string sText) {
  Check(LS_VT40SetDisplayData(m_hScanner, 0, sText.data(), static_cast<unsigned int>(sText.size())),
        "display of scanner " + m_sSerial);
}

std::string ClScanner::GetProperty(const std::string& sName) const {
  unsigned int nSize = 256;
  std::string sValue(nSize, '\0');
  long nError = LS_VT40GetPropertyA(m_hScanner, sName.c_str(), sValue.data(), &nSize);
  if (nError == KLV_ERROR_BUFFER_TOO_SMALL) {
    sValue.assign(nSize, '\0');
    nError = LS_VT40GetPropertyA(m_hScanner, sName.c_str(), sValue.data(), &nSize);
  }
  Check(nError, "property \"" + sName + "\"");
  sValue.resize(sValue.find('\0'));
  return sValue;
}

void ClScanner::SetProperty(const std::string& sName, const std::string& sValue) {
  Check(LS_VT40SetPropertyA(m_hScanner, sName.c_str(), sValue.c_str()),
        "property \"" + sName + "\" = \"" + sValue + "\"");
}
