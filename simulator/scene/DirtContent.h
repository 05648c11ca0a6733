// Dirt on the glass: a speck, or a smear of streaks.
#pragma once

#include <vector>

#include "scene/PlatenContent.h"
#include "scene/SceneDescription.h"

namespace Simulator {

class ClDirtContent : public ClPlatenContent {
 public:
  explicit ClDirtContent(const ClDirtDescription& oDescription);

  uint64_t StateAt(double dSeconds) const override;
  void Draw(double dSeconds, ClPlatenMap& oMap) const override;
  void Count(double, ClPlatenFacts&) const override {}

 private:
  bool ThereAt(double dSeconds) const noexcept;
  double LightAt(double dAlong, double dAcross) const noexcept;

  ClDirtDescription m_oDescription;
  std::vector<double> m_aStreaks;  // strength of each streak across a smear
};

}  // namespace Simulator
