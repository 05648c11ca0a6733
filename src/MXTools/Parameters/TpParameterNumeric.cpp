// The numeric parameters that many files use, compiled once.
#include "MXTools/TpParameterNumeric.h"

template class TpParameterNumeric<double, ClParameter>;
template class TpParameterNumeric<int, ClParameter>;
template class TpParameterNumeric<long, ClParameter>;
template class TpParameterNumeric<unsigned char, ClParameter>;
template class TpParameterNumeric<unsigned int, ClParameter>;
template class TpParameterNumeric<unsigned short, ClParameter>;
