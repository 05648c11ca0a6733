// Positions, moments and grey values of labelled objects.
#include "MXImageProcessing/IpConnectedComponent2.h"

#include <algorithm>

#include "MXImageProcessing/MakeProcessor.h"
#include "MXTools/Exception.h"
#include "MXTools/ParameterRows.h"
#include "portable/Math.h"

namespace {

using ClComponent = ClIpConnectedComponent2::ClComponent;

/// Calls fnRow(y)(component, x) for each pixel that has a label, in row order.
template <typename TRow>
void ForLabels(const ClImage& oLabels, ClComponent* pComponents, const TRow& fnRow) {
  for (int y = 0; y < oLabels.Height(); ++y) {
    const int32_t* pRow = oLabels.Row<int32_t>(y);
    const auto fnPixel = fnRow(y);
    for (int x = 0; x < oLabels.Width(); ++x) {
      if (pRow[x] > 0) fnPixel(pComponents[pRow[x] - 1], x);
    }
  }
}

double Eccentricity(const ClComponent& o) {
  if (o.dArea <= 1) return 0;
  const double dDifference = o.dMu20 - o.dMu02;
  const double dSum = o.dMu02 + o.dMu20;
  return (4 * o.dMu11 * o.dMu11 + dDifference * dDifference) / (dSum * dSum);
}

/// Of the two principal directions this is the one across which the object spreads less.
double Direction(const ClComponent& o) {
  const auto SpreadAcross = [&o](double dAngle) {
    const double dCos = Portable::Cos(dAngle), dSin = Portable::Sin(dAngle);
    return dCos * dCos * o.dMu02 - dCos * dSin * o.dMu11 + dSin * dSin * o.dMu20;
  };
  const double dA = 0.5 * Portable::Atan((o.dMu11 + o.dMu11) / (o.dMu20 - o.dMu02));
  const double dB = dA + 1.5707963267948966;
  return SpreadAcross(dA) > SpreadAcross(dB) ? dB : dA;
}

}  // namespace

bool ClIpConnectedComponent2::ClComponent::operator==(const ClComponent& o) const {
  return vCentre.IsNear(o.vCentre) && vFirst.IsNear(o.vFirst) && vMin.IsNear(o.vMin) && vMax.IsNear(o.vMax) &&
         dArea == o.dArea && dEccentricity == o.dEccentricity && dGrey == o.dGrey && nLabel == o.nLabel;
}

long ClIpConnectedComponent2::ApplyParam(ClImage& oObjects, ComponentsArray_t& aComponents, ClImage* pGrey,
                                         ClImage* pLabels) {
  m_pInImage = &oObjects;
  m_pComponents = &aComponents;
  m_pInImageGrey = pGrey;
  m_pOutImage = pLabels;
  return Apply();
}

ClProcessorBase* ClIpConnectedComponent2::Create() const {
  return MakeProcessor<ClIpConnectedComponent2>();
}

bool ClIpConnectedComponent2::GreyImageFits() const {
  return m_pInImageGrey == nullptr || m_pInImageGrey->HasSize(m_pInImage->Width(), m_pInImage->Height());
}

bool ClIpConnectedComponent2::CanApply() {
  return m_pInImage != nullptr && m_pComponents != nullptr && GreyImageFits();
}

void ClIpConnectedComponent2::DeclareParameters(ClParameterRows& oRows) {
  oRows.Input("pInImage", "InImage", "In: Object Image", &m_pInImage);
  oRows.Input("m_pInImageGrey", "InImageGrey", "In: Grey Image", &m_pInImageGrey);
  oRows.Output("m_pOutImage", "OutImage", "Out: Label Image", &m_pOutImage);
}

long ClIpConnectedComponent2::Process() {
  if (m_pInImage == nullptr) KLV_RAISE(ClException, "Objectimage is missing", -37);
  if (m_pComponents == nullptr) KLV_RAISE(ClException, "Output object array is missing", -37);
  if (!GreyImageFits()) {
    KLV_RAISE(ClException, "the given grayimage has not the same size as the object image", -44);
  }
  ClImage& oLabels = m_pOutImage != nullptr ? *m_pOutImage : m_oLabels;
  m_oLabeling.Timer(IsTimerEnabled());
  const long nResult = m_oLabeling.ApplyParam(*m_pInImage, oLabels);
  if (nResult != 0) return nResult;
  m_pComponents->SetEntries(static_cast<unsigned int>(m_oLabeling.m_nLabels));
  for (unsigned int n = 0; n < m_pComponents->Entries(); ++n) {
    ClComponent& oComponent = (*m_pComponents)[n];
    // The array may hold objects of an earlier run.
    oComponent = ClComponent();
    oComponent.nLabel = static_cast<long>(n) + 1;
  }
  SumPlaces(oLabels);
  SumMoments(oLabels);
  if (m_pInImageGrey != nullptr) SumGrey(oLabels);
  return 0;
}

void ClIpConnectedComponent2::SumPlaces(const ClImage& oLabels) {
  ForLabels(oLabels, m_pComponents->Data(), [](int y) {
    return [y](ClComponent& o, int x) {
      const ClVector vPlace(x, y);
      if (o.vFirst.x < 0 || o.vFirst.y < 0) o.vFirst = o.vMin = o.vMax = vPlace;
      o.vCentre.x += vPlace.x;
      o.vCentre.y += vPlace.y;
      o.dArea += 1;
      o.vMin.x = std::min(o.vMin.x, vPlace.x);
      o.vMax.x = std::max(o.vMax.x, vPlace.x);
      o.vMax.y = vPlace.y;
    };
  });
  for (unsigned int n = 0; n < m_pComponents->Entries(); ++n) {
    ClComponent& o = (*m_pComponents)[n];
    o.vCentre.x /= o.dArea;
    o.vCentre.y /= o.dArea;
  }
}

void ClIpConnectedComponent2::SumMoments(const ClImage& oLabels) {
  ForLabels(oLabels, m_pComponents->Data(), [](int y) {
    return [y](ClComponent& o, int x) {
      const double dX = x - o.vCentre.x, dY = y - o.vCentre.y;
      o.dMu11 += dX * dY;
      o.dMu02 += dY * dY;
      o.dMu20 += dX * dX;
    };
  });
  for (unsigned int n = 0; n < m_pComponents->Entries(); ++n) {
    ClComponent& o = (*m_pComponents)[n];
    o.dEccentricity = Eccentricity(o);
    o.dAngle = Direction(o);
  }
}

void ClIpConnectedComponent2::SumGrey(const ClImage& oLabels) {
  ForLabels(oLabels, m_pComponents->Data(), [this](int y) {
    const uint8_t* pGrey = m_pInImageGrey->Row<uint8_t>(y);
    return [pGrey](ClComponent& o, int x) { o.dGrey += pGrey[x]; };
  });
  for (unsigned int n = 0; n < m_pComponents->Entries(); ++n) {
    ClComponent& o = (*m_pComponents)[n];
    o.dGrey /= o.dArea;
  }
}
