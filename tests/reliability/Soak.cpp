// Runs sequences, storms and rounds for as long as is asked for, and writes down what came out.
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "CallSequence.h"
#include "SequenceContent.h"
#include "Storm.h"

// The sanitizers call what is set here before they end a process; without one this is missing.
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*pfnCallback)());

namespace {

using namespace Reliability;

/// A sequence that takes longer than so many seconds hangs.
constexpr unsigned int cnLongestSequence = 240;
constexpr size_t cnMostBytes = 120;

uint64_t s_nPlaying = 0;

void SayWhich() {
  std::fprintf(stderr, "while sequence %llu was played\n", static_cast<unsigned long long>(s_nPlaying));
}

/// Sequence nNumber of a seed: first each function in each mode, then random bytes. Every fourth has memory
/// that runs out, every third two threads, seven of eight begin in a mode; frames flow in one of 256, in the
/// others one comes by itself now and then; one in 1024 begins with another scanner, which has to be
/// opened.
Sequence_t SequenceOf(uint64_t nSeed, uint64_t nNumber) {
  static const std::vector<Sequence_t> s_aPairs = ClSequencePlayer::Pairs();
  if (nNumber < s_aPairs.size()) return s_aPairs[static_cast<size_t>(nNumber)];
  std::seed_seq oSeed{static_cast<uint32_t>(nSeed), static_cast<uint32_t>(nNumber),
                      static_cast<uint32_t>(nNumber >> 32)};
  std::mt19937_64 oRandom(oSeed);
  Sequence_t aBytes(8 + static_cast<size_t>(oRandom() % cnMostBytes));
  for (uint8_t& rByte : aBytes) rByte = static_cast<uint8_t>(oRandom());
  aBytes[0] = static_cast<uint8_t>((nNumber % 3 == 0) | (aBytes[0] & ~1));
  if (nNumber % 2 == 0 || (nNumber % 1024 != 1 && LosesFirst(aBytes[1]))) aBytes[1] = 0;
  const unsigned nFlow = nNumber % 256 == 7 ? 0 : 1 + (aBytes[3] < 64);
  if (nNumber % 4 != 0) aBytes[2] = aBytes[3] = 0;
  aBytes[3] = static_cast<uint8_t>(aBytes[3] % 4 + 4 * nFlow);
  return aBytes;
}

/// Whatever ends the process says in which sequence that was.
void WatchForTheEnd() {
  if (__sanitizer_set_death_callback != nullptr) __sanitizer_set_death_callback(SayWhich);
  std::signal(SIGABRT, [](int) { SayWhich(); });
  std::signal(SIGALRM, [](int) {
    std::fprintf(stderr, "a sequence hangs\n");
    std::abort();
  });
}

StResult Sequences(uint64_t nRuns, uint64_t nSeed, uint64_t nFirst, double dMostSeconds) {
  WatchForTheEnd();
  const auto tBegin = std::chrono::steady_clock::now();
  const auto Seconds = [&] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - tBegin).count();
  };
  ClSequencePlayer oPlayer;
  for (s_nPlaying = nFirst; s_nPlaying < nFirst + nRuns && Seconds() < dMostSeconds; ++s_nPlaying) {
    alarm(cnLongestSequence);
    oPlayer.Play(SequenceOf(nSeed, s_nPlaying));
    if (s_nPlaying % 1000 == 999)
      std::fprintf(stderr, "%llu sequences, %.0f s\n", static_cast<unsigned long long>(s_nPlaying + 1),
                   Seconds());
  }
  alarm(0);
  char szLongest[32];
  std::snprintf(szLongest, sizeof(szLongest), "%.2f", oPlayer.Longest());
  return {"sequences",
          s_nPlaying - nFirst,
          nSeed,
          Seconds(),
          0,
          BuildName(),
          std::string(", \"longest\": ") + szLongest + ", \"longestCall\": \"" + oPlayer.LongestName() +
              "\", " + oPlayer.Census().Json()};
}

uint64_t Number(const char* szNumber) {
  return std::strtoull(szNumber, nullptr, 10);
}

}  // namespace

int main(int nArguments, char** ppArguments) {
  if (nArguments < 4) {
    std::fprintf(stderr, "usage: %s sequences|storm|open|initialise COUNT SEED [FILE [FIRST [SECONDS]]]\n",
                 ppArguments[0]);
    return 2;
  }
  const std::string sVerb = ppArguments[1];
  const uint64_t nCount = Number(ppArguments[2]), nSeed = Number(ppArguments[3]);
  const uint64_t nFirst = nArguments > 5 ? Number(ppArguments[5]) : 0;
  const double dMostSeconds = nArguments > 6 ? std::atof(ppArguments[6]) : 1e9;
  StResult oResult;
  if (sVerb == "sequences") {
    oResult = Sequences(nCount, nSeed, nFirst, dMostSeconds);
  } else if (sVerb == "storm") {
    oResult = Storm(nCount, nSeed, dMostSeconds);
  } else if (sVerb == "open") {
    oResult = OpenAndClose(nCount);
  } else if (sVerb == "initialise") {
    oResult = InitializeAndEnd(nCount);
  } else {
    std::fprintf(stderr, "no such check: %s\n", ppArguments[1]);
    return 2;
  }
  const bool bWritten = oResult.Report(nArguments > 4 ? ppArguments[4] : "");
  return bWritten && oResult.nFindings == 0 ? 0 : 1;
}
