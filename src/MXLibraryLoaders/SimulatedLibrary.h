// Where the libraries of the simulated scanner stand, and whether they are asked for.
#pragma once

#include <string>

/// The folder of the simulated libraries, beside the library that holds this code.
std::string SimulatorFolder();

/// The path at which a run-time library is to be opened, without any search, because the environment variable
/// KELVARIN_SDK_SIMULATE asks for the simulated scanner: set to anything but "" and "0". Otherwise empty, and
/// the library is looked for as usual, among folders that never hold a simulated one by themselves.
///
/// Threads  reentrant, as long as nobody changes the environment.
std::string SimulatedLibrary(const char* szName);

/// Opens a run-time library: the simulated one if it is asked for, else the first that the search path and
/// then the dynamic linker find.
template <typename TLibrary>
void OpenRealOrSimulated(TLibrary& oLibrary, const char* szSearchPath, const char* szName) {
  const std::string szSimulated = SimulatedLibrary(szName);
  if (szSimulated.empty()) return oLibrary.OpenLibrary(szSearchPath, szName);
  oLibrary.OpenLibrary(nullptr, szSimulated.c_str());
}
