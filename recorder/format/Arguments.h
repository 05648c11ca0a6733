// What the arguments of a call put into its record, by their roles and types.
#pragma once

#include <type_traits>

#include "format/CallRecord.h"
#include "format/Functions.h"

namespace Recording {

/// An array that an application gives is read as far as the libraries read it, and no further than this.
constexpr uint64_t cnLongestArray = 16;
constexpr uint32_t cnLongestSized = 1024;

/// Adds what an application gives, argument after argument in the order of the declaration.
///
/// Threads  thread-bound.
class ClGivenArguments {
 public:
  /// bRooms: with the rooms for what is returned, which are no part of the question.
  ClGivenArguments(ClCallRecord& oCall, const char* szRoles, bool bRooms)
      : m_oCall(oCall), m_szRoles(szRoles), m_bRooms(bRooms) {}

  template <typename... TArguments>
  void Add(TArguments... aArguments) {
    [[maybe_unused]] size_t n = 0;
    (AddOne(n++, aArguments), ...);
    // Bytes whose number is known by the argument after them.
    [[maybe_unused]] size_t nSized = 0;
    (AddSized(nSized++, aArguments), ...);
  }

 private:
  void Text(size_t n, const char* sz) { m_oCall.AddText(n, eGiven, sz); }
  void Text(size_t n, const wchar_t* wsz) { m_oCall.AddText(n, eGiven, wsz); }
  template <typename T>
  void Text(size_t, const T*) {}

  template <typename T>
  void AddOne(size_t n, T oArgument) {
    const char cRole = m_szRoles[n];
    if constexpr (std::is_floating_point_v<T>) {
      m_oCall.AddReal(n, eGiven, oArgument);
    } else if constexpr (std::is_integral_v<T>) {
      m_nCount = static_cast<uint64_t>(oArgument);
      m_oCall.AddNumber(n, eGiven, static_cast<int64_t>(oArgument));
    } else if (cRole == eRoleGiven) {
      Text(n, oArgument);
    } else if constexpr (std::is_same_v<T, const tagBITMAPINFOHEADER*>) {
      m_oCall.AddBytes(n, eGiven, oArgument, sizeof *oArgument);
    } else if (cRole == eRoleArray) {
      Array(n, oArgument);
    } else if constexpr (std::is_same_v<T, unsigned int*>) {
      if (cRole == eRoleSize && m_bRooms) Room(n, oArgument);
    }
  }

  void Room(size_t n, const unsigned int* pnRoom) {
    if (pnRoom == nullptr) return m_oCall.AddNull(n, eGiven);
    m_oCall.AddNumber(n, eGiven, *pnRoom);
  }

  template <typename T>
  void Array(size_t n, T* pArray) {
    if constexpr (!std::is_void_v<std::remove_cv_t<T>> && !std::is_pointer_v<T>) {
      if (m_nCount > cnLongestArray) return;
      m_oCall.AddBytes(n, eGiven, pArray, static_cast<size_t>(m_nCount) * sizeof(T));
    }
  }

  template <typename T>
  void AddSized(size_t n, T oArgument) {
    if constexpr (std::is_same_v<T, void*>) {
      if (m_szRoles[n] == eRoleSized) m_pSized = oArgument;
      if (n == 0 || m_szRoles[n - 1] != eRoleSized || oArgument == nullptr) return;
      uint32_t nBytes;
      std::memcpy(&nBytes, oArgument, sizeof nBytes);
      if (nBytes <= cnLongestSized) m_oCall.AddBytes(n - 1, eGiven, m_pSized, nBytes);
    }
  }

  ClCallRecord& m_oCall;
  const char* const m_szRoles;
  const bool m_bRooms;
  uint64_t m_nCount = 0;
  const void* m_pSized = nullptr;
};

}  // namespace Recording
