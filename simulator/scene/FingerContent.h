// A finger on the platen: laid down, pressed on, rolled, lifted.
#pragma once

#include <memory>
#include <mutex>

#include "scene/FingerMotion.h"
#include "scene/PlatenContent.h"
#include "scene/Print.h"
#include "scene/PrintTruth.h"
#include "scene/SceneDescription.h"
#include "scene/SkinMap.h"

namespace Simulator {

class ClFingerContent : public ClPlatenContent {
 public:
  /// Errors     those of GetPrint.
  explicit ClFingerContent(const ClFingerDescription& oDescription);

  uint64_t StateAt(double dSeconds) const override;
  void Draw(double dSeconds, ClPlatenMap& oMap) const override;
  void DrawUnrolled(double dFrom, double dUntil, ClPlatenMap& oMap) const override;
  void AddMinutiae(double dSeconds, std::vector<ClMinutia>& aMinutiae) const override;
  void AddRidges(double dSeconds, TpPlane<ClRidgeHere>& oRidges) const override;
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
  ClSkinMap MapOf(const ClFingerPose& oPose) const;
  void DrawSkin(const ClFingerPose& oPose, const ClStrip& oStrip, ClPlatenMap& oMap) const;
  /// Whether the skin at a pixel of the print is near the glass.
  bool Touches(const ClFingerPose& oPose, const ClStrip& oStrip, double dPrintX, double dPrintY) const;
  /// What can be found in the print; measured when somebody first asks.
  const ClPrintTruth& Truth() const;

  ClFingerDescription m_oDescription;
  PrintPointer m_pPrint;
  mutable std::once_flag m_oMeasured;
  mutable std::unique_ptr<const ClPrintTruth> m_pTruth;
};

}  // namespace Simulator
