// How an opened handle becomes a working scanner, and how that ends.
#include "KelvarinLiveScannerVT40/VT40Handle.h"

#include <algorithm>
#include <boost/algorithm/string.hpp>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "MXTools/Failure.h"
#include "MXTools/HelperThread.h"

namespace {

constexpr unsigned int cnVersionRoom = 256;
constexpr unsigned int cnFileRoom = 8192;
constexpr long cnSizeTooSmall = -702;
/// The first firmware that reports its power source; versions are compared as texts.
constexpr char cszPowerFirmware[] = "2.07";

template <typename TFunction>
void CheckPresent(TFunction pfn) {
  if (pfn == nullptr) KLV_RAISE(ClException, "VTScanAPI version incompatible", -103);
}

/// A text of at most nRoom bytes, which its own zero or the reported size ends.
std::string TextOf(const char* szText, unsigned int nSize, unsigned int nRoom) {
  const char* pEnd = szText + std::min(nSize, nRoom);
  return {szText, std::find(szText, pEnd, '\0')};
}

/// An empty block has no memory, and must not be taken for a missing one: the set-up has to refuse it as too
/// short.
const char* GivenBlock(const TpArrayStatic<char>& aBlock) {
  return aBlock.Entries() > 0 ? aBlock.Data() : "";
}

}  // namespace

ClVT40Handle::ClVT40Handle() : m_oScanAPI(nullptr, nullptr) {}

ClVT40Handle::~ClVT40Handle() {
  try {
    if (m_hDevice != nullptr) UnassignDevice();
  } catch (...) {
    // There is no caller to report this to.
  }
}

void ClVT40Handle::AssignDevice(unsigned int nDevice) {
  if (m_hDevice != nullptr) KLV_RAISE(ClException, "Device already assigned.", -50);
  m_oLibrary.OpenLibrary(ClLiveScannerVT40::m_szSearchPath, ClKelvarinVTScanAPIWrapper::m_ssLibName);
  KLV_CHECK(m_oLibrary.VTScanAPICreateHandle(nDevice, &m_hDevice));
  CheckScanLibraryVersion();
  CheckPresent(m_oLibrary.VTScanAPIEnableCapture);
  m_oLibrary.VTScanAPIEnableCapture(m_hDevice, 0);
  ReadCalibrationFile("GEOCAL", m_aGeometricData, "Error reading geometric calibration data.");
  ReadCalibrationFile("BRGHTCAL", m_aBrightnessData, "Error reading brightness calibration data.");
  try {
    ReadCalibrationFile("GAINSET", m_aGainData, "Error reading gain data.");
  } catch (const ClExBadAlloc&) {
    throw;
  } catch (const ClException&) {
    // A scanner without gain data works with the gains of its revision.
  }
  const bool bUSBPowered = ReadUSBPowered();
  TpArrayStatic<char> aSerial;
  ReadSerial(aSerial);
  m_pSetupCalibrationData = std::make_unique<ClVT40SetupCalibrationData>(aSerial.Data(), bUSBPowered);
  m_pSetupCalibrationData->UpdateGainData(m_aGainData.Data(), m_aGainData.Entries());
  {
    ClHelperThread oCalibration([this] { SetupCalibrationData(); });
    PutSensorInSetupState();
    oCalibration.Join();
  }
  if (m_nSetupResult != 0) {
    KLV_RAISE(ClException, "Error in parallel SetupCalibrationData().", m_nSetupResult);
  }
  m_oScanAPI.SetDllWrapper(&m_oLibrary, m_hDevice);
  if (m_pLiveCapture == nullptr) m_pLiveCapture = std::make_unique<ClVT40LiveCapture>();
  m_pLiveCapture->SetScanner(&m_oScanAPI);
  m_pLiveCapture->SetupCalibrationData(m_pSetupCalibrationData.get());
  LedLock oLedLock(m_oLedMutex);
  std::fill_n(m_aStatusLed, cnLeds, static_cast<unsigned char>(0));
  m_aStatusLed[0] = 2;
  SendStatusLeds();
}

void ClVT40Handle::CheckScanLibraryVersion() {
  char szText[cnVersionRoom] = "";
  unsigned int nSize = cnVersionRoom;
  KLV_CHECK(m_oLibrary.VTScanAPIGetPropertyA(m_hDevice, "version", szText, &nSize));
  std::vector<std::string> aParts;
  const std::string oText = TextOf(szText, cnVersionRoom, cnVersionRoom);
  boost::split(aParts, oText, boost::is_any_of("."));
  constexpr char cszInvalid[] = "invalid version of VTScanAPI";
  if (aParts.size() < 2) KLV_RAISE(ClException, cszInvalid, -103);
  const unsigned char nMajor = static_cast<unsigned char>(std::atoi(aParts[0].c_str()));
  const unsigned char nMinor = static_cast<unsigned char>(std::atoi(aParts[1].c_str()));
  if (nMajor == 0 || (nMajor == 1 && nMinor <= 11)) KLV_RAISE(ClException, cszInvalid, -103);
}

void ClVT40Handle::ReadCalibrationFile(const char* szName, TpArrayStatic<char>& aData,
                                       const char* szFailure) {
  std::vector<char> aBuffer(cnFileRoom);
  unsigned int nSize = cnFileRoom;
  const long nResult = m_oLibrary.VTScanAPIReadEPROMFile(m_hDevice, szName, aBuffer.data(), &nSize);
  if (nResult != 0) KLV_RAISE(ClException, szFailure, nResult);
  // More bytes than the buffer holds cannot have been written.
  nSize = std::min(nSize, cnFileRoom);
  aData.New(nSize);
  std::copy_n(aBuffer.data(), nSize, aData.Data());
}

bool ClVT40Handle::ReadUSBPowered() {
  char szText[cnVersionRoom] = "";
  unsigned int nSize = cnVersionRoom;
  KLV_CHECK(m_oLibrary.VTScanAPIGetVersion(m_hDevice, szText, &nSize));
  const std::string oText = TextOf(szText, nSize, cnVersionRoom);
  const size_t nMarker = oText.find("FPGA:");
  if (nMarker == std::string::npos) return false;
  char szFirmware[cnVersionRoom] = "";
  if (std::sscanf(oText.c_str() + nMarker + std::strlen("FPGA:"), "%255s", szFirmware) != 1) return false;
  if (std::strcmp(szFirmware, cszPowerFirmware) < 0) return false;
  CheckPresent(m_oLibrary.VTScanAPIGetPropertyLongA);
  long nPowered = 0;
  KLV_CHECK(m_oLibrary.VTScanAPIGetPropertyLongA(m_hDevice, "USBPowered", &nPowered));
  return nPowered == 1;
}

void ClVT40Handle::ReadSerial(TpArrayStatic<char>& aSerial) {
  constexpr char cszFailure[] = "Error getting serial number from scanner handle.";
  unsigned int nSize = 0;
  long nResult = m_oLibrary.VTScanAPIGetHandleSerial(m_hDevice, nullptr, &nSize);
  if (nResult != cnSizeTooSmall) KLV_RAISE(ClException, cszFailure, nResult != 0 ? nResult : -101);
  if (nSize > cnFileRoom) KLV_RAISE(ClException, cszFailure, -101);
  // The block has one byte more, a zero, so that whatever comes is a text.
  aSerial.New(nSize + 1);
  nResult = m_oLibrary.VTScanAPIGetHandleSerial(m_hDevice, aSerial.Data(), &nSize);
  if (nResult != 0) KLV_RAISE(ClException, cszFailure, nResult);
}

void ClVT40Handle::PutSensorInSetupState() {
  unsigned char aLed[] = {0, 1};
  unsigned char aFlags[] = {0, 0};
  unsigned int nWidth = 0;
  unsigned int nHeight = 0;
  m_oLibrary.VTScanAPISetVSYNC(m_hDevice,
                               static_cast<unsigned short>(m_pSetupCalibrationData->GetExposure()));
  m_oLibrary.VTScanAPISetResolution(m_hDevice,
                                    static_cast<EVTScanMode_t>(ClMXVTScanAPIHandleBase::eScanModeFull));
  m_oLibrary.VTScanAPISetCaptureSequence(m_hDevice, 2, aLed, aFlags);
  m_oLibrary.VTScanAPIGetResolution(m_hDevice, &nWidth, &nHeight);
}

void ClVT40Handle::SetupCalibrationData() noexcept {
  try {
    m_pSetupCalibrationData->Setup(GivenBlock(m_aGeometricData), m_aGeometricData.Entries(),
                                   GivenBlock(m_aBrightnessData), m_aBrightnessData.Entries(), nullptr, 0);
    m_nSetupResult = 0;
  } catch (...) {
    m_nSetupResult = Klv::FailureNumber();
  }
}

void ClVT40Handle::UnassignDevice() {
  const ClTurn oTurn(*this);
  m_pLiveCapture.reset();
  m_pSetupCalibrationData.reset();
  // The property tree is bound to variables of the engine, which is gone now.
  ResetProperties();
  if (m_hDevice == nullptr) return;
  void* hDevice = std::exchange(m_hDevice, nullptr);
  const long nResult = m_oLibrary.VTScanAPIDestroyHandle(&hDevice);
  m_oScanAPI.SetDllWrapper(nullptr, nullptr);
  m_oLibrary.CloseLibrary();
  KLV_CHECK(nResult);
}
