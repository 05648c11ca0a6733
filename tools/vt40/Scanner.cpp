// Calls of the library, and what their numbers mean to the user of the tool.
#include "Scanner.h"

#include <algorithm>
#include <cmath>

#include "KelvarinLiveScannerVT40.h"
#include "Scene.h"
#include "ToolError.h"

EExitCode ExitCodeOf(long nError) {
  switch (nError) {
    case KLV_ERROR_FILE_OPEN_FAIL:
      return eExitNoScanner;
    case KLV_ERROR_DEVICE_OPEN_FAIL:
      return eExitBusy;
    case KLV_ERROR_DISCONNECTED:
      return eExitLost;
    default:
      return eExitUsage;
  }
}

namespace {

std::string Describe(const std::string& sWhat, long nError) {
  return sWhat + ": " + LS_VT40GetErrorDescriptionA(nError) + " (" + std::to_string(nError) + ")";
}

void Check(long nError, const std::string& sWhat) {
  if (nError != KLV_SUCCESS) throw ClToolError(ExitCodeOf(nError), Describe(sWhat, nError));
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

/// Handles an image that did not come. The library reports a silent scanner and a lost one by the same
/// number; the list of scanners shows which it is.
void CheckImage(long nError, const std::string& sWhat, const std::string& sSerial) {
  if (nError != KLV_ERROR_DISCONNECTED) return Check(nError, sWhat);
  const std::vector<std::string> aSerials = ListSerials();
  if (std::find(aSerials.begin(), aSerials.end(), sSerial) == aSerials.end()) {
    throw ClToolError(eExitLost, Describe(sWhat, nError) + "; scanner " + sSerial + " was unplugged");
  }
  throw ClToolError(eExitTimeout,
                    Describe(sWhat, nError) + "; no image came in time from scanner " + sSerial);
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

using ImageFunction = long (*)(void*, void*, double*, unsigned char*, long*);

StDelivery Deliver(void* h, ImageFunction pfnImage, ClPicture& oPicture, const std::string& sWhat,
                   const std::string& sSerial) {
  oPicture.aPixels.resize(static_cast<size_t>(oPicture.nWidth) * oPicture.nHeight);
  StDelivery oDelivery;
  unsigned char bDone = 0;
  CheckImage(pfnImage(h, oPicture.aPixels.data(), &oDelivery.dScore, &bDone, &oDelivery.nResult), sWhat,
             sSerial);
  oDelivery.bDone = bDone != 0;
  return oDelivery;
}

}  // namespace

ClLibrary::ClLibrary() {
  const long nError = LS_VT40Initialize(nullptr);
  const std::string sScene = nError == KLV_SUCCESS ? "" : WithdrawScene();
  if (!sScene.empty() && LS_VT40Initialize(nullptr) == KLV_SUCCESS) {
    // It starts without the scene, so that the scene is at fault.
    LS_VT40Uninitialize();
    throw ClToolError(
        eExitFile, "the scene \"" + sScene +
                       "\" is no built-in scene, cannot be read, or holds a mistake; see docs/simulator.md");
  }
  if (nError == KLV_ERROR_FILE_OPEN_FAIL) {
    throw ClToolError(
        eExitNoScanner,
        Describe("the scan library libkelvarinvtscanapi.gcc.Release.32.so cannot be loaded", nError) +
            "; install it beside this library or where the dynamic linker finds it");
  }
  if (nError != KLV_SUCCESS)
    throw ClToolError(eExitNoScanner, Describe("the scan library does not start", nError));
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
  const long nError = LS_VT40OpenScanner(m_sSerial.c_str(), &m_hScanner);
  if (nError == KLV_ERROR_DISCONNECTED) {
    throw ClToolError(eExitNoScanner, "no scanner " + m_sSerial + " is connected; see vt40 list");
  }
  Check(nError, "scanner " + m_sSerial + " cannot be opened");
}

ClScanner::~ClScanner() {
  LS_VT40CloseScanner(&m_hScanner);
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
  Check(LS_VT40SetCaptureMode(m_hScanner, nMode), "capture mode");
}

ClPicture ClScanner::ImageForm() const {
  return FormOf(m_hScanner, LS_VT40GetImageSize, LS_VT40GetImageDPI);
}

ClPicture ClScanner::PreviewForm() const {
  return FormOf(m_hScanner, LS_VT40GetPreviewImageSize, LS_VT40GetPreviewImageDPI);
}

StDelivery ClScanner::GetImage(ClPicture& oPicture) {
  oPicture = ImageForm();
  return Deliver(m_hScanner, LS_VT40GetImage, oPicture, "capture", m_sSerial);
}

StDelivery ClScanner::GetPreview(ClPicture& oPicture) {
  oPicture = PreviewForm();
  return Deliver(m_hScanner, LS_VT40GetPreviewImage, oPicture, "preview", m_sSerial);
}

StDelivery ClScanner::GetRoll(ClPicture& oPicture) {
  oPicture = FormOf(m_hScanner, LS_VT40GetRollImageSize, LS_VT40GetRollImageDPI);
  return Deliver(m_hScanner, LS_VT40GetRollImage, oPicture, "roll", m_sSerial);
}

StDelivery ClScanner::GetSignature(ClPicture& oPicture) {
  oPicture = FormOf(m_hScanner, LS_VT40GetSignatureImageSize, LS_VT40GetImageDPI);
  return Deliver(m_hScanner, LS_VT40GetImage, oPicture, "signature", m_sSerial);
}

StDelivery ClScanner::GetSignaturePreview(ClPicture& oPicture) {
  oPicture = FormOf(m_hScanner, LS_VT40GetSignaturePreviewImageSize, LS_VT40GetPreviewImageDPI);
  return Deliver(m_hScanner, LS_VT40GetPreviewImage, oPicture, "preview of the signature", m_sSerial);
}

void ClScanner::SetLed(unsigned int nIndex, unsigned int nState) {
  Check(LS_VT40SetLED(m_hScanner, static_cast<unsigned char>(nIndex), static_cast<unsigned char>(nState)),
        "LED");
}

void ClScanner::Beep(unsigned int nArg1, unsigned int nArg2) {
  Check(LS_VT40Beep(m_hScanner, nArg1, nArg2), "beep");
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
