// A finger on the platen: laid down, pressed on, rolled, lifted.
#pragma once

#include "scene/FingerMotion.h"
#include "scene/PlatenContent.h"
#include "scene/Print.h"
#include "scene/SceneDescription.h"

namespace Simulator {

class ClFingerContent : public ClPlatenContent {
 public:
  /// Errors     those of GetPrint.
  explicit ClFingerContent(const ClFingerDescription& oDescription);

  uint64_t StateAt(double dSeconds) const override;
  void Draw(double dSeconds, ClPlatenMap& oMap) const override;
  void DrawUnrolled(double dFrom, double dUntil, ClPlatenMap& oMap) const override;
  void Count(double dSeconds, ClPlatenFacts& oFacts) const override;

 private:
  /// The part of the skin that is down, on an axis across the strip, in pixels from the print's middle: from
  /// dLow to dHigh fully, and half a strip more on each side.
  struct ClStrip {
    bool bWhole = true;  ///< the finger doesn't roll
    double dLow = 0.0;
    double dHigh = 0.0;
    double dHalf = 0.0;
  };

  ClStrip StripAt(const ClFingerPose& oPose) const;
  void DrawSkin(const ClFingerPose& oPose, const ClStrip& oStrip, ClPlatenMap& oMap) const;

  ClFingerDescription m_oDescription;
  PrintPointer m_pPrint;
};

}  // namespace Simulator
