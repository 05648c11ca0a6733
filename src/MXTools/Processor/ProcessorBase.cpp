// Apply, profiling and parameter texts of processors.
#include "MXTools/ProcessorBase.h"

#include <cstdarg>
#include <cstdio>
#include <typeinfo>

#include "MXTools/ClassCallProfile.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterContainer.h"
#include "MXTools/ProfileTimer.h"
#include "MXTools/StopWatch.h"

ClProfileTimer* g_pProfileTimer = nullptr;
ClClassCallProfile* g_pClassCallProfile = nullptr;

ClProcessorBase::ClProcessorBase() : m_pTimer(g_pProfileTimer) {}

bool ClProcessorBase::CanApply() {
  return false;
}

void ClProcessorBase::ParameterString(char* szText, unsigned int nSize) const {
  FormatParameterString(szText, nSize, "%s", "");
}

void ClProcessorBase::FormatParameterString(char* szText, unsigned int nSize, const char* szFormat, ...) {
  if (nSize == 0) KLV_RAISE(ClException, "Unexpected zero-length string", -101);
  va_list aArguments;
  va_start(aArguments, szFormat);
  const int nLength = std::vsnprintf(szText, nSize, szFormat, aArguments);
  va_end(aArguments);
  if (nLength < 0 || static_cast<unsigned int>(nLength) >= nSize) {
    KLV_RAISE(ClException, "String-Length exceeded available size", -101);
  }
}

void ClProcessorBase::QueryParameters(ClParameterContainer& oContainer) {
  ClParameterProvider::QueryParameters(oContainer);
}

void ClProcessorBase::Timer(bool bOn) {
  m_pTimer = bOn ? g_pProfileTimer : nullptr;
}

void ClProcessorBase::TimerStart(const char* szText) {
  if (m_pTimer != nullptr) m_pTimer->TimerStart("%s", szText != nullptr ? szText : "");
}

void ClProcessorBase::TimerStop(const char* szText) {
  if (m_pTimer == nullptr) return;
  if (szText != nullptr) {
    m_pTimer->TimerStop("%s", szText);
    return;
  }
  char szParameters[512] = "";
  ParameterString(szParameters, sizeof(szParameters));
  m_pTimer->TimerStop("%s %s", Name(), szParameters);
}

long ClProcessorBase::Apply() {
  TimerStart(nullptr);
  const Klv::CXStopWatch oWatch;
  long nResult = Initialize();
  if (nResult != 0) return nResult;
  nResult = Process();
  const long nFinal = Finalize(nResult);
  if (nFinal != 0) KLV_RAISE(ClException, "Finalization failed", nFinal);
  if (g_pClassCallProfile != nullptr) g_pClassCallProfile->Add(typeid(*this), oWatch.ElapsedSeconds());
  TimerStop(nullptr);
  return nResult;
}
