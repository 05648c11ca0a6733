// A timer that keeps what processors send it.
#pragma once

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

#include "MXTools/ProfileTimer.h"

/// "start" for each start, and the texts of the stops.
class ClNotingTimer : public ClProfileTimer {
 public:
  void TimerStart(const char*, ...) override { m_aLines.emplace_back("start"); }
  void TimerStop(const char* szFormat, ...) override {
    va_list aArguments;
    va_start(aArguments, szFormat);
    char szText[600];
    std::vsnprintf(szText, sizeof(szText), szFormat, aArguments);
    va_end(aArguments);
    m_aLines.emplace_back(szText);
  }
  std::vector<std::string> m_aLines;
};
