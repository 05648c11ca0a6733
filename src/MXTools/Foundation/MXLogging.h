// The one static call by which the library logs what it does.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

/// Numbers outside the list are legal and are logged as "Unknown".
enum KlvVTLogLevels : int {
  eLogEmergency = 0,
  eLogAlert = 1,
  eLogCritical = 2,
  eLogError = 3,
  eLogWarning = 4,
  eLogNotice = 5,
  eLogInfo = 6,
  eLogDebug = 7
};

/// Longest message, its closing zero included.
constexpr size_t cnLogMessageSize = 1024;

/// The parts of logging that no layer changes.
namespace KlvLogging {

/// Errors: ClException -49 for no format, a message that can't be formatted, and one that does not fit.
void Format(char (&szMessage)[cnLogMessageSize], const char* szFormat, va_list aArguments)
    __attribute__((format(printf, 2, 0)));
/// Writes time stamp, level name and message as one line on standard output.
void WriteLine(KlvVTLogLevels eLevel, const char* szMessage);
/// True when KELVARIN_SDK_LOG is exactly "1".
bool ReadEnabled();
/// KELVARIN_SDK_LOG_LEVEL when it is a number of [0, 7], else 7.
int ReadLevel();

}  // namespace KlvLogging

/// A layer of the log: a class that derives from it passes lines to the layer below it. Each layer has one
/// object, made while the library is loaded.
///
/// Threads  thread-safe: the state is written while the library is loaded and then only read. Lines are kept
///          apart by printf.
/// Errors   ClException -49, as KlvLogging::Format raises it, with logging off as well.
/// Cost     one vsnprintf with logging off.
template <typename TNext>
class TpLogging {
 public:
  static void LogF(KlvVTLogLevels eLevel, const char* szFormat, ...) __attribute__((format(printf, 2, 3))) {
    va_list aArguments;
    va_start(aArguments, szFormat);
    try {
      LogV(eLevel, szFormat, aArguments);
    } catch (...) {
      va_end(aArguments);
      throw;
    }
    va_end(aArguments);
  }
  static void LogV(KlvVTLogLevels eLevel, const char* szFormat, va_list aArguments)
      __attribute__((format(printf, 2, 0))) {
    char szMessage[cnLogMessageSize];
    KlvLogging::Format(szMessage, szFormat, aArguments);
    m_oFallbackLogger.Write(eLevel, szMessage);
  }

 protected:
  static TNext m_oFallbackLogger;
};

template <typename TNext>
TNext TpLogging<TNext>::m_oFallbackLogger;

/// The end of the chain.
class ClLoggingNone {
 public:
  void Write(KlvVTLogLevels, const char*) const {}
};

/// Writes what its level lets through on standard output.
template <typename TNext>
class TpLoggingConsole : public TpLogging<TNext> {
 public:
  void Write(KlvVTLogLevels eLevel, const char* szMessage) const {
    if (static_cast<int>(eLevel) > m_nLevel) return;
    KlvLogging::WriteLine(eLevel, szMessage);
    TpLogging<TNext>::m_oFallbackLogger.Write(eLevel, szMessage);
  }

 private:
  int m_nLevel = KlvLogging::ReadLevel();
};

/// Stands for a debugger's output window. This platform has none, so that lines are only passed on.
template <typename TNext>
class TpLoggingDebugOut : public TpLogging<TNext> {
 public:
  void Write(KlvVTLogLevels eLevel, const char* szMessage) const {
    TpLogging<TNext>::m_oFallbackLogger.Write(eLevel, szMessage);
  }
};

/// Passes lines on when the environment switches logging on.
template <typename TNext>
class TpLoggingConfigurator : public TpLogging<TNext> {
 public:
  void Write(KlvVTLogLevels eLevel, const char* szMessage) const {
    if (m_bEnabled) TpLogging<TNext>::m_oFallbackLogger.Write(eLevel, szMessage);
  }

 private:
  bool m_bEnabled = KlvLogging::ReadEnabled();
};

using ClLoggingChain = TpLoggingConfigurator<TpLoggingDebugOut<TpLoggingConsole<ClLoggingNone>>>;
/// What the whole library logs through.
using ClLogging = TpLogging<ClLoggingChain>;

extern template class TpLogging<ClLoggingChain>;

/// The external logging interface: its names exist, without effect on this platform.
struct KlvVTResult {
  uint32_t nLow;
  uint32_t nHigh;
};

extern "C" {
void LoadLoggingFacility();
void ReleaseLoggingFacility();
/// Both give two words of 0.
KlvVTResult KlvVTCreate();
KlvVTResult KlvVTLog();
extern void* g_KlvVTCreate;
extern void* g_KlvVTLog;
extern void* g_hLibHandle;
}
