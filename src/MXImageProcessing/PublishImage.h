// How processors publish the images and output types that they have in common.
#pragma once

#include "MXTools/FpImage.h"

class ClParameterContainer;
class ClParameterInterface;

/// Adds an image connector bound to *ppImage: access 5 for an input, 6 for an output.
void PublishInputImage(ClParameterContainer& oContainer, const char* szName, ClImage** ppImage);
void PublishOutputImage(ClParameterContainer& oContainer, const char* szName, ClImage** ppImage);

/// Adds "OutImageType", an enumeration of the eight element types and "default", bound to *pnType.
void PublishOutImageType(ClParameterContainer& oContainer, unsigned char* pnType);

/// The same for the older list. Names there are the published ones without their type letter.
void DescribeInputImage(ClParameterInterface& oInterface, const char* szName, const char* szDescription,
                        ClImage** ppImage);
void DescribeOutputImage(ClParameterInterface& oInterface, const char* szName, const char* szDescription,
                         ClImage** ppImage);
void DescribeOutImageType(ClParameterInterface& oInterface, unsigned char* pnType);

/// "InImage" and "OutImage", as all processors with one of each have them.
void DescribeInOutImages(ClParameterInterface& oInterface, ClImage** ppIn, ClImage** ppOut);
