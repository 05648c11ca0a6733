// Copies, comparisons, hash and log of point correspondences.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <string>

#include "MXCalibrate/CalibrateGeometricData.h"
#include "MXTools/MD5.h"
#include "MXTools/MXLogging.h"

namespace {

using Points = ClCalibrateGeometricData::Points;

bool SamePoints(const Points& aLeft, const Points& aRight) {
  if (aLeft.Entries() != aRight.Entries()) return false;
  for (unsigned int n = 0; n < aLeft.Entries(); ++n) {
    if (!aLeft[n].IsNear(aRight[n])) return false;
  }
  return true;
}

void HashPoint(ClMD5::MD5_CTX& oContext, const ClVector& oPoint) {
  const float aPoint[2] = {static_cast<float>(oPoint.x), static_cast<float>(oPoint.y)};
  ClMD5::Update(&oContext, reinterpret_cast<const unsigned char*>(aPoint), sizeof(aPoint));
}

void AppendPoint(std::string& szLine, const char* szFormat, const ClVector& oPoint) {
  char szPoint[800];
  std::snprintf(szPoint, sizeof(szPoint), szFormat, oPoint.x, oPoint.y);
  szLine += szPoint;
}

}  // namespace

void ClCalibrateGeometricData::Clear() {
  m_nSourceWidth = m_nSourceHeight = m_nSourcePelsX = m_nSourcePelsY = 0;
  m_nTargetWidth = m_nTargetHeight = m_nTargetPelsX = m_nTargetPelsY = 0;
  m_nPlanes = 0;
  m_nBackground = 0;
  m_aTarget.Clear();
  for (Points& aPoints : m_aActual) aPoints.Clear();
}

ClCalibrateGeometricData& ClCalibrateGeometricData::operator=(const ClCalibrateGeometricData& oOther) {
  if (this == &oOther) return *this;
  oOther.CheckPlanes();
  ClCalibrateDataBase::operator=(oOther);
  m_nSourceWidth = oOther.m_nSourceWidth;
  m_nSourceHeight = oOther.m_nSourceHeight;
  m_nSourcePelsX = oOther.m_nSourcePelsX;
  m_nSourcePelsY = oOther.m_nSourcePelsY;
  m_nTargetWidth = oOther.m_nTargetWidth;
  m_nTargetHeight = oOther.m_nTargetHeight;
  m_nTargetPelsX = oOther.m_nTargetPelsX;
  m_nTargetPelsY = oOther.m_nTargetPelsY;
  m_nPlanes = oOther.m_nPlanes;
  m_nBackground = oOther.m_nBackground;
  m_aTarget.CopyFrom(oOther.m_aTarget);
  for (uint32_t n = 0; n < m_nPlanes; ++n) m_aActual[n].CopyFrom(oOther.m_aActual[n]);
  return *this;
}

bool ClCalibrateGeometricData::operator==(const ClCalibrateGeometricData& oOther) const {
  const bool bFields = ClCalibrateDataBase::operator==(oOther) && m_nSourceWidth == oOther.m_nSourceWidth &&
                       m_nSourceHeight == oOther.m_nSourceHeight && m_nSourcePelsX == oOther.m_nSourcePelsX &&
                       m_nSourcePelsY == oOther.m_nSourcePelsY && m_nTargetWidth == oOther.m_nTargetWidth &&
                       m_nTargetHeight == oOther.m_nTargetHeight && m_nTargetPelsX == oOther.m_nTargetPelsX &&
                       m_nTargetPelsY == oOther.m_nTargetPelsY && m_nPlanes == oOther.m_nPlanes &&
                       m_nBackground == oOther.m_nBackground;
  if (!bFields || !SamePoints(m_aTarget, oOther.m_aTarget)) return false;
  for (uint32_t n = 0; n < std::min(m_nPlanes, cnMaxPlanes); ++n) {
    if (!SamePoints(m_aActual[n], oOther.m_aActual[n])) return false;
  }
  return true;
}

void ClCalibrateGeometricData::GenerateHash(unsigned char* pDigest) const {
  ClMD5::MD5_CTX oContext;
  ClMD5::Init(&oContext);
  for (const uint32_t nField : {m_nSourceWidth, m_nSourceHeight, m_nSourcePelsX, m_nSourcePelsY,
                                m_nTargetWidth, m_nTargetHeight, m_nTargetPelsX, m_nTargetPelsY, m_nPlanes}) {
    ClMD5::Update(&oContext, reinterpret_cast<const unsigned char*>(&nField), sizeof(nField));
  }
  ClMD5::Update(&oContext, &m_nBackground, sizeof(m_nBackground));
  for (unsigned int i = 0; i < m_aTarget.Entries(); ++i) {
    HashPoint(oContext, m_aTarget[i]);
    for (uint32_t n = 0; n < std::min(m_nPlanes, cnMaxPlanes); ++n) {
      if (i < m_aActual[n].Entries()) HashPoint(oContext, m_aActual[n][i]);
    }
  }
  ClMD5::Final(pDigest, &oContext);
}

void ClCalibrateGeometricData::Log() const {
  const unsigned int nCount = std::min(m_aActual[0].Entries(), m_aTarget.Entries());
  for (unsigned int i = 0; i < nCount; ++i) {
    std::string szLine = std::to_string(i) + ":";
    AppendPoint(szLine, " Target(%7.3f, %7.3f)", m_aTarget[i]);
    AppendPoint(szLine, " Actual0(%7.3f, %7.3f)", m_aActual[0][i]);
    if (i < m_aActual[1].Entries()) AppendPoint(szLine, " Actual1(%7.3f, %7.3f)", m_aActual[1][i]);
    if (i < m_aActual[2].Entries()) AppendPoint(szLine, " Actual2(%7.3f, %7.3f)", m_aActual[2][i]);
    ClLogging::LogF(eLogDebug, "%s", szLine.c_str());
  }
}
