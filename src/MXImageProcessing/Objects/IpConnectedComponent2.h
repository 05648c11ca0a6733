// Measures the connected objects of a binary image.
#pragma once

#include "MXImageProcessing/IpLabeling.h"
#include "MXTools/FpImage.h"
#include "MXTools/ProcessorBase.h"
#include "MXTools/TpArrayDynamic.h"
#include "MXTools/Vector.h"

/// Objects are those of ClIpLabeling; each gets an entry of the result array, in the order of the labels.
///
/// Domain     one plane of 8-bit samples; a grey image has the objects' width and height.
/// Ownership  keeps no image and no array beyond a run. The label image, when there is one, and the array are
///            made anew.
/// Threads    thread-bound.
/// Errors     ClException -37 no object image or no array; -44 the grey image has another size, or the label
///            image is the object image.
/// Cost       labelling and three passes over the labels.
class ClIpConnectedComponent2 : public ClProcessorBase {
 public:
  /// Units  pixels of the image; the angle in radians.
  class ClComponent {
   public:
    ClComponent() = default;
    ClComponent(const ClComponent&) = default;
    ClComponent& operator=(const ClComponent&) = default;
    virtual ~ClComponent() = default;

    /// Compares position, area, eccentricity, grey value and label, but neither angle nor moments.
    bool operator==(const ClComponent& o) const;

    ClVector vCentre;          ///< mean of the object's pixels
    ClVector vMin;             ///< smallest x and y
    ClVector vMax;             ///< largest x and y
    ClVector vFirst{-1, -1};   ///< first pixel in row order
    double dArea = 0;          ///< number of pixels
    double dEccentricity = 0;  ///< 0 for a round object, 1 for a line
    double dGrey = 0;          ///< mean of the grey image under the object
    double dAngle = 0;         ///< along the object; NaN when dMu20 equals dMu02 and dMu11 is 0
    long nLabel = 0;           ///< from 1
    double dMu11 = 0;          ///< sum of dx * dy from the centre
    double dMu02 = 0;          ///< sum of dy * dy
    double dMu20 = 0;          ///< sum of dx * dx
  };
  using ComponentsArray_t = TpArrayDynamic<ClComponent, 10>;

  long ApplyParam(ClImage& oObjects, ComponentsArray_t& aComponents, ClImage* pGrey = nullptr,
                  ClImage* pLabels = nullptr);

  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpConnectedComponent2"; }
  bool CanApply() override;
  void DeclareParameters(ClParameterRows& oRows) override;

  ClImage* m_pInImage = nullptr;
  ClImage* m_pInImageGrey = nullptr;
  ClImage* m_pOutImage = nullptr;
  ComponentsArray_t* m_pComponents = nullptr;

 protected:
  long Process() override;

 private:
  bool GreyImageFits() const;
  void SumPlaces(const ClImage& oLabels);
  void SumMoments(const ClImage& oLabels);
  void SumGrey(const ClImage& oLabels);

  ClIpLabeling m_oLabeling;
  ClImage m_oLabels;
};
