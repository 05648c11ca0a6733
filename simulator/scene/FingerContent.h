// A finger on the platen: laid down, pressed on, lifted.
#pragma once

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
  void Count(double dSeconds, ClPlatenFacts& oFacts) const override;

 private:
  ClFingerDescription m_oDescription;
  PrintPointer m_pPrint;
};

}  // namespace Simulator
