// How often the program has taken memory.
#pragma once

/// Calls of every form of operator new since the start, on all threads.
long CountedAllocations();
