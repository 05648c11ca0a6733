// Logs one line of each level, then messages at the limit of their length; the log's test reads what comes
// out.
#include <cstdio>
#include <string>

#include "MXTools/Exception.h"
#include "MXTools/MXLogging.h"

namespace {

long Log(const char* szFormat, const std::string& szText) {
  try {
    // The format is what is tested, and so can't be a literal.
    void (*pLogF)(KlvVTLogLevels, const char*, ...) = &ClLogging::LogF;
    pLogF(eLogError, szFormat, szText.c_str());
  } catch (const ClException& e) {
    return e.Number();
  }
  return 0;
}

}  // namespace

int main() {
  ClLogging::LogF(eLogError, "%s Error(%d): %s", "LS_VT40GetImage", -43, "text");
  ClLogging::LogF(eLogDebug, "%s%s Enter", "LS_VT40GetImage", "");
  ClLogging::LogF(static_cast<KlvVTLogLevels>(0), "first");
  ClLogging::LogF(static_cast<KlvVTLogLevels>(-3), "odd");
  std::printf("limits %ld %ld %ld\n", Log("%s", std::string(1023, 'a')), Log("%s", std::string(1024, 'a')),
              Log(nullptr, ""));
  const KlvVTResult oResult = KlvVTCreate();
  std::printf("words %u %u %d\n", oResult.nLow, oResult.nHigh, g_hLibHandle == nullptr);
}
