// A sheet on the platen that image quality is measured with.
#include "scene/SheetContent.h"

#include <cmath>

#include "scene/Sheet.h"

namespace Simulator {

void ClSheetContent::Draw(double dSeconds, ClPlatenMap& oMap) const {
  if (!ThereAt(dSeconds)) return;
  oMap.bGoesOn = true;
  oMap.pSheet = m_pDescription;
  oMap.oCover.Fill(0);
  const double dSpread = cdPixelMm / std::sqrt(12.0);
  const ClSheetView oView(*m_pDescription, dSpread, dSpread);
  for (int y = 0; y < cnPictureSide; ++y) {
    uint8_t* pContact = oMap.oContact.Row(y);
    for (int x = 0; x < cnPictureSide; ++x) {
      const float fLight =
          oView.LightAt(static_cast<float>((x + 0.5) * cdPixelMm), static_cast<float>((y + 0.5) * cdPixelMm));
      const float fRounded = 255.0F * fLight + 0.5F;
      pContact[x] = static_cast<uint8_t>(fRounded);
    }
  }
}

}  // namespace Simulator
