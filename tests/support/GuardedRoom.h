// A buffer that ends where no byte may be touched.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>

/// nBytes bytes of 0xA5 that end at a protected page; so do those before them, which Intact looks at.
///
/// Threads  thread-bound.
class ClGuardedRoom {
 public:
  explicit ClGuardedRoom(size_t nBytes) : m_nBytes(nBytes) {
    const size_t nPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    m_nMapped = (nBytes / nPage + 1) * nPage + nPage;
    void* p = mmap(nullptr, m_nMapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) throw std::bad_alloc();
    m_pMapped = static_cast<unsigned char*>(p);
    m_pEnd = m_pMapped + m_nMapped - nPage;
    std::fill(m_pMapped, m_pEnd, cnFilling);
    if (mprotect(m_pEnd, nPage, PROT_NONE) != 0) throw std::bad_alloc();
  }
  /// Holds a text with its terminating zero.
  explicit ClGuardedRoom(const std::string& sText) : ClGuardedRoom(sText.size() + 1) {
    std::memcpy(Data(), sText.c_str(), m_nBytes);
  }
  ClGuardedRoom(const ClGuardedRoom&) = delete;
  ClGuardedRoom& operator=(const ClGuardedRoom&) = delete;
  ~ClGuardedRoom() { munmap(m_pMapped, m_nMapped); }

  unsigned char* Data() const { return m_pEnd - m_nBytes; }
  /// Whether the bytes before the buffer are what they were.
  bool Intact() const {
    return std::all_of(m_pMapped, Data(), [](unsigned char n) { return n == cnFilling; });
  }
  /// Whether nothing has been written into the buffer either.
  bool Untouched() const {
    return std::all_of(m_pMapped, m_pEnd, [](unsigned char n) { return n == cnFilling; });
  }

 private:
  static constexpr unsigned char cnFilling = 0xA5;
  size_t m_nBytes;
  size_t m_nMapped = 0;
  unsigned char* m_pMapped = nullptr;
  unsigned char* m_pEnd = nullptr;
};
