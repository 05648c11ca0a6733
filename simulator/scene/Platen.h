// The platen: its measures, and the map of what touches it.
#pragma once

#include <cstdint>
#include <memory>

#include "scene/Plane.h"

namespace Simulator {

/// Side of the square platen and of its picture. The picture is what a caller of the scanner should see:
/// right way round, x from left to right, y from top to bottom, 500 dots per inch.
constexpr double cdPlatenMm = 81.28;
constexpr int cnPictureSide = 1600;
constexpr double cdPixelMm = cdPlatenMm / cnPictureSide;
/// Positions are rounded to this, which nobody sees, so that equal positions give equal pictures.
constexpr double cdPlaceStep = cdPixelMm / 32.0;

/// Millimetres from the left or top edge to pixels, whole numbers being pixel centres.
constexpr double MmToPixel(double dMm) {
  return dMm / cdPixelMm - 0.5;
}

struct ClSheetDescription;

/// What lies on the glass at one moment, at picture resolution.
///
/// oContact   255 where skin touches the glass, 0 where it doesn't, values between on the flanks of ridges.
/// oCover     255 where skin is close to the glass, valleys included, 0 where there is none.
/// bGoesOn    what lies on the edge extends beyond it, where the sensor sees a little more of the glass.
/// pSheet     the sheet that covers all of it, whose detail is finer than the pixels here; null without one.
struct ClPlatenMap {
  TpPlane<uint8_t> oContact;
  TpPlane<uint8_t> oCover;
  bool bGoesOn = false;
  std::shared_ptr<const ClSheetDescription> pSheet;

  void Clear() {
    pSheet.reset();
    bGoesOn = false;
    if (oContact.Empty()) {
      oContact.Resize(cnPictureSide, cnPictureSide);
      oCover.Resize(cnPictureSide, cnPictureSide);
      return;
    }
    oContact.Fill(0);
    oCover.Fill(0);
  }
};

}  // namespace Simulator
