// The limits as values of each element type.
#include "MXImageProcessing/IpSaturate.h"

#include <algorithm>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXImageProcessing/SampleLoop.h"
#include "MXKernels/PointRows.h"
#include "MXTools/Exception.h"
#include "MXTools/ImageTypeDispatch.h"
#include "MXTools/ParameterRows.h"

ClIpSaturate::ClIpSaturate() : NewIpBase::ClIp1to1Base(true) {
  EnableDataType(m_caAllTypes);
  ClIpSaturate::SetParametersToDefault();
}

long ClIpSaturate::ApplyParam(ClImage& oIn, ClImage& oOut, double dLower, double dUpper) {
  m_dInLowerBorder = dLower;
  m_dInUpperBorder = dUpper;
  return ApplyParam(oIn, oOut);
}

ClProcessorBase* ClIpSaturate::Create() const {
  return MakeProcessor<ClIpSaturate>();
}

void ClIpSaturate::DeclareParameters(ClParameterRows& oRows) {
  NewIpBase::ClIp1to1Base::DeclareParameters(oRows);
  oRows.Number("dInLowerBorder", "InLowerBorder", "In: Lowest Grey Value", &m_dInLowerBorder);
  oRows.Number("dInUpperBorder", "InUpperBorder", "In: Highest Grey Value", &m_dInUpperBorder);
}

long ClIpSaturate::DoProcess(ClImage& oIn, ClImage& oOut) {
  if (m_dInLowerBorder > m_dInUpperBorder) {
    KLV_RAISE(ClException, "Lower border must not be higher than upper border.", -44);
  }
  constexpr long cnUnknown = 1;
  const long nResult = DispatchElementType(oIn.DataType(), cnUnknown, [&](auto oElement) {
    Saturate<typename decltype(oElement)::Type>(oIn, oOut);
    return 0L;
  });
  if (nResult == cnUnknown) KLV_RAISE(ClException, "Unsupported data format.", -33);
  return nResult;
}

template <typename T>
void ClIpSaturate::Saturate(const ClImage& oIn, ClImage& oOut) const {
  const T nLower = ElementFromDouble<T>(m_dInLowerBorder);
  const T nUpper = ElementFromDouble<T>(m_dInUpperBorder);
  if constexpr (std::is_same_v<T, uint8_t>) {
    const auto nSamples = static_cast<size_t>(oIn.SamplesPerRow());
    for (int y = 0; y < oIn.Height(); ++y) {
      MXKernels::ClampRow(oIn.Row<T>(y), oOut.Row<T>(y), nSamples, nLower, nUpper);
    }
  } else {
    MapSamples<T, T>(oIn, oOut, [=](T nValue) { return std::min(std::max(nValue, nLower), nUpper); });
  }
}
