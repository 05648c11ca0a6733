// The flow of calibrating processors, and the files that they write for debugging.
#include "MXCalibrate/IpCalibrateBase.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>

#include "MXTools/Bitmap.h"
#include "MXTools/ErrorTable.h"
#include "MXTools/FpImage.h"
#include "MXTools/MXLogging.h"

long ClIpCalibrateBase::Process() {
  ClLogging::LogF(eLogDebug, "ClIpCalibrateBase::Process() Enter");
  Initiate();
  Calibrate();
  constexpr int cnResult = 0;
  ClLogging::LogF(eLogDebug, "ClIpCalibrateBase::Process() Leaving(%d), %s", cnResult,
                  GetErrorDescriptionIntern(cnResult));
  return cnResult;
}

void ClIpCalibrateBase::StoreDebug(const ClImage* pImage, const char* szTag, const char* szDirectory) {
  const std::time_t nNow = std::time(nullptr);
  char szTime[32] = "";
  ctime_r(&nNow, szTime);
  char szPath[2048];
  std::snprintf(szPath, sizeof(szPath), "%sCalibrate[%s %s] %s %.24s.bmp", szDirectory, __DATE__, __TIME__,
                szTag, szTime);
  std::string szName(szPath);
  // Times have colons, which some file systems refuse; the colon after a drive letter stays.
  if (szName.size() > 4) std::replace(szName.begin() + 4, szName.end(), ':', '.');
  ClBitmap oBitmap;
  oBitmap.Attach(*pImage);
  oBitmap.Store(szName.c_str());
}
