// Residuals of the target's dots as a picture.
#pragma once

#include "Calibration.h"

/// Two squares side by side, before on the left and after on the right: the brighter, the farther off. White
/// is the most of each side; between dots the values are interpolated. 10 pixels are a millimetre of the
/// platen.
ClPicture DrawHeatMap(const StResidual& oBefore, const StResidual& oAfter);
