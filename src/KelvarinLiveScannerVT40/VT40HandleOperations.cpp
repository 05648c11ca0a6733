// What an assigned handle does: image delivery, sizes, LEDs, versions and properties.
#include <cstring>

#include "KelvarinLiveScannerVT40/VT40Handle.h"
#include "MXTools/Failure.h"

namespace {

constexpr long cnNoFinger = -15;

/// The lowest of the three bits of each status LED in the scanner's word.
constexpr unsigned int caLedBits[] = {0, 9, 12, 15, 18, 21, 36, 33, 30, 27, 24, 3};

/// The engine's modes in the order of the public ones.
constexpr ClVTLiveCaptureBase::ECaptureMode caModes[] = {
    ClVTLiveCaptureBase::eCaptureModeAuto,     ClVTLiveCaptureBase::eCaptureModeRoll,
    ClVTLiveCaptureBase::eCaptureModeAutoLive, ClVTLiveCaptureBase::eCaptureModeOff,
    ClVTLiveCaptureBase::eCaptureModeFull,     ClVTLiveCaptureBase::eCaptureModePreview,
    ClVTLiveCaptureBase::eCaptureModeSignature};

template <typename... TPointers>
void CheckPointers(TPointers... aPointers) {
  if ((!aPointers || ...)) KLV_RAISE_NUMBER(-701);
}

unsigned int DotsPerInch(unsigned int nPels) {
  return nPels * 254 / 10000;
}

}  // namespace

ClVT40LiveCapture& ClVT40Handle::Engine() const {
  if (m_pLiveCapture == nullptr) KLV_RAISE(ClException, "Component not initialized yet.", -2);
  return *m_pLiveCapture;
}

const ClCalibrateGeometricData& ClVT40Handle::FullData() const {
  // The engine is checked first: without one there are no calibration data either.
  const bool bSmallImages = Engine().UseSmallImages();
  return m_pSetupCalibrationData->GetGeometricDataFull(bSmallImages);
}

const ClCalibrateGeometricData& ClVT40Handle::PreviewData() const {
  const bool bSmallImages = Engine().UseSmallImages();
  return m_pSetupCalibrationData->GetGeometricDataPreview(bSmallImages);
}

void ClVT40Handle::GetScannerCondition(unsigned int* pnCondition, unsigned int* pnReserved) {
  CheckPointers(pnCondition, pnReserved);
  *pnCondition = static_cast<unsigned int>(Engine().GetScannerCondition());
  *pnReserved = 0;
}

void ClVT40Handle::GetImageSize(unsigned int* pnWidth, unsigned int* pnHeight) {
  CheckPointers(pnWidth, pnHeight);
  *pnWidth = FullData().m_nTargetWidth;
  *pnHeight = FullData().m_nTargetHeight;
}

void ClVT40Handle::GetPreviewImageSize(unsigned int* pnWidth, unsigned int* pnHeight) {
  CheckPointers(pnWidth, pnHeight);
  *pnWidth = PreviewData().m_nTargetWidth;
  *pnHeight = PreviewData().m_nTargetHeight;
}

void ClVT40Handle::GetRollImageSize(unsigned int* pnWidth, unsigned int* pnHeight) {
  CheckPointers(pnWidth, pnHeight);
  *pnWidth = FullData().m_nTargetWidth / 2;
  *pnHeight = FullData().m_nTargetHeight / 2;
}

void ClVT40Handle::GetSignatureImageSize(unsigned int* pnWidth, unsigned int* pnHeight) {
  GetImageSize(pnWidth, pnHeight);
  if (Engine().GetSignatureSensorMode() != 0) *pnHeight /= 2;
}

void ClVT40Handle::GetSignaturePreviewImageSize(unsigned int* pnWidth, unsigned int* pnHeight) {
  GetPreviewImageSize(pnWidth, pnHeight);
  if (Engine().GetSignatureSensorMode() != 0) *pnHeight /= 2;
}

void ClVT40Handle::GetImageDPI(unsigned int* pnDpiX, unsigned int* pnDpiY) {
  CheckPointers(pnDpiX, pnDpiY);
  *pnDpiX = DotsPerInch(FullData().m_nTargetPelsX);
  *pnDpiY = DotsPerInch(FullData().m_nTargetPelsY);
}

void ClVT40Handle::GetPreviewImageDPI(unsigned int* pnDpiX, unsigned int* pnDpiY) {
  CheckPointers(pnDpiX, pnDpiY);
  *pnDpiX = DotsPerInch(PreviewData().m_nTargetPelsX);
  *pnDpiY = DotsPerInch(PreviewData().m_nTargetPelsY);
}

void ClVT40Handle::GetRollImageDPI(unsigned int* pnDpiX, unsigned int* pnDpiY) {
  GetImageDPI(pnDpiX, pnDpiY);
}

void ClVT40Handle::GetSerialNumber(char* pszSerial, unsigned int nSize) {
  CheckPointers(pszSerial);
  Engine();
  KLV_CHECK(m_oLibrary.VTScanAPIGetHandleSerial(m_hDevice, pszSerial, &nSize));
}

void ClVT40Handle::GetVersionString(char* pszVersion, unsigned int* pnSize) {
  CheckPointers(pnSize);
  Engine();
  constexpr char cszSeparator[] = " SAPI:";
  char szText[256] = "";
  constexpr unsigned int cnLast = sizeof(szText) - 1;
  unsigned int nSize = sizeof(szText);
  KLV_CHECK(m_oLibrary.VTScanAPIGetVersion(m_hDevice, szText, &nSize));
  szText[cnLast] = '\0';
  std::strncat(szText, cszSeparator, cnLast - std::strlen(szText));
  const unsigned int nLength = static_cast<unsigned int>(std::strlen(szText));
  unsigned int nRest = cnLast + 1 - nLength;
  m_oLibrary.VTScanAPIGetPropertyA(m_hDevice, "version", szText + nLength, &nRest);
  szText[cnLast] = '\0';

  const unsigned int nNeeded = static_cast<unsigned int>(std::strlen(szText)) + 1;
  const bool bRoom = nNeeded <= *pnSize;
  *pnSize = nNeeded;
  if (!bRoom) KLV_RAISE_NUMBER(-702);
  CheckPointers(pszVersion);
  std::memcpy(pszVersion, szText, nNeeded);
}

ClVT40Handle::ClTurn::ClTurn(ClVT40Handle& oHandle) : m_oMutex(oHandle.m_oMutex) {
  ClVT40LiveCapture* const pEngine = oHandle.m_pLiveCapture.get();
  if (pEngine == nullptr) {
    m_oMutex.lock();
    return;
  }
  const ClFrameWaits::ClHeldBack oHeldBack(pEngine->Waits());
  m_oMutex.lock([pEngine] { pEngine->EndStuckWait(); });
}

ClVT40Handle::ClTurn::~ClTurn() {
  m_oMutex.unlock();
}

void ClVT40Handle::SetCaptureMode(int nMode) {
  const ClTurn oTurn(*this);
  if (static_cast<unsigned int>(nMode) >= std::size(caModes)) {
    KLV_RAISE(ClException, "Capture mode not supported.", -103);
  }
  Engine().SetCaptureMode(caModes[nMode]);
}

void ClVT40Handle::GetCaptureMode(int* pnMode) {
  CheckPointers(pnMode);
  switch (Engine().GetCaptureMode()) {
    case ClVTLiveCaptureBase::eCaptureModeAutoLive:
      *pnMode = 2;
      break;
    case ClVTLiveCaptureBase::eCaptureModeAuto:
      *pnMode = 0;
      break;
    case ClVTLiveCaptureBase::eCaptureModeOff:
      *pnMode = 3;
      break;
    default:
      KLV_RAISE(ClException, "Unexpected capture mode.", -101);
  }
}

bool ClVT40Handle::DeliverImage(EngineCall pfnImage, SizeCall pfnSize, void* pImage, double* pdScore,
                                unsigned char* pbDone, long* pnResult) {
  CheckPointers(pImage, pdScore, pbDone, pnResult);
  ClVTLiveCaptureBase::ECaptureState eState = ClVTLiveCaptureBase::eCaptureStateNone;
  double dScore = 0.0;
  (Engine().*pfnImage)(m_oDelivered, eState, dScore);
  // The caller's buffer has the size that the size functions report, and not a byte more.
  unsigned int nWidth = 0;
  unsigned int nHeight = 0;
  (this->*pfnSize)(&nWidth, &nHeight);
  const size_t nRowBytes = m_oDelivered.RowBytes();
  const size_t nRows = static_cast<size_t>(m_oDelivered.Height());
  if (nRowBytes > nWidth || nRows > nHeight) KLV_RAISE(ClException, "Invalid capture mode.", -50);
  if (m_oDelivered.Data() != nullptr) std::memcpy(pImage, m_oDelivered.Data(), nRows * nRowBytes);
  const bool bDone = eState == ClVTLiveCaptureBase::eCaptureStateDone;
  *pdScore = dScore;
  *pbDone = bDone;
  *pnResult = bDone ? 0 : cnNoFinger;
  return bDone;
}

/// The pictures of this mode may have half the height of the others. The mode stays while m_oMutex is held.
bool ClVT40Handle::IsSignaturePad() const {
  return Engine().GetCaptureMode() == ClVTLiveCaptureBase::eCaptureModeSignature;
}

void ClVT40Handle::GetImage(void* pImage, double* pdScore, unsigned char* pbDone, long* pnResult) {
  Lock oLock(m_oMutex);
  DeliverImage(&ClVTLiveCaptureBase::GetImage,
               IsSignaturePad() ? &ClVT40Handle::GetSignatureImageSize : &ClVT40Handle::GetImageSize, pImage,
               pdScore, pbDone, pnResult);
}

void ClVT40Handle::GetPreviewImage(void* pImage, double* pdScore, unsigned char* pbDone, long* pnResult) {
  Lock oLock(m_oMutex);
  DeliverImage(
      &ClVTLiveCaptureBase::GetPreviewImage,
      IsSignaturePad() ? &ClVT40Handle::GetSignaturePreviewImageSize : &ClVT40Handle::GetPreviewImageSize,
      pImage, pdScore, pbDone, pnResult);
}

void ClVT40Handle::GetRollImage(void* pImage, double* pdScore, unsigned char* pbDone, long* pnResult) {
  Lock oLock(m_oMutex);
  if (DeliverImage(&ClVTLiveCaptureBase::GetRollImage, &ClVT40Handle::GetRollImageSize, pImage, pdScore,
                   pbDone, pnResult)) {
    // A finished roll is reported once.
    Engine().TakeDone();
    *pnResult = Engine().GetReturnCode();
  }
}

void ClVT40Handle::Beep(unsigned int nArg1, unsigned int nArg2) {
  Engine().Beep(nArg1, nArg2);
}

void ClVT40Handle::SetDisplayText(char* pData, unsigned int nSize) {
  Engine().SetDisplayData(0, pData, nSize);
}

void ClVT40Handle::TriggerScanner() {
  Engine().Capture();
}

void ClVT40Handle::SetLED(unsigned char nIndex, unsigned char nState) {
  const ClTurn oTurn(*this);
  if (nIndex >= cnLeds) KLV_RAISE(ClException, "Current scanner only supports 11 status LEDs", -35);
  if ((nState & 0xF8) != 0) KLV_RAISE(ClException, "Invalid state parameter", -44);
  Engine();
  LedLock oLedLock(m_oLedMutex);
  m_aStatusLed[nIndex] = nState;
  SendStatusLeds();
}

void ClVT40Handle::OnSetStatusLed(const unsigned int& nValue) {
  const unsigned char nState = nValue & 7;
  if (nValue <= 0xFFFE) {
    SetLED(static_cast<unsigned char>(nValue >> 8 & 0xFF), nState);
    return;
  }
  Engine();
  LedLock oLedLock(m_oLedMutex);
  for (unsigned int n = 0; n < cnLeds; ++n) {
    if ((nValue >> (16 + n) & 1) != 0) m_aStatusLed[n] = nState;
  }
  SendStatusLeds();
}

void ClVT40Handle::SendStatusLeds() {
  unsigned long long nWord = 0;
  for (unsigned int n = 0; n < cnLeds; ++n)
    nWord |= static_cast<unsigned long long>(m_aStatusLed[n]) << caLedBits[n];
  m_oLibrary.VTScanAPISetStatusLED(m_hDevice, nWord);
}

void ClVT40Handle::OnQueryPropertys(ClParameterContainer& oContainer) {
  using UnsignedProperty = TpParameterNumeric<unsigned int, ClVT40Handle>;
  using DoubleProperty = TpParameterNumeric<double, ClVT40Handle>;
  ClVT40LiveCapture& oEngine = Engine();
  oContainer.AddNumeric("nAutoCaptureBeep", oEngine.AutoCaptureBeep());
  oContainer.AddNumeric("nRolledPostProcess", oEngine.RolledPostProcess());
  oContainer.AddParam<DoubleProperty>("dSignatureFilterSigma")
      ->BindObject(this, &ClVT40Handle::GetSignatureFilterSigma, &ClVT40Handle::SetSignatureFilterSigma);
  oContainer.AddParam<DoubleProperty>("dSignatureDetectTime")
      ->BindObject(this, &ClVT40Handle::GetSignatureDetectTime, &ClVT40Handle::SetSignatureDetectTime);
  oContainer.AddParam<UnsignedProperty>("nSignatureSensorMode")
      ->BindObject(this, &ClVT40Handle::GetSignatureSensorMode, &ClVT40Handle::SetSignatureSensorMode);
  auto* pResetImage = oContainer.AddParam<UnsignedProperty>("nResetImage");
  pResetImage->BindObject(this, &ClVT40Handle::GetResetImage, &ClVT40Handle::SetResetImage);
  pResetImage->SetAccess(ClParameter::cnWritable);
  auto* pStatusLed = oContainer.AddParam<UnsignedProperty>("STATUS_LED");
  pStatusLed->BindObject(this, &ClVT40Handle::OnGetStatusLed, &ClVT40Handle::OnSetStatusLed);
  pStatusLed->SetAccess(ClParameter::cnWritable);
}

double ClVT40Handle::GetSignatureFilterSigma() const {
  return Engine().GetSignatureFilterSigma();
}
void ClVT40Handle::SetSignatureFilterSigma(const double& dSigma) {
  Engine().SetSignatureFilterSigma(dSigma);
}
double ClVT40Handle::GetSignatureDetectTime() const {
  return Engine().GetSignatureDetectTime();
}
void ClVT40Handle::SetSignatureDetectTime(const double& dTime) {
  Engine().SetSignatureDetectTime(dTime);
}
unsigned int ClVT40Handle::GetSignatureSensorMode() const {
  return Engine().GetSignatureSensorMode();
}
void ClVT40Handle::SetSignatureSensorMode(const unsigned int& nMode) {
  Engine().SetSignatureSensorMode(nMode);
}
void ClVT40Handle::SetResetImage(const unsigned int&) {
  Engine().ResetImage();
}
