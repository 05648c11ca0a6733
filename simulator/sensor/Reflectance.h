// How brightly each place of the platen shines back: the map of the scene in the terms of light.
#pragma once

#include <cstdint>
#include <memory>

#include "scene/Platen.h"
#include "sensor/Blur.h"

namespace Simulator {

/// Light from each place of the picture, 255 being a ridge in full contact, 0 bare glass; with a coarse map
/// of where anything lies at all, so that bare places cost nothing.
///
/// Threads    thread-bound.
class ClReflectance {
 public:
  static constexpr int nBlock = 32;

  /// From contact and nearness of skin: valleys shine with the part cdValleyPart. The spread of the optics is
  /// given by its variances in pixels of the picture; a sheet is blurred where it is drawn.
  void Update(const ClPlatenMap& oMap, double dVarianceX, double dVarianceY);
  void Free();

  const TpPlane<uint8_t>& Picture() const noexcept { return m_oPicture; }
  /// The sheet that covers the platen, whose detail the picture does not hold; null without one.
  const ClSheetDescription* Sheet() const noexcept { return m_pSheet.get(); }
  /// Beyond the edge it is dark, or as bright as on the edge.
  bool GoesOn() const noexcept { return m_bGoesOn; }

  /// Whether anything lies in the rectangle of pixels [nLeft, nRight] x [nTop, nBottom], which may reach
  /// beyond the picture. The answer may be yes for bare glass near skin, but is never no for skin.
  bool Occupied(int nLeft, int nTop, int nRight, int nBottom) const noexcept;

 private:
  void FindOccupied();

  ClBlur m_oBlur;
  TpPlane<uint8_t> m_oPicture;
  TpPlane<uint8_t> m_oOccupied;
  std::shared_ptr<const ClSheetDescription> m_pSheet;
  bool m_bGoesOn = false;
};

}  // namespace Simulator
