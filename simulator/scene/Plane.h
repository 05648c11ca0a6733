// A rectangle of samples, row after row without padding.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Simulator {

/// Ownership  owns its samples; Resize keeps the block where it is large enough.
/// Threads    reentrant.
template <typename T>
class TpPlane {
 public:
  TpPlane() = default;
  TpPlane(int nWidth, int nHeight, T tValue = T()) { Resize(nWidth, nHeight, tValue); }

  void Resize(int nWidth, int nHeight, T tValue = T()) {
    m_nWidth = nWidth;
    m_nHeight = nHeight;
    m_aData.assign(static_cast<size_t>(nWidth) * static_cast<size_t>(nHeight), tValue);
  }
  /// Gives the memory back.
  void Free() {
    m_nWidth = m_nHeight = 0;
    std::vector<T>().swap(m_aData);
  }
  void Fill(T tValue) { std::fill(m_aData.begin(), m_aData.end(), tValue); }

  int Width() const noexcept { return m_nWidth; }
  int Height() const noexcept { return m_nHeight; }
  bool Empty() const noexcept { return m_aData.empty(); }
  size_t Count() const noexcept { return m_aData.size(); }
  T* Data() noexcept { return m_aData.data(); }
  const T* Data() const noexcept { return m_aData.data(); }
  T* Row(int nY) noexcept { return m_aData.data() + static_cast<size_t>(nY) * static_cast<size_t>(m_nWidth); }
  const T* Row(int nY) const noexcept {
    return m_aData.data() + static_cast<size_t>(nY) * static_cast<size_t>(m_nWidth);
  }
  T& At(int nX, int nY) noexcept { return Row(nY)[nX]; }
  const T& At(int nX, int nY) const noexcept { return Row(nY)[nX]; }

 private:
  int m_nWidth = 0;
  int m_nHeight = 0;
  std::vector<T> m_aData;
};

}  // namespace Simulator
