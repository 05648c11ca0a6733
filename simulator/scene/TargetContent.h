// The calibration target on the glass: a bright sheet with a grid of dark dots.
#pragma once

#include <array>
#include <vector>

#include "scene/PlatenContent.h"
#include "scene/SceneDescription.h"

namespace Simulator {

constexpr int cnTargetSide = 8;
constexpr size_t cnTargetDots = cnTargetSide * cnTargetSide;
constexpr double cdTargetPitchMm = 10.0;

/// A position on the platen, from its left and top edge.
struct ClPlaceMm {
  double dX, dY;
};

/// The target as it is laid against its stops: straight and in the middle, with all its dots. Size of the
/// dots, light, dust and scratches are drawn from the seed.
ClTargetDescription PlainTarget(uint64_t nSeed);

/// The middles of all dots, those that are missing too. They are counted as the sensor sees them, which is
/// mirrored: column after column from the right edge of the picture, each from top to bottom.
std::array<ClPlaceMm, cnTargetDots> TargetDots(const ClTargetDescription& oTarget);

class ClTargetContent : public ClPlatenContent {
 public:
  explicit ClTargetContent(const ClTargetDescription& oDescription);

  uint64_t StateAt(double) const override { return 1; }
  void Draw(double dSeconds, ClPlatenMap& oMap) const override;
  void Count(double, ClPlatenFacts&) const override {}

 private:
  /// Something on the sheet that ends softly: a disc, or a line with round ends. It moves the light towards
  /// fGrey by the share fStrength.
  struct ClMark {
    ClPlaceMm oFrom, oTo;
    double dRadiusMm;
    float fGrey, fStrength;
  };

  double LightAt(const ClPlaceMm& oPlace) const noexcept;
  static void DrawMark(const ClMark& oMark, ClPlatenMap& oMap) noexcept;

  std::vector<ClMark> m_aMarks;
  double m_dUneven, m_dLightX, m_dLightY;  // direction in which the sheet grows darker
};

}  // namespace Simulator
