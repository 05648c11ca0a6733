// Reads and writes of plain variables that other threads may look at.
#pragma once

#include <type_traits>

/// The variable's value, read in one piece.
///
/// Domain   arithmetic, enumeration and pointer types at their natural alignment (8 bytes for a double, also
///          where the compiler would put it at 4).
/// Threads  thread-safe for the one variable; gives no order to any other.
template <typename T>
T KlvAtomicLoad(const T& rValue) {
  static_assert(std::is_scalar_v<T>, "only what the machine moves in one piece");
  T oValue;
  __atomic_load(&rValue, &oValue, __ATOMIC_RELAXED);
  return oValue;
}

/// Writes the variable in one piece. Domain and Threads as for KlvAtomicLoad.
template <typename T>
void KlvAtomicStore(T& rValue, T oValue) {
  static_assert(std::is_scalar_v<T>, "only what the machine moves in one piece");
  __atomic_store(&rValue, &oValue, __ATOMIC_RELAXED);
}
