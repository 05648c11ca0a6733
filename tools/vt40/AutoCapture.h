// Captures that the scanner takes by itself.
#pragma once

#include "CaptureResult.h"

/// Watches the preview until the scanner has taken the pictures that are asked for, one for each placement of
/// the fingers, and writes each with its preview. The verdict is eExitTimeout when a picture did not come in
/// time, eExitNegative for fingers that were gone or don't live.
void CaptureAutomatically(ClScanner& oScanner, const StCaptureOptions& oOptions, ClCaptureResult& oResult);
