// The table of class calls.
#include "MXTools/ClassCallProfile.h"

void ClClassCallProfile::Add(const std::type_info& oType, double dSeconds) {
  for (unsigned int n = 0; n < m_aEntries.Entries(); ++n) {
    ClEntry& rEntry = m_aEntries[n];
    if (*rEntry.m_pType != oType) continue;
    rEntry.m_dSeconds += dSeconds;
    ++rEntry.m_nCalls;
    return;
  }
  ClEntry oEntry;
  oEntry.m_pType = &oType;
  oEntry.m_dSeconds = dSeconds;
  oEntry.m_nCalls = 1;
  m_aEntries.Add(oEntry);
}

void ClClassCallProfile::Clear() {
  m_aEntries.New(0);
}
