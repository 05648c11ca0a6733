// How often and how long the processors of each class ran.
#pragma once

#include <typeinfo>

#include "MXTools/TpArrayDynamic.h"

/// Threads  thread-bound: a host that sets one profiles a single thread.
class ClClassCallProfile {
 public:
  struct ClEntry {
    const std::type_info* m_pType = nullptr;
    double m_dSeconds = 0;
    unsigned int m_nCalls = 0;
  };

  virtual ~ClClassCallProfile() = default;

  /// Counts one call of a class; a class that is not there yet gets an entry.
  void Add(const std::type_info& oType, double dSeconds);
  /// Drops the entries and their memory.
  void Clear();
  /// For a host that derives; does nothing here.
  void TraceTimes() const {}
  const TpArrayDynamic<ClEntry, 10>& Entries() const { return m_aEntries; }

 private:
  TpArrayDynamic<ClEntry, 10> m_aEntries;
};
