// The object that an application's scanner handle stands for.
#pragma once

#include <boost/thread/mutex.hpp>
#include <memory>

#include "KelvarinLiveScannerVT40/LiveScannerVT40.h"
#include "MXLibraryLoaders/KelvarinVTScanAPIWrapper.h"
#include "MXLiveScannerAPI/VT40LiveCapture.h"
#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXTools/SDKHandleBase.h"
#include "MXTools/TicketMutex.h"
#include "MXTools/TpArrayStatic.h"
#include "MXVTScanAPI/MXVTScanAPIWrapper.h"

/// An opened scanner: its device, calibration state and capture engine.
///
/// Unassigned after construction and after UnassignDevice; assigned in between. Operations of an unassigned
/// handle raise -2.
///
/// Ownership  owns device handle, calibration state and engine, and its own reference on the scan library, so
///            that no worker calls into unloaded code whatever the application does.
/// Threads    thread-safe but for AssignDevice, UnassignDevice and destruction. m_oMutex is held for the
///            whole of the image calls, SetCaptureMode and SetLED; m_oLedMutex lies below it.
/// Errors     a scan library's number is passed on unchanged.
class ClVT40Handle : public TSDKHandleBase<ClVT40Handle, ClLiveScannerVT40,
                                           TSDKHandleBaseBase<ClVT40Handle, ClLiveScannerVT40>> {
 public:
  static constexpr char m_szSignature[8] = "LS_VT40";
  using SafeHandle = TpSafeHandle<ClVT40Handle, m_szSignature, m_szSignature>;

  ClVT40Handle();
  ~ClVT40Handle() override;

  /// nDevice is an identifier from VTScanAPIQueryDevices. After a failure the handle is to be destroyed.
  void AssignDevice(unsigned int nDevice);
  /// Gives up engine, calibration state and device, in that order; the device handle is gone whatever the
  /// scan library answers.
  void UnassignDevice();

  void GetScannerCondition(unsigned int* pnCondition, unsigned int* pnReserved);
  void GetImageSize(unsigned int* pnWidth, unsigned int* pnHeight);
  void GetPreviewImageSize(unsigned int* pnWidth, unsigned int* pnHeight);
  void GetRollImageSize(unsigned int* pnWidth, unsigned int* pnHeight);
  void GetSignatureImageSize(unsigned int* pnWidth, unsigned int* pnHeight);
  void GetSignaturePreviewImageSize(unsigned int* pnWidth, unsigned int* pnHeight);
  void GetImageDPI(unsigned int* pnDpiX, unsigned int* pnDpiY);
  void GetPreviewImageDPI(unsigned int* pnDpiX, unsigned int* pnDpiY);
  void GetRollImageDPI(unsigned int* pnDpiX, unsigned int* pnDpiY);
  void GetSerialNumber(char* pszSerial, unsigned int nSize);
  void GetVersionString(char* pszVersion, unsigned int* pnSize);

  void SetCaptureMode(int nMode);
  void GetCaptureMode(int* pnMode);
  void GetImage(void* pImage, double* pdScore, unsigned char* pbDone, long* pnResult);
  void GetPreviewImage(void* pImage, double* pdScore, unsigned char* pbDone, long* pnResult);
  void GetRollImage(void* pImage, double* pdScore, unsigned char* pbDone, long* pnResult);

  void Beep(unsigned int nArg1, unsigned int nArg2);
  void SetLED(unsigned char nIndex, unsigned char nState);
  void SetDisplayText(char* pData, unsigned int nSize);
  void TriggerScanner();

  void OnQueryPropertys(ClParameterContainer& oContainer) override;

 private:
  using Lock = TpLock<ClTicketMutex>;
  using LedLock = boost::unique_lock<boost::mutex>;
  /// m_oMutex for a call that must not wait long for one that holds it: a frame that cannot come any more is
  /// waited for no longer.
  class ClTurn {
   public:
    explicit ClTurn(ClVT40Handle& oHandle) KLV_NOT_ANALYSED;
    ClTurn(const ClTurn&) = delete;
    ClTurn& operator=(const ClTurn&) = delete;
    ~ClTurn() KLV_NOT_ANALYSED;

   private:
    ClTicketMutex& m_oMutex;
  };
  /// Status LEDs of the scanner.
  static constexpr unsigned int cnLeds = 12;

  // Assignment
  void CheckScanLibraryVersion();
  void ReadCalibrationFile(const char* szName, TpArrayStatic<char>& aData, const char* szFailure);
  bool ReadUSBPowered();
  void ReadSerial(TpArrayStatic<char>& aSerial);
  void PutSensorInSetupState();
  void SetupCalibrationData() noexcept;

  // Operations
  ClVT40LiveCapture& Engine() const;
  const ClCalibrateGeometricData& FullData() const;
  const ClCalibrateGeometricData& PreviewData() const;
  using EngineCall = void (ClVTLiveCaptureBase::*)(ClImage&, ClVTLiveCaptureBase::ECaptureState&, double&);
  using SizeCall = void (ClVT40Handle::*)(unsigned int*, unsigned int*);
  /// What the three image calls have in common; m_oMutex is held. True when the image is finished.
  bool DeliverImage(EngineCall pfnImage, SizeCall pfnSize, void* pImage, double* pdScore,
                    unsigned char* pbDone, long* pnResult);
  bool IsSignaturePad() const;
  void SendStatusLeds();

  // Getters and setters of the properties
  double GetSignatureFilterSigma() const;
  void SetSignatureFilterSigma(const double& dSigma);
  double GetSignatureDetectTime() const;
  void SetSignatureDetectTime(const double& dTime);
  unsigned int GetSignatureSensorMode() const;
  void SetSignatureSensorMode(const unsigned int& nMode);
  unsigned int GetResetImage() const { return 0; }
  void SetResetImage(const unsigned int& nValue);
  unsigned int OnGetStatusLed() const { return 0; }
  void OnSetStatusLed(const unsigned int& nValue);

  TpArrayStatic<char> m_aGeometricData;
  TpArrayStatic<char> m_aBrightnessData;
  TpArrayStatic<char> m_aGainData;
  long m_nSetupResult = 0;  // written by the calibration thread, read after its join
  ClKelvarinVTScanAPIWrapper m_oLibrary;
  void* m_hDevice = nullptr;
  ClMXVTScanAPIWrapper m_oScanAPI;
  std::unique_ptr<ClVT40SetupCalibrationData> m_pSetupCalibrationData;
  std::unique_ptr<ClVT40LiveCapture> m_pLiveCapture;
  ClImage m_oDelivered;    // guarded by m_oMutex; kept between calls so that a delivery allocates nothing
  ClTicketMutex m_oMutex;  // a change of the mode gets in between two image calls
  boost::mutex m_oLedMutex;
  unsigned char m_aStatusLed[cnLeds] = {};  // guarded by m_oLedMutex
};
