// Damage in order rather than by chance: each seed cut at every byte, and changed at every byte.
#pragma once

#include <string>

/// Feeds every seed cut before each of its bytes, and with each byte made 0, 0xFF, its complement, one more,
/// and a random value; what has checksums is also fed with the checksums put right. An input that breaks a
/// rule, crashes, or takes longer than a minute ends the process.
///
/// Writes how many inputs there were, and how long the longest took, as a row of results to the file.
void SweepSeeds(const std::string& sTarget, unsigned int nSeed, const std::string& sFile);
