// The stored form of a finished warp: a header, and the map wrapped as an image container of version 1.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "MXCalibrate/IpCalibrateGeometricBase.h"
#include "MXTools/Exception.h"
#include "MXTools/FpImage.h"
#include "MXTools/Stream.h"

namespace {

constexpr uint32_t cnKifMagic = 0x4B494600;
constexpr uint32_t cnKifVersion = 1;
constexpr uint32_t cnPhases = 1024;

/// Makes short transfers raise for its own lifetime.
class ClRaiseOnShort {
 public:
  explicit ClRaiseOnShort(ClStream& oStream) : m_oStream(oStream), m_bBefore(oStream.m_bFailureFlag) {
    oStream.m_bFailureFlag = true;
  }
  ~ClRaiseOnShort() { m_oStream.m_bFailureFlag = m_bBefore; }
  ClRaiseOnShort(const ClRaiseOnShort&) = delete;
  ClRaiseOnShort& operator=(const ClRaiseOnShort&) = delete;

 private:
  ClStream& m_oStream;
  bool m_bBefore;
};

uint32_t ReadWord(ClStream& oStream) {
  uint32_t nValue = 0;
  oStream.ReadAutoSwap(nValue);
  return nValue;
}

void Expect(bool bTrue, const char* szText, long nNumber) {
  if (!bTrue) KLV_RAISE(ClException, szText, nNumber);
}

}  // namespace

void ClIpCalibrateGeometricBase::Store(ClStream& oStream) const {
  if (m_pMap == nullptr) KLV_RAISE(ClException, "Calibrate is not initialized", -2);
  const ClRaiseOnShort oRaise(oStream);
  oStream.Write("PRE", 4);
  oStream.Write("GEO", 4);
  oStream.Write("001", 4);
  for (const uint32_t nField : {m_nSourceWidth, m_nSourceHeight, m_nTargetWidth, m_nTargetHeight,
                                m_nTargetPelsX, m_nTargetPelsY, m_nPlanes}) {
    oStream.WriteAutoSwap(nField);
  }
  oStream.WriteAutoSwap(m_nBackground);
  oStream.WriteAutoSwap(cnKifMagic);
  oStream.WriteAutoSwap(cnKifVersion);
  oStream.WriteAutoSwap(static_cast<uint8_t>(ClImage::eUint8));
  for (const uint32_t nField : {m_nTargetWidth, m_nTargetHeight, m_nPlanes * m_nMapEntrySize, m_nTargetPelsX,
                                m_nTargetPelsY, uint32_t{0}}) {
    oStream.WriteAutoSwap(nField);
  }
  oStream.WriteAutoSwap(0.0);
  oStream.WriteAutoSwap(255.0);
  oStream.WriteAutoSwap(uint32_t{0});
  std::vector<Entry> aRow(m_pMap->RowEntries());
  for (uint32_t nRow = 0; nRow < m_nTargetHeight && !aRow.empty(); ++nRow) {
    m_pMap->GetRow(nRow, aRow.data());
    oStream.Write(aRow.data(), static_cast<unsigned int>(aRow.size() * m_nMapEntrySize));
  }
  oStream.WriteAutoSwap(cnKifMagic);
}

void ClIpCalibrateGeometricBase::Load(ClStream& oStream) {
  const ClRaiseOnShort oRaise(oStream);
  m_pMap.reset();
  LoadHeader(oStream);
  LoadMap(oStream);
}

void ClIpCalibrateGeometricBase::LoadHeader(ClStream& oStream) {
  char szTag[5] = {};
  oStream.Read(szTag, 4);
  if (std::memcmp(szTag, "PRE", 4) != 0) KLV_RAISE_NUMBER(-40);
  oStream.Read(szTag, 4);
  if (std::memcmp(szTag, "GEO", 4) != 0) KLV_RAISE_NUMBER(-40);
  oStream.Read(szTag, 4);
  if (std::atoi(szTag) != 1) KLV_RAISE_NUMBER(-40);
  for (uint32_t* pField : {&m_nSourceWidth, &m_nSourceHeight, &m_nTargetWidth, &m_nTargetHeight,
                           &m_nTargetPelsX, &m_nTargetPelsY, &m_nPlanes}) {
    oStream.ReadAutoSwap(*pField);
  }
  oStream.ReadAutoSwap(m_nBackground);
}

void ClIpCalibrateGeometricBase::LoadMap(ClStream& oStream) {
  Expect(ReadWord(oStream) == cnKifMagic, "KIF Magic is missing", -40);
  Expect(ReadWord(oStream) == cnKifVersion, "Wrong KIF version", -40);
  uint8_t nType = 0;
  oStream.ReadAutoSwap(nType);
  Expect(nType == ClImage::eUint8, "nDataType is not the expected.", -39);
  Expect(ReadWord(oStream) == m_nTargetWidth, "m_nTargetWidth is not the expected.", -39);
  Expect(ReadWord(oStream) == m_nTargetHeight, "m_nTargetHeight is not the expected.", -39);
  const uint32_t nSampleBytes = ReadWord(oStream);
  Expect(m_nPlanes != 0 && m_nPlanes <= ClCalibrateGeometricData::cnMaxPlanes &&
             nSampleBytes == m_nPlanes * m_nMapEntrySize,
         "m_nPlanes is not the expected.", -39);
  Expect(ReadWord(oStream) == m_nTargetPelsX, "m_nTargetPelsX is not the expected.", -39);
  Expect(ReadWord(oStream) == m_nTargetPelsY, "m_nTargetPelsY is not the expected.", -39);
  Expect(ReadWord(oStream) == 0, "eContent is not the expected.", -39);
  double dUnused = 0;
  oStream.ReadAutoSwap(dUnused);
  oStream.ReadAutoSwap(dUnused);
  ReadWord(oStream);

  Expect(IsSourceInReach(), "The source image is too large for a map", -39);
  // In this order nothing overflows: width times height fits 64 bits, and the rest of a stream fits 31.
  const uint64_t nLeft = static_cast<uint64_t>(oStream.Size() - oStream.Pos());
  if (uint64_t{m_nTargetWidth} * m_nTargetHeight > nLeft || MapEntries() * m_nMapEntrySize > nLeft) {
    KLV_RAISE(ClExStreamUnexpectedEnd, "Unexpected end of stream", -201);
  }
  std::unique_ptr<ClIpCalibrateGeometricBaseMap> pMap = NewMap();
  std::vector<Entry> aRow(pMap->RowEntries());
  bool bInside = true;
  for (uint32_t nRow = 0; nRow < m_nTargetHeight && !aRow.empty(); ++nRow) {
    oStream.Read(aRow.data(), static_cast<unsigned int>(aRow.size() * m_nMapEntrySize));
    bInside = bInside && PointsInside(aRow);
    if (bInside) pMap->SetRow(nRow, aRow.data());
  }
  Expect(ReadWord(oStream) == cnKifMagic, "KIF end Magic is missing", -40);
  Expect(bInside, "Calibration Data currupt", -39);
  m_pMap = std::move(pMap);
}

bool ClIpCalibrateGeometricBase::PointsInside(const std::vector<Entry>& aRow) const {
  const int64_t nRowBytes = static_cast<int64_t>(SourceRowBytes());
  const int64_t nLast = (static_cast<int64_t>(m_nSourceHeight) - 4) * nRowBytes + m_nSourceWidth - 4;
  return std::all_of(aRow.begin(), aRow.end(), [nLast](const Entry& oEntry) {
    return oEntry.m_nOffset < 0 || (oEntry.m_nOffset <= nLast && oEntry.m_nPhase < cnPhases);
  });
}
