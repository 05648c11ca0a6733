// Compiles the difference for a first image of 32-bit samples.
#include "IpSubtractDispatch.h"

template long ClIpSubtract::DispatchDefault<uint32_t>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
template long ClIpSubtract::DispatchDefault<int32_t>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
