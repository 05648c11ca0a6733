// Sweeps of damage over the seeds of a target.
#include "Sweep.h"

#include <unistd.h>

#include <chrono>
#include <random>

#include "FuzzTarget.h"

namespace {

constexpr unsigned int cnMostSeconds = 60;

double SecondsSince(std::chrono::steady_clock::time_point tBegin) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - tBegin).count();
}

class ClSweep {
 public:
  explicit ClSweep(unsigned int nSeed) : m_oRandom(nSeed) {}

  void Over(const Bytes& aSeed) {
    for (size_t n = 0; n < aSeed.size(); ++n) {
      Try(Bytes(aSeed.begin(), aSeed.begin() + static_cast<std::ptrdiff_t>(n)));
      const uint8_t nWas = aSeed[n];
      const auto nRandom = static_cast<uint8_t>(m_oRandom());
      for (const int nNow : {0, 0xFF, ~nWas & 0xFF, (nWas + 1) & 0xFF, int{nRandom}}) {
        Bytes aChanged = aSeed;
        aChanged[n] = static_cast<uint8_t>(nNow);
        if (aChanged[n] != nWas) Try(aChanged);
      }
    }
  }

  unsigned long Inputs() const { return m_nInputs; }
  double Longest() const { return m_dLongest; }

 private:
  void Try(const Bytes& aInput) {
    Time(aInput);
    if (Repaired == nullptr) return;
    const Bytes aRight = Repaired(aInput);
    if (aRight != aInput) Time(aRight);
  }

  void Time(const Bytes& aInput) {
    alarm(cnMostSeconds);
    const auto tBegin = std::chrono::steady_clock::now();
    Feed(aInput);
    m_dLongest = std::max(m_dLongest, SecondsSince(tBegin));
    ++m_nInputs;
  }

  std::mt19937 m_oRandom;
  unsigned long m_nInputs = 0;
  double m_dLongest = 0.0;
};

}  // namespace

void SweepSeeds(const std::string& sTarget, unsigned int nSeed, const std::string& sFile) {
  const auto tBegin = std::chrono::steady_clock::now();
  ClSweep oSweep(nSeed);
  const std::vector<Bytes> aSeeds = Seeds();
  for (const Bytes& aSeed : aSeeds) oSweep.Over(aSeed);
  alarm(0);
  std::FILE* pFile = std::fopen(sFile.c_str(), "w");
  Require(pFile != nullptr, "the result can be written");
  std::fprintf(
      pFile,
      "{\"row\": \"damage sweep\", \"count\": %lu, \"seed\": %u, \"seconds\": %.1f, \"findings\": 0, "
      "\"note\": \"%s: %zu seeds, longest input %.0f ms\"}\n",
      oSweep.Inputs(), nSeed, SecondsSince(tBegin), sTarget.c_str(), aSeeds.size(),
      1000.0 * oSweep.Longest());
  Require(std::fclose(pFile) == 0, "the result can be written");
}
