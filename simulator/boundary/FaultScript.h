// Calls that are to fail, and the record of those that did.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace Simulator {

/// Threads    thread-safe.
class ClFaultScript {
 public:
  /// Forgets rules, counts and log.
  void Reset();
  /// Forgets the rules only.
  void ClearRules();
  /// Calls nFirst to nFirst + nRepeat - 1 from now on; nRepeat 0 means all from nFirst on.
  void FailCall(const std::string& sFunction, unsigned nFirst, unsigned nRepeat, long nResult);
  /// sFunction "*" means any.
  void FailRandomly(const std::string& sFunction, uint64_t nSeed, double dProbability, long nResult);

  /// Counts a call. True when it is to fail; nResult then holds the answer. Random faults that name no
  /// function strike only calls that take a device.
  bool Strikes(const char* szFunction, bool bTakesDevice, long& nResult);

  void Note(const std::string& sLine);
  std::string Log() const;
  uint64_t CallCount(const std::string& sFunction) const;

 private:
  struct ClRule {
    std::string sFunction;
    uint64_t nFrom, nTo;  // calls [nFrom, nTo), counted from 1
    uint64_t nSeed;
    double dProbability;
    long nResult;
  };

  static bool Applies(const ClRule& oRule, const char* szFunction, bool bTakesDevice, uint64_t nCall);

  mutable std::mutex m_oMutex;
  std::vector<ClRule> m_aRules;                             // under m_oMutex, as all that follows
  std::map<std::string, uint64_t, std::less<>> m_mapCalls;  // found by plain text: counting allocates nothing
  std::string m_sLog;
};

}  // namespace Simulator
