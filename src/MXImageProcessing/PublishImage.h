// How processors publish the images and output types that they have in common.
#pragma once

#include "MXTools/FpImage.h"

class ClParameterContainer;

/// Adds an image connector bound to *ppImage: access 5 for an input, 6 for an output.
void PublishInputImage(ClParameterContainer& oContainer, const char* szName, ClImage** ppImage);
void PublishOutputImage(ClParameterContainer& oContainer, const char* szName, ClImage** ppImage);

/// Adds "OutImageType", an enumeration of the eight element types and "default", bound to *pnType.
void PublishOutImageType(ClParameterContainer& oContainer, unsigned char* pnType);
