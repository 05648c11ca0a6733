// The tip of a pen on the glass.
#pragma once

#include <memory>

#include "scene/PenPath.h"
#include "scene/PlatenContent.h"

namespace Simulator {

class ClPenContent : public ClPlatenContent {
 public:
  ClPenContent(const ClPenDescription& oDescription, std::shared_ptr<const ClPenPath> pPath)
      : m_dRadius(0.5 * oDescription.dDiameterMm / cdPixelMm),
        m_dStrength(oDescription.dStrength),
        m_pPath(std::move(pPath)) {}

  uint64_t StateAt(double dSeconds) const override;
  void Draw(double dSeconds, ClPlatenMap& oMap) const override;
  void Count(double, ClPlatenFacts&) const override {}

 private:
  double m_dRadius;  // in pixels
  double m_dStrength;
  std::shared_ptr<const ClPenPath> m_pPath;
};

}  // namespace Simulator
