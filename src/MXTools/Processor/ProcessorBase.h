// The life cycle that every image operation runs through.
#pragma once

#include "MXTools/ParameterProvider.h"

class ClClassCallProfile;
class ClProfileTimer;

/// Set by a host that wants to watch processors; null otherwise. It is not guarded, and so must be set before
/// any processor runs.
extern ClProfileTimer* g_pProfileTimer;
extern ClClassCallProfile* g_pClassCallProfile;

/// An operation with parameters: set it up, hand it images, run Apply as often as wanted.
///
/// Ownership  owns no image that it is handed; the pointers need only be valid during a run. Scratch images
///            are kept, so that a run with the sizes of the last one allocates nothing.
/// Threads    thread-bound.
/// Errors     what Initialize and Process return is returned; what they raise passes through Apply.
class ClProcessorBase : public ClParameterProvider {
 public:
  ClProcessorBase();

  /// A new instance of the concrete class, owned by the caller.
  virtual ClProcessorBase* Create() const = 0;
  /// The concrete class's own name.
  virtual const char* Name() const = 0;
  /// True when Apply would find what it needs.
  virtual bool CanApply();
  /// A short summary of the parameters. Errors: -101 for nSize 0 and for a text that does not fit.
  virtual void ParameterString(char* szText, unsigned int nSize) const;
  using ClParameterProvider::QueryParameters;
  virtual void QueryParameters(ClParameterContainer& oContainer);
  virtual void Timer(bool bOn);

  /// Initialize, Process, Finalize; returns the first's number when it is not 0, else the second's.
  /// Errors: Finalize's number with "Finalization failed".
  long Apply();

  bool IsTimerEnabled() const { return m_pTimer != nullptr; }
  void TimerStart(const char* szText);
  void TimerStop(const char* szText);

 protected:
  virtual long Initialize() { return 0; }
  virtual long Process() = 0;
  virtual long Finalize(long) { return 0; }

  /// For ParameterString: formats into the caller's buffer or raises -101.
  static void FormatParameterString(char* szText, unsigned int nSize, const char* szFormat, ...)
      __attribute__((format(printf, 3, 4)));

 private:
  ClProfileTimer* m_pTimer;
};
