// The stored form of point correspondences.
#include "MXCalibrate/CalibrateGeometricData.h"

#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "MXTools/CRC32.h"
#include "MXTools/Exception.h"
#include "MXTools/MemStream.h"

namespace {

[[noreturn]] void RaiseCorrupt() {
  KLV_RAISE(ClException, "Calibration Data currupt", -39);
}

constexpr int cnNewestVersion = 6;
/// 500 dpi, which the oldest records imply.
constexpr uint32_t cn500Dpi = 19685;

}  // namespace

/// Reads fields and writes each into a record of its own, so that the checksum covers exactly the bytes that
/// were read as fields.
class ClCalibrateGeometricData::ClEcho {
 public:
  explicit ClEcho(ClStream& oSource) : m_oSource(oSource) { m_oRecord.m_bFailureFlag = true; }

  template <typename T>
  void Field(T& rValue) {
    m_oSource.ReadAutoSwap(rValue);
    m_oRecord.WriteAutoSwap(rValue);
  }
  void Tag(char (&szTag)[4]) {
    m_oSource.Read(szTag, sizeof(szTag));
    m_oRecord.Write(szTag, sizeof(szTag));
  }
  int64_t Left() const { return static_cast<int64_t>(m_oSource.Size()) - m_oSource.Pos(); }
  ClMemStream& Record() { return m_oRecord; }

 private:
  ClStream& m_oSource;
  ClMemStream m_oRecord;
};

ClCalibrateGeometricData::ClCalibrateGeometricData() {
  std::memcpy(m_szType, "GEO", sizeof(m_szType));
  std::memcpy(m_szVersion, "006", sizeof(m_szVersion));
}

// Four bytes are compared each time, since a tag of the block need not end in a zero.
int ClCalibrateGeometricData::ReadTags(ClEcho& oEcho) {
  char szTag[4];
  oEcho.Tag(szTag);
  if (std::memcmp(szTag, m_szMagic, 4) != 0 && std::memcmp(szTag, "Cal", 4) != 0) KLV_RAISE_NUMBER(-40);
  oEcho.Tag(szTag);
  const bool bOld = std::memcmp(szTag, "Fut", 4) == 0;
  if (std::memcmp(szTag, m_szType, 4) != 0 && !bOld) KLV_RAISE_NUMBER(-40);
  oEcho.Tag(m_szReadVersion);
  if (bOld && std::memcmp(m_szReadVersion, "001", 4) == 0) KLV_RAISE_NUMBER(-40);
  if (bOld && std::memcmp(m_szReadVersion, "002", 4) == 0) return 0;
  char szVersion[5] = {};
  std::memcpy(szVersion, m_szReadVersion, sizeof(m_szReadVersion));
  const int nVersion = std::atoi(szVersion);
  return nVersion > cnNewestVersion ? cnNewestVersion : nVersion;
}

void ClCalibrateGeometricData::ReadStream(ClStream& oStream) {
  ClEcho oEcho(oStream);
  const int nVersion = ReadTags(oEcho);
  oEcho.Field(m_nSourceWidth);
  oEcho.Field(m_nSourceHeight);
  m_nSourcePelsX = m_nSourcePelsY = 0;
  if (nVersion >= 5) {
    oEcho.Field(m_nSourcePelsX);
    oEcho.Field(m_nSourcePelsY);
  }
  oEcho.Field(m_nTargetWidth);
  oEcho.Field(m_nTargetHeight);
  m_nTargetPelsX = m_nTargetPelsY = cn500Dpi;
  m_nPlanes = 1;
  if (nVersion >= 2) {
    oEcho.Field(m_nTargetPelsX);
    oEcho.Field(m_nTargetPelsY);
    if (nVersion > 2) oEcho.Field(m_nPlanes);
    if (nVersion > 3) oEcho.Field(m_nBackground);
  }
  CheckPlanes();
  const bool bActualFirst = nVersion <= 2;
  if (bActualFirst) ReadArray(oEcho, m_aActual[0]);
  ReadArray(oEcho, m_aTarget);
  for (uint32_t n = 0; !bActualFirst && n < m_nPlanes; ++n) ReadArray(oEcho, m_aActual[n]);
  if (nVersion < 6) return;
  const unsigned int nEnd = static_cast<unsigned int>(oEcho.Record().Pos());
  uint32_t nCrc = 0;
  oEcho.Field(nCrc);
  CheckCRC(oEcho.Record(), 0, nEnd);
}

void ClCalibrateGeometricData::ReadArray(ClEcho& oEcho, Points& aPoints) {
  uint32_t nCount = 0;
  oEcho.Field(nCount);
  // The count comes from the file, and so is checked before anything is allocated by it.
  if (static_cast<int64_t>(nCount) * 8 > oEcho.Left()) {
    KLV_RAISE(ClExStreamUnexpectedEnd, "Unexpected end of stream", -201);
  }
  aPoints.SetEntries(nCount);
  for (uint32_t n = 0; n < nCount; ++n) {
    float fX = 0;
    float fY = 0;
    oEcho.Field(fX);
    oEcho.Field(fY);
    aPoints[n] = ClVector(static_cast<double>(fX), static_cast<double>(fY));
  }
}

void ClCalibrateGeometricData::WriteStream(ClStream& oStream) const {
  CheckPlanes();
  ClMemStream oRecord;
  oRecord.m_bFailureFlag = true;
  ClCalibrateDataBase::WriteStream(oRecord);
  for (const uint32_t nField : {m_nSourceWidth, m_nSourceHeight, m_nSourcePelsX, m_nSourcePelsY,
                                m_nTargetWidth, m_nTargetHeight, m_nTargetPelsX, m_nTargetPelsY, m_nPlanes}) {
    oRecord.WriteAutoSwap(nField);
  }
  oRecord.WriteAutoSwap(m_nBackground);
  WriteArray(oRecord, m_aTarget);
  for (uint32_t n = 0; n < m_nPlanes; ++n) WriteArray(oRecord, m_aActual[n]);
  WriteCRC(oRecord, 0, static_cast<unsigned int>(oRecord.Pos()));
  oStream.Write(oRecord.GetData(), static_cast<unsigned int>(oRecord.Size()));
}

void ClCalibrateGeometricData::WriteArray(ClStream& oStream, const Points& aPoints) {
  const uint32_t nCount = aPoints.Entries();
  oStream.WriteAutoSwap(nCount);
  for (uint32_t n = 0; n < nCount; ++n) {
    oStream.WriteAutoSwap(static_cast<float>(aPoints[n].x));
    oStream.WriteAutoSwap(static_cast<float>(aPoints[n].y));
  }
}

void ClCalibrateGeometricData::WriteCRC(ClMemStream& oRecord, unsigned int nStart, unsigned int nEnd) {
  const uint32_t nCrc = ClCRC32().Get_CRC(oRecord.GetData() + nStart, nEnd - nStart);
  oRecord.Seek(nEnd);
  oRecord.WriteAutoSwap(nCrc);
}

void ClCalibrateGeometricData::CheckCRC(ClMemStream& oRecord, unsigned int nStart, unsigned int nEnd) {
  const long nPos = oRecord.Pos();
  const uint32_t nExpected = ClCRC32().Get_CRC(oRecord.GetData() + nStart, nEnd - nStart);
  uint32_t nStored = 0;
  oRecord.Seek(nEnd);
  oRecord.ReadAutoSwap(nStored);
  oRecord.Seek(static_cast<unsigned int>(nPos));
  if (nStored != nExpected) RaiseCorrupt();
}

void ClCalibrateGeometricData::CheckPlanes() const {
  if (m_nPlanes > cnMaxPlanes) RaiseCorrupt();
}
