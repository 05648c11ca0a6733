// How many scenes of a kind a test looks at.
#pragma once

#include <cstdlib>
#include <string>

/// A sample, or as many as the environment asks for.
inline int Seeds() {
  const char* szSeeds = std::getenv("KELVARIN_TEST_SEEDS");
  return szSeeds != nullptr ? std::atoi(szSeeds) : 2;
}

inline std::string Seeded(const char* szScene, int nSeed) {
  return std::string(szScene) + ":" + std::to_string(nSeed);
}
