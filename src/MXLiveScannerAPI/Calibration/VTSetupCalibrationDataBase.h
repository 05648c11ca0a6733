// The calibration state of one connected scanner, whatever its model.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXTools/TpArrayStatic.h"

class ClImage;
class ClIpLiveScannerMask;

/// Serial number, revision, geometry, gains and mask processors of a scanner, and the operations that rectify
/// its frames.
///
/// A serial number names the model in its first four characters, "VT40" for ten fingers, "VT4" and anything
/// else for one, and the revision in two letters: "VT40-AB0001", "VT41AB0001".
///
/// Ownership  keeps copies of all data; the mask processors belong to the concrete class.
/// Threads    thread-bound while it is set up; then each operation serves one thread at a time.
/// Errors     ClException -44 for serial numbers; ClExBadAlloc -102.
class ClVTSetupCalibrationDataBase {
 public:
  ClVTSetupCalibrationDataBase(const ClVTSetupCalibrationDataBase&) = delete;
  ClVTSetupCalibrationDataBase& operator=(const ClVTSetupCalibrationDataBase&) = delete;
  virtual ~ClVTSetupCalibrationDataBase() = default;

  /// Takes the stored record of point correspondences.
  virtual void UpdateGeometricData(const void* pData, unsigned int nSize) = 0;
  /// Computes the costly part of what the geometry needs.
  virtual void PrecomputeGeometricData() {}
  /// Writes the blocks as they were given into files of the directory.
  virtual void StoreData(const char* szDirectory);
  /// The geometry in use as a record of the newest version.
  virtual void GetGeometricData(TpArrayStatic<char>& aOut);
  virtual unsigned int GetExposure() = 0;
  virtual void CalibrateFull(ClImage& oIn, ClImage& oOut) = 0;
  virtual void CalibratePreview(ClImage& oIn, ClImage& oOut) = 0;
  virtual const ClCalibrateGeometricData& GetGeometricDataFull(bool bSmallImages);
  virtual const ClCalibrateGeometricData& GetGeometricDataPreview(bool bSmallImages);
  /// Three channels, the lowest byte first; 0 for an absent key, which is entered.
  virtual unsigned int GetGainLevel(unsigned char nKey) { return m_mapGainLevel[nKey]; }
  virtual unsigned int GetBrightnessAdjustment(unsigned char nKey) { return m_mapBrightnessAdjustment[nKey]; }
  virtual std::vector<unsigned char>& GetIlluminationSet(unsigned char nKey) {
    return m_mapIlluminationSet[nKey];
  }

  /// A new object of the model that the serial number names; the caller owns it.
  /// Errors: -44; -103 for a revision that is not supported.
  static ClVTSetupCalibrationDataBase* GetSetupObject(const char* szSerial);
  /// The number that two letters stand for: "AA" 0, "AB" 1, "BA" 26, in either case.
  static unsigned int ReadScannerRevision(const char* szLetters);

  /// 17 for the ten-finger scanner, 16 for the single-finger scanner.
  unsigned int GetScannerType() const { return m_nScannerType; }
  unsigned int GetScannerRevision() const { return m_nScannerRevision; }
  /// nIndex 0 or 1: two that may run at the same time.
  /// NULL for a model that has none.
  ClIpLiveScannerMask* GetMaskProcessor(unsigned int nIndex) const {
    return nIndex < m_aMask.Entries() ? m_aMask[nIndex] : nullptr;
  }
  void ResetGeo();

 protected:
  ClVTSetupCalibrationDataBase() = default;

  /// The text from nOffset on; the empty text when it is shorter than that. Errors: -44 for NULL.
  static const char* Behind(const char* szSerial, size_t nOffset);
  static void CopyBlock(const void* pData, unsigned int nSize, TpArrayStatic<char>& aBlock);
  static void StoreBlock(const char* szDirectory, const char* szName, const TpArrayStatic<char>& aBlock);

  TpArrayStatic<char> m_aSerial;
  uint32_t m_nScannerType = 0;
  uint32_t m_nScannerRevision = 0;
  ClCalibrateGeometricData m_GeoFull;
  ClCalibrateGeometricData m_GeoPreview;
  ClCalibrateGeometricData m_GeoQuarter;
  TpArrayStatic<ClIpLiveScannerMask*> m_aMask;
  TpArrayStatic<char> m_aGeoRaw;
  std::map<unsigned char, uint32_t> m_mapGainLevel;
  std::map<unsigned char, uint32_t> m_mapBrightnessAdjustment;
  std::map<unsigned char, std::vector<unsigned char>> m_mapIlluminationSet;
};
