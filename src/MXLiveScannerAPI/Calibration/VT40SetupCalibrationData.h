// The calibration state of a ten-finger scanner.
#pragma once

#include <memory>

#include "MXCalibrate/CalibrateBrightnessData.h"
#include "MXCalibrate/CalibrateGainData.h"
#include "MXCalibrate/InterpolationBicubicQuantized.h"
#include "MXCalibrate/TpIpCalibrateGeometric.h"
#include "MXCalibrate/TpIpCalibrateGeometricSubsample.h"
#include "MXLiveScannerAPI/VTSetupCalibrationDataBase.h"
#include "MXLiveScannerTools/IpAdjustBrightness.h"
#include "MXLiveScannerTools/IpVT40R4Mask.h"
#include "MXLiveScannerTools/TpIpSubsampleFilter.h"
#include "MXTools/FpImage.h"

/// Turns the three calibration blocks of a scanner into maps, brightness references and gains, and its frames
/// into rectified, evenly lit pictures.
///
/// Setup runs on the calling thread and one of its own: maps and brightness references are made side by side.
/// They share nothing that is written, since both are computed from the geometric data sets. The thread is
/// joined before Setup returns or raises.
///
/// Domain     frames are eUint8, one plane, aligned rows; each call knows its kinds of frame by their size.
/// Units      target pictures have 500 dpi, previews 250 dpi.
/// Ownership  keeps copies of the blocks; temporaries are kept from frame to frame, so that a frame of the
///            last one's kind allocates nothing.
/// Threads    Setup and Update calls are thread-bound. After them there may be a thread for preview calls,
///            one for full and roll calls together, and one for each brightness call.
/// Errors     -39 for data that is wrong, -201 for blocks cut short, -1 for brightness before geometry, -103
///            for revisions and frame sizes that are not supported, -2 for a warp whose map could not be
///            made.
class ClVT40SetupCalibrationData : public ClVTSetupCalibrationDataBase {
 public:
  ClVT40SetupCalibrationData(const char* szSerial, bool bUsbPowered);

  void UpdateGeometricData(const void* pData, unsigned int nSize) override;
  /// Makes the maps of frames with merged columns. Those of frames with all columns, which cost eight times
  /// as much, are made by the first call that needs them. When a map cannot be made, each call that needs it
  /// fails.
  void PrecomputeGeometricData() override;
  void StoreData(const char* szDirectory) override;
  unsigned int GetExposure() override;
  void CalibrateFull(ClImage& oIn, ClImage& oOut) override;
  void CalibratePreview(ClImage& oIn, ClImage& oOut) override;
  const ClCalibrateGeometricData& GetGeometricDataFull(bool bSmallImages) override;
  const ClCalibrateGeometricData& GetGeometricDataPreview(bool bSmallImages) override;

  /// Drops the kinds of data that are named.
  virtual void Reset(bool bGeometric, bool bBrightness, bool bGain);
  /// Takes the blocks that are given; NULL leaves a kind as it is.
  virtual void Setup(const void* pGeo, unsigned int nGeo, const void* pBrightness, unsigned int nBrightness,
                     const void* pGain, unsigned int nGain);
  /// A frame of the platen's middle at the scale of a full one, rectified to 800 by 800.
  virtual void CalibrateRoll(ClImage& oIn, ClImage& oOut);

  /// The warp and the brightness reference of a preview or a full frame whose source is warped as it is; null
  /// where the source is reduced before. As the calls that take whole frames, for the same threads.
  struct StDirect {
    const ClIpCalibrateGeometricBase* pWarp;
    const ClImage* pReference;
  };
  StDirect DirectPreview(const ClImage& oIn) const;
  StDirect DirectFull(const ClImage& oIn) const;

  void UpdateBrightnessData(const void* pData, unsigned int nSize);
  void UpdateGainData(const void* pData, unsigned int nSize);
  /// The data in use, in the legacy form of its blocks.
  void GetGainData(TpArrayStatic<char>& aOut);
  void GetBrightnessData(TpArrayStatic<char>& aOut);
  bool IsUsbPowered() const { return m_bUsbPowered; }

  /// These divide a picture by its brightness reference; nTarget is the grey that a white area gets.
  void AdjustBrightnessPreview(ClImage& oIn, ClImage& oOut, unsigned char nTarget);
  void AdjustBrightnessFull(ClImage& oIn, ClImage& oOut, unsigned char nTarget);
  void AdjustBrightnessRoll(ClImage& oIn, ClImage& oOut, unsigned char nTarget);
  void AdjustBrightnessMiniRAW(ClImage& oIn, ClImage& oOut, unsigned char nTarget);
  void AdjustBrightnessSignature(ClImage& oIn, ClImage& oOut, unsigned char nTarget);

 private:
  using Points = ClCalibrateGeometricData::Points;
  /// What full frames of all columns are brought to before they are warped.
  static constexpr int cnWorkWidth = 2560;
  static constexpr int cnWorkHeight = 2720;

  /// Makes a map unless it is made, or was tried and failed. The reason of a failure is printed: a map that
  /// can't be made must not prevent the others.
  static void MakeMap(ClIpCalibrateGeometricBase& oWarp) noexcept;
  static void Warp(ClIpCalibrateGeometricBase& oWarp, const ClImage& oIn, ClImage& oOut);
  void FillTables();
  void CheckPoints(const ClCalibrateGeometricData& oData) const;
  static void RepairPoints(Points& aPoints);
  void DeriveDataSets();
  void DrawReference(const double* pValues, const Points& aPoints, uint32_t nWidth, uint32_t nHeight,
                     ClImage& oOut);
  void WarpRoll(ClIpCalibrateGeometricBase& oWarp, const ClImage& oStrip,
                const ClCalibrateGeometricData& oData, ClImage& oFrame, ClImage& oOut);

  bool m_bUsbPowered;
  ClCalibrateGeometricData m_GeoFullSmall;
  TpIpCalibrateGeometricSubsample<ClInterpolationBicubicQuantized<1, 5, 600, 375, 750>> m_oFullWarpSmall;
  ClCalibrateGeometricData m_GeoPreviewSmall;
  TpIpCalibrateGeometricSubsample<ClInterpolationBicubicQuantized<1, 5, 450, 398, 750>> m_oPreviewWarpSmall;
  ClCalibrateGeometricData m_GeoQuarterSmall;
  ClCalibrateGeometricData m_GeoFullWork;
  TpIpCalibrateGeometricSubsample<ClInterpolationBicubicQuantized<1, 5, 800, 500, 1000>> m_oFullWarp;
  TpIpCalibrateGeometric<ClInterpolationBicubicQuantized<1, 5, 600, 530, 1000>> m_oPreviewWarp;
  std::unique_ptr<ClIpVT40R4Mask> m_pMask[2];
  ClCalibrateBrightnessData m_oBrightness;
  ClCalibrateGainData m_oGain;
  ClIpAdjustBrightness m_oAdjustFull;
  ClIpAdjustBrightness m_oAdjustPreview;
  ClIpAdjustBrightness m_oAdjustSignature;
  ClIpAdjustBrightness m_oAdjustMiniRAW;
  ClIpAdjustBrightness m_oAdjustRoll;
  ClImage m_oRefPreview;
  ClImage m_oRefSignature;
  ClImage m_oRefSignatureHalf;
  ClImage m_oRefFull;
  ClImage m_oRefRoll;
  ClImage m_oRefMiniRAW;
  ClImage m_oRefMiniRAWSmall;
  TpArrayStatic<char> m_aBrightnessRaw;
  TpArrayStatic<char> m_aGainRaw;

  // Scratch of the full and roll calls.
  ClIpSubsampleFilter<ClFilterLanczos2> m_oFullFilter;
  ClIpSubsampleFilter<ClFilterLanczos2> m_oRollFilter;
  ClImage m_oFullReduced;
  ClImage m_oRollReduced;
  ClImage m_oRollFrame;
  ClImage m_oRollFrameSmall;
};
