// The calibration state of a single-finger scanner.
#pragma once

#include <cstdint>

#include "MXImageProcessing/IpCut.h"
#include "MXImageProcessing/IpRescale.h"
#include "MXImageProcessing/IpSubsample.h"
#include "MXLiveScannerAPI/VTSetupCalibrationDataBase.h"
#include "MXLiveScannerTools/IpAdjustBrightness.h"
#include "MXTools/FpImage.h"

class ClCalibrateSupplementalData;

/// Cuts a fixed window round the centre that the scanner stores, halves its columns and flattens the light
/// against a vertical profile. Frames need no warp.
///
/// The stored block has 12 bytes: 4 that are not read, and the centre's x and y in sensor pixels as 32 bits,
/// least significant byte first.
///
/// Domain     frames are eUint8, one plane, and hold the window of 1240 by 430 pixels.
/// Ownership  keeps a copy of the serial number; temporaries are kept from frame to frame.
/// Threads    thread-bound.
/// Errors     ClException -101 for a block of another size, -44 for serial numbers; what the image operations
///            raise or return is raised, -35 for a window that isn't inside the frame.
class ClVT4SetupCalibrationData : public ClVTSetupCalibrationDataBase {
 public:
  /// NULL stands for a scanner of revision 0 without a serial number.
  explicit ClVT4SetupCalibrationData(const char* szSerial);

  void UpdateGeometricData(const void* pData, unsigned int nSize) override;
  /// This scanner leaves no files.
  void StoreData(const char*) override {}
  unsigned int GetExposure() override { return 288; }
  /// The window as 620 by 430 pixels, evenly lit.
  void CalibrateFull(ClImage& oIn, ClImage& oOut) override;
  /// This scanner has no preview.
  void CalibratePreview(ClImage&, ClImage&) override {}

  virtual void Reset(bool bGeometric, bool bBrightness);
  /// The supplemental block is not used.
  virtual void Setup(const void* pGeo, unsigned int nGeo, const void* pSupplemental,
                     unsigned int nSupplemental);
  virtual void UpdateSupplementalData(const void*, unsigned int) {}
  /// The window as 360 by 256 pixels, with its brightness unchanged.
  virtual void CalibrateMini(ClImage& oIn, ClImage& oOut);
  virtual void CalibrateWhite(ClImage&, ClImage&, ClImage&, ClImage&) {}

  void GetSupplementalData(TpArrayStatic<char>&) {}
  void GetSupplementalData(ClCalibrateSupplementalData&) {}

 private:
  /// The window with every second column, in m_oHalved.
  void CutWindow(ClImage& oIn);

  uint32_t m_nCentreX = 0;
  uint32_t m_nCentreY = 0;
  ClImage m_oBrightness;

  ClIpCut m_oCut;
  ClIpSubsample m_oSubsample;
  ClIpRescale m_oRescale;
  ClIpAdjustBrightness m_oAdjust;
  ClImage m_oWindow;
  ClImage m_oHalved;
};
