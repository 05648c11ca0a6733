// Serial numbers, stored blocks and the choice of the model.
#include "MXLiveScannerAPI/VTSetupCalibrationDataBase.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>

#include "MXLiveScannerAPI/VT40SetupCalibrationData.h"
#include "MXLiveScannerAPI/VT4SetupCalibrationData.h"
#include "MXTools/Exception.h"
#include "MXTools/File.h"
#include "MXTools/MemStream.h"
#include "MXTools/NewFile.h"

namespace {

int UpperCase(char nLetter) {
  return std::toupper(static_cast<unsigned char>(nLetter));
}

}  // namespace

ClVTSetupCalibrationDataBase* ClVTSetupCalibrationDataBase::GetSetupObject(const char* szSerial) {
  if (szSerial == nullptr) KLV_RAISE(ClException, "serial parameter contains NULL pointer", -44);
  if (std::strlen(szSerial) <= 2) KLV_RAISE(ClException, "serial number too short", -44);
  if (UpperCase(szSerial[0]) != 'V' || UpperCase(szSerial[1]) != 'T' || szSerial[2] != '4') {
    KLV_RAISE(ClException, "serial number has unknown format", -44);
  }
  if (szSerial[3] == '0') return new ClVT40SetupCalibrationData(szSerial, false);
  return new ClVT4SetupCalibrationData(szSerial);
}

unsigned int ClVTSetupCalibrationDataBase::ReadScannerRevision(const char* szLetters) {
  if (std::strlen(szLetters) < 2) KLV_RAISE(ClException, "serial number too short", -44);
  const int nFirst = UpperCase(szLetters[0]);
  const int nSecond = UpperCase(szLetters[1]);
  if (nFirst < 'A' || nFirst > 'Z' || nSecond < 'A' || nSecond > 'Z') {
    KLV_RAISE(ClException, "invalid serial", -44);
  }
  return static_cast<unsigned int>((nFirst - 'A') * 26 + (nSecond - 'A'));
}

const char* ClVTSetupCalibrationDataBase::Behind(const char* szSerial, size_t nOffset) {
  if (szSerial == nullptr) KLV_RAISE(ClException, "serial parameter contains NULL pointer", -44);
  return szSerial + std::min(std::strlen(szSerial), nOffset);
}

const ClCalibrateGeometricData& ClVTSetupCalibrationDataBase::GetGeometricDataFull(bool /*bSmallImages*/) {
  return m_GeoFull;
}

const ClCalibrateGeometricData& ClVTSetupCalibrationDataBase::GetGeometricDataPreview(bool /*bSmallImages*/) {
  return m_GeoPreview;
}

void ClVTSetupCalibrationDataBase::GetGeometricData(TpArrayStatic<char>& aOut) {
  ClMemStream oStream;
  m_GeoFull.Write(oStream);
  CopyBlock(oStream.GetData(), static_cast<unsigned int>(oStream.Size()), aOut);
}

void ClVTSetupCalibrationDataBase::StoreData(const char* szDirectory) {
  StoreBlock(szDirectory, "geometric.calibrate", m_aGeoRaw);
}

void ClVTSetupCalibrationDataBase::ResetGeo() {
  m_GeoFull.Clear();
  m_GeoPreview.Clear();
  m_GeoQuarter.Clear();
  m_aGeoRaw.New(0);
}

void ClVTSetupCalibrationDataBase::CopyBlock(const void* pData, unsigned int nSize,
                                             TpArrayStatic<char>& aBlock) {
  aBlock.New(nSize);
  if (nSize > 0) std::memcpy(aBlock.Data(), pData, nSize);
}

void ClVTSetupCalibrationDataBase::StoreBlock(const char* szDirectory, const char* szName,
                                              const TpArrayStatic<char>& aBlock) {
  if (szDirectory == nullptr) KLV_RAISE(ClException, "directory parameter contains NULL pointer", -44);
  const std::string szPath = ClFile::Normalized((std::string(szDirectory) + "/" + szName).c_str());
  ClNewFile oNewFile(szPath.c_str());
  {
    ClFile oFile(oNewFile.WrittenName(), "wb");
    if (oFile.Write(aBlock.Data(), aBlock.Entries()) != aBlock.Entries()) {
      throw ClExSystem("fwrite", __FILE__, __LINE__);
    }
    oFile.Flush();
  }
  oNewFile.Keep();
}
