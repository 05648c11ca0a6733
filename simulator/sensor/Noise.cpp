// A store of random numbers from which each row of a frame takes its noise.
#include "sensor/Noise.h"

#include "scene/Random.h"

namespace Simulator {

ClNoise::ClNoise(uint64_t nSeed) : m_aNumbers(m_cnPlaces + nLongestRow) {
  ClRandom oRandom(Mix(nSeed, 0x4E6F69));
  for (int16_t& nNumber : m_aNumbers) nNumber = static_cast<int16_t>(oRandom.Gauss() * nDeviation);
}

const int16_t* ClNoise::Row(uint64_t nNumber) const noexcept {
  return m_aNumbers.data() + static_cast<size_t>(Mix(nNumber) % static_cast<uint64_t>(m_cnPlaces));
}

}  // namespace Simulator
