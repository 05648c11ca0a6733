// The state of the liveness library: who has initialised it, which contexts exist, and what it was asked.
#include "KelvarinFakeFingerDetectionVT40/Detection.h"

#include <cstdlib>
#include <sstream>

#include "KelvarinFakeFingerDetectionVT40/LivenessScore.h"
#include "scene/SimError.h"

namespace Simulator {

ClDetection& ClDetection::Get() {
  static ClDetection s_oDetection;
  return s_oDetection;
}

/// Reads "Function=Number,Function=Number" and drops the rules of an earlier text.
void ClDetection::ReadFaultsAtRest() {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  const char* szFaults = std::getenv("KELVARIN_FDSIM_FAULTS");
  const std::string sFaults = szFaults ? szFaults : "";
  if (m_nInitialized != 0 || sFaults == m_sEnvironment) return;
  m_oFaults.ClearRules();
  m_sEnvironment.clear();
  std::istringstream oFaults(sFaults);
  for (std::string sFault; std::getline(oFaults, sFault, ',');) {
    const size_t nEquals = sFault.find('=');
    char* pEnd = nullptr;
    const long nResult = nEquals == std::string::npos ? 0 : std::strtol(&sFault[nEquals + 1], &pEnd, 10);
    if (!pEnd || pEnd == &sFault[nEquals + 1] || *pEnd)
      throw ClSimError(eBadValue,
                       "KELVARIN_FDSIM_FAULTS: \"" + sFault + "\" is not of the form function=number");
    m_oFaults.FailCall(sFault.substr(0, nEquals), 1, 0, nResult);
  }
  m_sEnvironment = sFaults;
}

void ClDetection::Initialize() {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  ++m_nInitialized;
}

void ClDetection::Uninitialize() {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  if (m_nInitialized == 0) throw ClSimError(eNotInitialized, "the library is not initialised");
  if (--m_nInitialized == 0) m_aContexts.clear();
}

void* ClDetection::Create() {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  if (m_nInitialized == 0) throw ClSimError(eNotInitialized, "the library is not initialised");
  return *m_aContexts.insert(m_oHandles.Next()).first;
}

void ClDetection::CheckLocked(void* hDetection) const {
  if (m_nInitialized == 0) throw ClSimError(eNotInitialized, "the library is not initialised");
  if (m_aContexts.count(hDetection) == 0) throw ClSimError(eBadHandle, "the handle is no detection context");
}

void ClDetection::Check(void* hDetection) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  CheckLocked(hDetection);
}

void ClDetection::Destroy(void* hDetection) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  CheckLocked(hDetection);
  m_aContexts.erase(hDetection);
}

double ClDetection::Score(void* hDetection, unsigned nWidth, unsigned nHeight, const uint8_t* pImage,
                          const uint8_t* pMask) {
  Check(hDetection);
  if (nWidth < cnLeastSide || nWidth > cnLargestSide || nHeight < cnLeastSide || nHeight > cnLargestSide)
    throw ClSimError(eBadValue, "a picture of " + std::to_string(nWidth) + " x " + std::to_string(nHeight) +
                                    " pixels can't be scored");
  const double dMeasured =
      LivenessScore(MeasureLiveness(pImage, pMask, static_cast<int>(nWidth), static_cast<int>(nHeight)));
  std::lock_guard<std::mutex> oLock(m_oMutex);
  m_dScore = m_dOrdered < 0.0 ? dMeasured : m_dOrdered;
  m_nWidth = nWidth;
  m_nHeight = nHeight;
  ++m_nScores;
  return m_dScore;
}

long ClDetection::Number(void* hDetection, const std::string& sName) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  CheckLocked(hDetection);
  if (sName == "nScores") return static_cast<long>(m_nScores);
  if (sName == "nContexts") return static_cast<long>(m_aContexts.size());
  throw ClSimError(eUnknownName, "no whole number \"" + sName + "\"");
}

double ClDetection::Fraction(void* hDetection, const std::string& sName) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  CheckLocked(hDetection);
  if (sName == "dScore") return m_dScore;
  throw ClSimError(eUnknownName, "no number \"" + sName + "\"");
}

std::string ClDetection::Text(void* hDetection, const std::string& sName) {
  if (sName == "dScore") return std::to_string(Fraction(hDetection, sName));
  if (sName == "nScores" || sName == "nContexts") return std::to_string(Number(hDetection, sName));
  Check(hDetection);
  if (sName == "version" || sName == "Version") return "1.0";
  throw ClSimError(eUnknownName, "no property \"" + sName + "\"");
}

void ClDetection::Refuse(void* hDetection, const std::string& sName) {
  Text(hDetection, sName);
  throw ClSimError(eReadOnly, "property \"" + sName + "\" can't be set");
}

void ClDetection::Reset() {
  m_oFaults.Reset();
  std::lock_guard<std::mutex> oLock(m_oMutex);
  m_nScores = m_nWidth = m_nHeight = 0;
  m_dScore = 0.0;
  m_dOrdered = -1.0;
  m_sEnvironment.clear();
}

void ClDetection::State(FDSimState& oState) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  oState.nInitialized = m_nInitialized;
  oState.nContexts = static_cast<unsigned>(m_aContexts.size());
  oState.nScores = m_nScores;
  oState.nWidth = m_nWidth;
  oState.nHeight = m_nHeight;
  oState.dScore = m_dScore;
}

void ClDetection::OrderScore(double dScore) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  m_dOrdered = dScore;
}

}  // namespace Simulator
