// Compiles the difference for a first image of bytes samples.
#include "IpSubtractDispatch.h"

template long ClIpSubtract::DispatchDefault<uint8_t>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
template long ClIpSubtract::DispatchDefault<int8_t>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
