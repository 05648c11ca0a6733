// Calls to the liveness library.
#include "MXLiveScannerAPI/LivenessDetector.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>

#include "MXLibraryLoaders/KelvarinFakeFingerDetectionVT40Wrapper.h"
#include "MXLibraryLoaders/SimulatedLibrary.h"
#include "MXTools/Failure.h"

namespace {

/// The library takes rows without padding.
void CopyUnpadded(const ClImage& oFrom, ClImage& oTo) {
  oTo.NewWithType(ClImage::eUint8, oFrom.Width(), oFrom.Height(), 1, 0, 0, false);
  for (int y = 0; y < oFrom.Height(); ++y)
    std::copy_n(oFrom.Row<uint8_t>(y), oFrom.Width(), oTo.Row<uint8_t>(y));
}

/// Milliseconds since local midnight.
unsigned int TimeOfDayMs() {
  const std::time_t nNow = std::time(nullptr);
  std::tm oLocal{};
  localtime_r(&nNow, &oLocal);
  return static_cast<unsigned int>((oLocal.tm_hour * 60 + oLocal.tm_min) * 60 + oLocal.tm_sec) * 1000U;
}

}  // namespace

ClLivenessDetector::ClLivenessDetector() {
  try {
    m_pLibrary = std::make_unique<ClKelvarinFakeFingerDetectionVT40Wrapper>();
    OpenRealOrSimulated(*m_pLibrary, m_pLibrary->m_ssSearchPath, m_pLibrary->m_ssLibName);
    KLV_CHECK(m_pLibrary->FD_VT40Initialize(nullptr));
    const long nAnswer = m_pLibrary->FD_VT40CreateFakeDetectionVT40Handle(&m_hContext);
    if (nAnswer != 0) {
      m_hContext = nullptr;
      m_pLibrary->FD_VT40Uninitialize();
      KLV_RAISE_NUMBER(nAnswer);
    }
  } catch (const ClExBadAlloc&) {
    throw;
  } catch (const ClException&) {
    // The library is optional: IsAvailable reports that there is no context.
  }
}

ClLivenessDetector::~ClLivenessDetector() {
  if (m_hContext == nullptr) return;
  m_pLibrary->FD_VT40DestroyHandle(&m_hContext);
  m_pLibrary->FD_VT40Uninitialize();
}

double ClLivenessDetector::Score(const ClImage& oPicture, const ClImage& oMask) {
  ClImage oPictureRows;
  ClImage oMaskRows;
  CopyUnpadded(oPicture, oPictureRows);
  CopyUnpadded(oMask, oMaskRows);
  double dScore = 0.0;
  m_pLibrary->FD_VT40GetFakeFingerDetectionScore(m_hContext, static_cast<unsigned int>(oPictureRows.Width()),
                                                 static_cast<unsigned int>(oPictureRows.Height()),
                                                 oPictureRows.Data(), oMaskRows.Data(), &dScore);
  return dScore;
}

double ClLivenessDetector::DrawnScore() {
  std::srand(TimeOfDayMs() & 0xFFFF);
  return 15.0 + (std::rand() % 7500) / 100.0;
}
