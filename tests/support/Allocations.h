// Every operator new of the program and of the shared libraries that it loads: counted, and refused on demand.
#pragma once

#include <cstddef>

/// Threads  thread-safe; all numbers are those of all threads together.
namespace Allocations {

/// Calls of every form of operator new since the start.
long Count();
/// Blocks that have not been deleted.
long Live();
/// Bytes of the largest block that was asked for since ForgetLargest.
std::size_t Largest();
void ForgetLargest();
/// From now on the n-th call that comes from the named shared library finds no memory, that one alone; 0: none does.
/// What the C++ library does on behalf of its caller counts as the caller's. szLibrary: a part of the file name; a
/// constant.
void FailAt(long nCall, const char* szLibrary);
/// Whether that call has come.
bool HasFailed();

}  // namespace Allocations
