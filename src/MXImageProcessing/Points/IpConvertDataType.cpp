// The conversion of each pair of element types.
#include "MXImageProcessing/IpConvertDataType.h"

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/SampleCast.h"
#include "MXImageProcessing/SampleLoop.h"

ClProcessorBase* ClIpConvertDataType::Create() const {
  return MakeProcessor<ClIpConvertDataType>();
}

long ClIpConvertDataType::DoProcess(ClImage& oIn, ClImage& oOut) {
  if (oIn.DataType() == oOut.DataType()) {
    oOut = oIn;
    return 0;
  }
  return DispatchElementType(oIn.DataType(), -101, [&](auto oElement) {
    return Dispatch<typename decltype(oElement)::Type>(oIn, oOut);
  });
}

template <typename T>
long ClIpConvertDataType::Dispatch(const ClImage& oIn, ClImage& oOut) const {
  return DispatchElementType(oOut.DataType(), -101, [&](auto oElement) {
    using U = typename decltype(oElement)::Type;
    MapSamples<T, U>(oIn, oOut, [](T nValue) { return SampleCast<U>(nValue); });
    return 0L;
  });
}
