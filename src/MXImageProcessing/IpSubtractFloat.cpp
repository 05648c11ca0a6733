// Compiles the difference for a first image of floating samples.
#include "IpSubtractDispatch.h"

template long ClIpSubtract::DispatchDefault<float>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
template long ClIpSubtract::DispatchDefault<double>(ClImage&, ClImage&, ClImage&, const ClOverlap&);
