// Formatting of log lines, the environment's settings, and the chain's one instance.
#include "MXTools/MXLogging.h"

#include <boost/date_time/posix_time/posix_time.hpp>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "MXTools/Exception.h"

namespace KlvLogging {

namespace {

const char* LevelName(KlvVTLogLevels eLevel) {
  static const char* const aNames[] = {"Emergency", "Alert",  "Critical", "Error",
                                       "Warning",   "Notice", "Info",     "Debug"};
  const int nLevel = static_cast<int>(eLevel);
  return nLevel >= 0 && nLevel <= 7 ? aNames[nLevel] : "Unknown";
}

}  // namespace

void Format(char (&szMessage)[cnLogMessageSize], const char* szFormat, va_list aArguments) {
  if (szFormat == nullptr) KLV_RAISE(ClException, "szFormat == NULL", -49);
  const int nLength = std::vsnprintf(szMessage, cnLogMessageSize, szFormat, aArguments);
  if (nLength < 0) KLV_RAISE(ClException, std::strerror(errno), -49);
  if (static_cast<size_t>(nLength) >= cnLogMessageSize)
    KLV_RAISE(ClException, "Logging Message bigger than 1024 bytes.", -49);
}

void WriteLine(KlvVTLogLevels eLevel, const char* szMessage) {
  const boost::posix_time::ptime oNow = boost::posix_time::microsec_clock::local_time();
  const std::string szStamp = boost::gregorian::to_simple_string(oNow.date()) + " " +
                              boost::posix_time::to_simple_string(oNow.time_of_day());
  std::printf("%s [%s] - %s\n", szStamp.c_str(), LevelName(eLevel), szMessage);
}

bool ReadEnabled() {
  const char* szValue = secure_getenv("KELVARIN_SDK_LOG");
  return szValue != nullptr && std::strcmp(szValue, "1") == 0;
}

int ReadLevel() {
  const char* szValue = secure_getenv("KELVARIN_SDK_LOG_LEVEL");
  if (szValue == nullptr) return 7;
  const int nLevel = std::atoi(szValue);
  return nLevel >= 0 && nLevel <= 7 ? nLevel : 7;
}

}  // namespace KlvLogging

template class TpLogging<ClLoggingChain>;

void LoadLoggingFacility() {}

void ReleaseLoggingFacility() {}

KlvVTResult KlvVTCreate() {
  return {0, 0};
}

KlvVTResult KlvVTLog() {
  return {0, 0};
}

void* g_KlvVTCreate = nullptr;
void* g_KlvVTLog = nullptr;
void* g_hLibHandle = nullptr;
