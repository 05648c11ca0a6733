// The latest entries of a log, in memory that is taken once.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Simulator {

/// Threads    thread-bound.
template <typename T>
class TpLatest {
 public:
  explicit TpLatest(size_t nKept) : m_aRing(nKept) {}

  void Clear() noexcept { m_nCount = 0; }
  void Add(const T& o) { m_aRing[m_nCount++ % m_aRing.size()] = o; }
  /// Oldest first.
  std::vector<T> All() const {
    std::vector<T> a;
    for (size_t n = m_nCount - std::min(m_nCount, m_aRing.size()); n < m_nCount; ++n)
      a.push_back(m_aRing[n % m_aRing.size()]);
    return a;
  }

 private:
  std::vector<T> m_aRing;
  size_t m_nCount = 0;
};

}  // namespace Simulator
