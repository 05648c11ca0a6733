// Entry and exit of the dot search in the log.
#pragma once

#include "MXTools/MXLogging.h"

/// Logs one line when it is made and one when it is destroyed.
class ClRefPointsLog {
 public:
  explicit ClRefPointsLog(const char* szOperation) : m_szOperation(szOperation) { Write("Enter"); }
  ~ClRefPointsLog() { Write("Leaving"); }
  ClRefPointsLog(const ClRefPointsLog&) = delete;
  ClRefPointsLog& operator=(const ClRefPointsLog&) = delete;

 private:
  void Write(const char* szWhat) const {
    ClLogging::LogF(eLogDebug, "ClIpCalibrateGeometricBuildRefPointsBase::%s() %s", m_szOperation, szWhat);
  }

  const char* m_szOperation;
};
