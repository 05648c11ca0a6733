// The library as the tool uses it: initialisation and an open scanner for a scope each.
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "Picture.h"
#include "ScanLibrary.h"
#include "WaitingCall.h"

/// Whether the scanner of that serial number is in the list of the connected ones.
bool IsConnected(const std::string& sSerial);

/// Keeps the library initialised.
///
/// Errors  ClToolError eExitScanLibrary when the scan library is missing, not to be trusted or does not
///         start; eExitFile for a scene that the simulated one cannot read, with its reason.
class ClLibrary {
 public:
  ClLibrary();
  ClLibrary(const ClLibrary&) = delete;
  ClLibrary& operator=(const ClLibrary&) = delete;
  ~ClLibrary();

  /// Serial numbers of the connected scanners.
  std::vector<std::string> Serials() const;
  /// The serial number that is given, or that of the only scanner. Errors: eExitNoScanner, eExitUsage.
  std::string ChooseSerial(const std::string& sSerial) const;
  const StScanLibrary& ScanLibrary() const { return m_oScanLibrary; }
  static std::string Version();
  /// Name and version, as pictures carry them.
  static std::string Software() { return "KelvarinLiveScannerVT40 " + Version(); }

 private:
  const ClSimulator m_oSimulator;
  StScanLibrary m_oScanLibrary;
};

/// The outcome of an image call.
struct StDelivery {
  bool bDone = false;
  long nResult = 0;
  double dScore = 0.0;
};

/// An open scanner.
///
/// Errors  ClToolError with the exit code that suits the library's number, and its text. Image calls end with
///         a signal, and with eExitLost when the scanner was unplugged; see ClWaitingCall.
class ClScanner {
 public:
  /// An empty serial number takes the only scanner there is.
  ClScanner(const ClLibrary& oLibrary, const std::string& sSerial);
  ClScanner(const ClScanner&) = delete;
  ClScanner& operator=(const ClScanner&) = delete;
  ~ClScanner();

  const std::string& Serial() const { return m_sSerial; }
  std::string Versions() const;
  unsigned int Condition() const;

  void SetMode(int nMode);
  StDelivery GetImage(ClPicture& oPicture);
  StDelivery GetPreview(ClPicture& oPicture);
  StDelivery GetRoll(ClPicture& oPicture);
  StDelivery GetSignature(ClPicture& oPicture);
  StDelivery GetSignaturePreview(ClPicture& oPicture);

  void SetLed(unsigned int nIndex, unsigned int nState);
  void Beep(unsigned int nArg1, unsigned int nArg2);
  void Display(std::string sText);
  std::string GetProperty(const std::string& sName) const;
  void SetProperty(const std::string& sName, const std::string& sValue);

  /// Size and resolution of the pictures that the image calls give, without pixels.
  ClPicture ImageForm() const;
  ClPicture PreviewForm() const;
  ClPicture RollForm() const;
  ClPicture SignatureForm() const;

  /// Whether an image call was given up and has not returned; the scanner is not closed then when the object
  /// ends.
  bool IsStuck() const { return m_pWaiting->IsStuck(); }

 private:
  using ImageFunction = long (*)(void*, void*, double*, unsigned char*, long*);
  StDelivery Deliver(ImageFunction pfnImage, ClPicture oForm, ClPicture& oPicture, const std::string& sWhat);

  std::string m_sSerial;
  void* m_hScanner = nullptr;
  std::unique_ptr<ClWaitingCall> m_pWaiting;
};
