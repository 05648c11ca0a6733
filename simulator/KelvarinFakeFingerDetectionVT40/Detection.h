// The state of the liveness library: who has initialised it, which contexts exist, and what it was asked.
#pragma once

#include <cstdint>
#include <mutex>
#include <set>
#include <string>

#include "KelvarinFakeFingerDetectionVT40/FDSim.h"
#include "boundary/FaultScript.h"
#include "boundary/HandleValues.h"

namespace Simulator {

/// No context handle is given out twice, so that an old one is never taken for a new one.
///
/// Threads    thread-safe. m_oMutex is held for look-ups only: scores are measured side by side.
/// Errors     -2 not initialised; -43 no context.
class ClDetection {
 public:
  static ClDetection& Get();

  /// Reads the faults of the environment while the library is at rest; must come before the call that they
  /// may strike.
  ///
  /// Errors     -44 they can't be read.
  void ReadFaultsAtRest();
  void Initialize();
  /// The last one ends all contexts.
  void Uninitialize();
  void* Create();
  void Destroy(void* hDetection);
  void Check(void* hDetection);

  /// Errors     -44 a side is too small or too large.
  double Score(void* hDetection, unsigned nWidth, unsigned nHeight, const uint8_t* pImage,
               const uint8_t* pMask);

  /// Whole numbers "nScores" and "nContexts".
  ///
  /// Errors     -206 unknown.
  long Number(void* hDetection, const std::string& sName);
  /// The last score, "dScore".
  double Fraction(void* hDetection, const std::string& sName);
  /// "version" and "Version", or any of the numbers as text.
  std::string Text(void* hDetection, const std::string& sName);
  /// Errors     -47 the property is known, -206 it isn't: none can be set.
  [[noreturn]] void Refuse(void* hDetection, const std::string& sName);

  void Reset();
  void State(FDSimState& oState);
  void OrderScore(double dScore);
  ClFaultScript& Faults() noexcept { return m_oFaults; }

 private:
  void CheckLocked(void* hDetection) const;  // wants m_oMutex held

  ClFaultScript m_oFaults;
  std::mutex m_oMutex;  // guards all that follows
  unsigned m_nInitialized = 0;
  ClHandleValues m_oHandles;
  std::set<void*> m_aContexts;
  unsigned m_nScores = 0;
  unsigned m_nWidth = 0;
  unsigned m_nHeight = 0;
  double m_dScore = 0.0;
  double m_dOrdered = -1.0;
  std::string m_sEnvironment;  // whose faults are in force
};

}  // namespace Simulator
