// What a simulated library gives out as handles.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace Simulator {

/// Addresses of bytes that are never given back: no handle comes twice, and none is the address of something
/// else. They lie in large blocks, so that openings take memory hardly ever.
///
/// Threads  thread-bound.
class ClHandleValues {
 public:
  void* Next() {
    if (m_nUsed == m_aBlocks.size() * cnBlock) m_aBlocks.push_back(std::make_unique<char[]>(cnBlock));
    return &m_aBlocks.back()[m_nUsed++ % cnBlock];
  }

 private:
  static constexpr size_t cnBlock = 65536;

  std::vector<std::unique_ptr<char[]>> m_aBlocks;
  size_t m_nUsed = 0;
};

}  // namespace Simulator
