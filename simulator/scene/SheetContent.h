// A sheet on the platen that image quality is measured with.
#pragma once

#include <memory>

#include "scene/PlatenContent.h"
#include "scene/SceneDescription.h"

namespace Simulator {

/// The map gets the sheet itself, and in its picture what a pixel of 500 dots per inch collects of it.
class ClSheetContent : public ClPlatenContent {
 public:
  explicit ClSheetContent(const ClSheetDescription& oDescription)
      : m_pDescription(std::make_shared<const ClSheetDescription>(oDescription)) {}

  uint64_t StateAt(double dSeconds) const override { return ThereAt(dSeconds) ? 1 : 0; }
  void Draw(double dSeconds, ClPlatenMap& oMap) const override;
  void Count(double, ClPlatenFacts&) const override {}

  bool ThereAt(double dSeconds) const noexcept {
    return dSeconds >= m_pDescription->dFrom && dSeconds < m_pDescription->dUntil;
  }

 private:
  std::shared_ptr<const ClSheetDescription> m_pDescription;
};

}  // namespace Simulator
