// Calls that are to fail, and the record of those that did.
#include "boundary/FaultScript.h"

#include <limits>

#include "scene/Random.h"

namespace Simulator {
namespace {

// The log is limited, since faults may strike each frame for hours.
constexpr size_t cnLongestLog = 1u << 20;

}  // namespace

void ClFaultScript::Reset() {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  m_aRules.clear();
  m_mapCalls.clear();
  m_sLog.clear();
}

void ClFaultScript::ClearRules() {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  m_aRules.clear();
}

void ClFaultScript::FailCall(const std::string& sFunction, unsigned nFirst, unsigned nRepeat, long nResult) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  const uint64_t nFrom = m_mapCalls[sFunction] + nFirst;
  const uint64_t nTo = nRepeat == 0 ? std::numeric_limits<uint64_t>::max() : nFrom + nRepeat;
  m_aRules.push_back({sFunction, nFrom, nTo, 0, 1.0, nResult});
}

void ClFaultScript::FailRandomly(const std::string& sFunction, uint64_t nSeed, double dProbability,
                                 long nResult) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  m_aRules.push_back({sFunction, 0, std::numeric_limits<uint64_t>::max(), nSeed, dProbability, nResult});
}

bool ClFaultScript::Applies(const ClRule& oRule, const char* szFunction, bool bTakesDevice, uint64_t nCall) {
  if (oRule.sFunction == "*" ? !bTakesDevice : oRule.sFunction != szFunction) return false;
  if (nCall < oRule.nFrom || nCall >= oRule.nTo) return false;
  if (oRule.dProbability >= 1.0) return true;
  return ClRandom(Mix(Mix(oRule.nSeed, MixText(szFunction)), nCall)).Uniform() < oRule.dProbability;
}

bool ClFaultScript::Strikes(const char* szFunction, bool bTakesDevice, long& nResult) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  auto itCalls = m_mapCalls.find(szFunction);
  if (itCalls == m_mapCalls.end()) itCalls = m_mapCalls.emplace(szFunction, 0).first;
  const uint64_t nCall = ++itCalls->second;
  for (const ClRule& oRule : m_aRules) {
    if (!Applies(oRule, szFunction, bTakesDevice, nCall)) continue;
    nResult = oRule.nResult;
    if (m_sLog.size() < cnLongestLog)
      m_sLog += "call " + std::to_string(nCall) + " of " + szFunction + " answered " +
                std::to_string(nResult) + "\n";
    return true;
  }
  return false;
}

void ClFaultScript::Note(const std::string& sLine) {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  if (m_sLog.size() < cnLongestLog) m_sLog += sLine + "\n";
}

std::string ClFaultScript::Log() const {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  return m_sLog;
}

uint64_t ClFaultScript::CallCount(const std::string& sFunction) const {
  std::lock_guard<std::mutex> oLock(m_oMutex);
  const auto it = m_mapCalls.find(sFunction);
  return it == m_mapCalls.end() ? 0 : it->second;
}

}  // namespace Simulator
