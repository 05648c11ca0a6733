// Every operator new of the program and of the shared libraries that it loads: counted, and refused on
// demand.
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

/// From now on the distinct call stacks are remembered on which allocations of the named shared library are
/// reached. What the C++ library does on behalf of its caller counts as the caller's. szLibrary: a part of
/// the file name.
void Remember(const char* szLibrary);
/// The number of remembered stacks.
std::size_t Stacks();
/// From now on the first call on the remembered stack of that number, of [0, Stacks()), finds no memory, and
/// no other call.
void FailAt(std::size_t nStack);
/// The library of which FailNth counts the allocations.
void Watch(const char* szLibrary);
/// From now on allocation number nWhich, from 1, of the watched library finds no memory, and no other.
void FailNth(long nWhich);
/// Whether that call has come.
bool HasFailed();
/// Ends either of them.
void Ignore();

}  // namespace Allocations
