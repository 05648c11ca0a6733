// All that lies on one platen.
#pragma once

#include <memory>
#include <vector>

#include "scene/PenPath.h"
#include "scene/PlatenContent.h"
#include "scene/SceneDescription.h"

namespace Simulator {

/// Threads    const operations are thread-safe.
class ClPlatenScene : public ClPlatenContent {
 public:
  ClPlatenScene() = default;
  /// Errors     those of GetPrint.
  explicit ClPlatenScene(const ClScannerDescription& oScanner);

  uint64_t StateAt(double dSeconds) const override;
  void Draw(double dSeconds, ClPlatenMap& oMap) const override;
  void DrawUnrolled(double dFrom, double dUntil, ClPlatenMap& oMap) const override;
  void AddMinutiae(double dSeconds, std::vector<ClMinutia>& aMinutiae) const override;
  void AddRidges(double dSeconds, TpPlane<ClRidgeHere>& oRidges) const override;
  void Count(double dSeconds, ClPlatenFacts& oFacts) const override;

  /// The way of the pen; null when the scene has none.
  const ClPenPath* Pen() const noexcept { return m_pPen.get(); }

 private:
  std::shared_ptr<const ClPenPath> m_pPen;
  std::vector<std::unique_ptr<const ClPlatenContent>> m_aContent;
  size_t m_nFirstFinger = 0;  ///< among the content
};

}  // namespace Simulator
