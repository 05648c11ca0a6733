// The sensor sizes of the product family, by sensor mode.
#include "MXVTScanAPI/MXVTScanAPIHandleBase.h"

#include "MXTools/Exception.h"

using Base = ClMXVTScanAPIHandleBase;
using ScannerTypes::Resolution;

const Resolution Base::m_oResQVGA = {320, 240, 1};
const Resolution Base::m_oResVGA = {640, 480, 1};
const Resolution Base::m_oResSXGA = {1280, 1024, 1};
const Resolution Base::m_oResVT4Window = {320, 240, 1};
const Resolution Base::m_oResVT4_2560x1920 = {2560, 1920, 1};
const Resolution Base::m_oResVT4_1280x1920 = {1280, 1920, 1};
const Resolution Base::m_oResVT4_640x960 = {640, 960, 1};
const Resolution Base::m_oResVT4_1280x960 = {1280, 960, 1};
const Resolution Base::m_oResVT4_640x480 = {640, 480, 1};
const Resolution Base::m_oResVT4_320x480 = {320, 480, 1};
const Resolution Base::m_oResVT40_1920x2720 = {1920, 2720, 1};
const Resolution Base::m_oResVT40_960x1360 = {960, 1360, 1};
const Resolution Base::m_oResVT40_960x1362 = {960, 1362, 1};
const Resolution Base::m_oResVT40_960x340 = {960, 340, 1};
const Resolution Base::m_oResVT40Quad = {960, 680, 1};
const Resolution Base::m_oResVT40Half = {1920, 1360, 1};
const Resolution Base::m_oResVT40Full = {3840, 2720, 1};
const Resolution Base::m_oResVT40Roll = {1920, 1362, 1};
const Resolution Base::m_oResVT40Detect = {960, 176, 1};

namespace {

struct ClModeResolution {
  int nMode;
  const Resolution* pResolution;
};

const ClModeResolution caVT40[] = {{1, &Base::m_oResVT40Half},
                                   {2, &Base::m_oResVT40Full},
                                   {3, &Base::m_oResQVGA},
                                   {4, &Base::m_oResVGA},
                                   {5, &Base::m_oResSXGA},
                                   {6, &Base::m_oResVT40Quad},
                                   {7, &Base::m_oResVT40Full},
                                   {8, &Base::m_oResVT40Roll},
                                   {9, &Base::m_oResVT40Detect},
                                   {32, &Base::m_oResVT40Half},
                                   {34, &Base::m_oResVT40_1920x2720},
                                   {35, &Base::m_oResVT40_960x1360},
                                   {36, &Base::m_oResVT40_960x1362},
                                   {38, &Base::m_oResVT40_960x340}};

const ClModeResolution caVT4[] = {
    {1, &Base::m_oResVT4_640x480},    {2, &Base::m_oResVT4_2560x1920},  {4, &Base::m_oResVT4_640x480},
    {16, &Base::m_oResVT4_2560x1920}, {17, &Base::m_oResVT4_1280x960},  {18, &Base::m_oResVT4_640x480},
    {19, &Base::m_oResVT4Window},     {22, &Base::m_oResVT4_2560x1920}, {23, &Base::m_oResVT4_1280x1920},
    {24, &Base::m_oResVT4_1280x960},  {25, &Base::m_oResVT4_640x480},   {33, &Base::m_oResVT4_640x960},
    {37, &Base::m_oResVT4_320x480}};

template <size_t N>
void Fill(std::map<Base::EScanMode_t, const Resolution*>& rMap, const ClModeResolution (&aRows)[N]) {
  for (const ClModeResolution& oRow : aRows)
    rMap[static_cast<Base::EScanMode_t>(oRow.nMode)] = oRow.pResolution;
}

}  // namespace

bool ClMXVTScanAPIHandleBase::GetEPROMSize(unsigned short*) {
  return true;
}

long ClMXVTScanAPIHandleBase::GetAPIVersion(char*, unsigned int*) {
  KLV_RAISE(ClException, "No API version available.", -103);
}

void ClMXVTScanAPIHandleBase::GetPid(ClMXVTScanAPI::EScannerProductID_t* pePid) const {
  if (pePid == nullptr) KLV_RAISE(ClException, "pid must not be NULL", -44);
  *pePid = m_ePid;
}

void ClMXVTScanAPIHandleBase::ConfigureResolutionMap() {
  m_oResolutionMap.clear();
  switch (m_ePid) {
    case ClMXVTScanAPI::eProductVT40:
    case ClMXVTScanAPI::eProductVT40B:
      Fill(m_oResolutionMap, caVT40);
      break;
    case ClMXVTScanAPI::eProductVT4:
      Fill(m_oResolutionMap, caVT4);
      break;
    default:
      break;
  }
}
