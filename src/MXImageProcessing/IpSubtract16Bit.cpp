// Compiles the difference for a first image of 16-bit samples.
#include "IpSubtractDispatch.h"

template long ClIpSubtract::DispatchDefault<uint16_t>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
template long ClIpSubtract::DispatchDefault<int16_t>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
