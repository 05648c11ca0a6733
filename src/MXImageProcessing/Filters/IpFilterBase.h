// Base of the filters whose output depends on a window round each pixel.
#pragma once

#include "MXTools/FpImage.h"
#include "MXTools/ProcessorBase.h"

/// Runs a filter along the rows, along the columns or both.
///
/// Domain     input and output are two images. Images of several planes are filtered plane by plane. A width
///            below 2 copies.
/// Ownership  the output is allocated on the image handed in; scratch is kept from run to run.
/// Threads    thread-bound.
/// Errors     ClExKelvarin -10 no input, -35 unknown mode; ClException -701 no output. Returned: -10 input
///            and output are one object.
class ClIpFilterBase : public ClProcessorBase {
 public:
  enum EMode : long { eModeX = 1, eModeY = 2, eModeXY = 3, eModeDirected = 8, eModeDirectedOrtho = 16 };

  long ApplyParam(ClImage& oIn, ClImage& oOut, long nWidth, long nFilterMode);

  bool CanApply() override;
  void SetParametersToDefault() override;
  void DeclareParameters(ClParameterRows& oRows) override;
  void ParameterString(char* szText, unsigned int nSize) const override;

  ClImage* m_pInImage = nullptr;
  ClImage* m_pOutImage = nullptr;
  long nFilterWidth = 3;
  long nMode = eModeXY;
  /// Direction of each pixel, eInt8 components of which 128 are a pixel, for the directed modes.
  ClImage* pInDxImage = nullptr;
  ClImage* pInDyImage = nullptr;

 protected:
  long Process() override;

  virtual long ProcessMultiPlane();
  virtual long DoProcess();
  virtual long ProcessX();
  virtual long ProcessY();
  virtual long ProcessXY();
  virtual long ProcessSignedX();
  virtual long ProcessSignedY();
  virtual long ProcessSignedXY();
  virtual long ProcessDirected(bool bOrtho);
  virtual long ProcessSignedDirected(bool bOrtho);

  /// Whether the older list goes on after the width, with modes and directions.
  virtual bool ListsModes() const { return true; }
  /// Errors: ClException -701 a direction image is missing; -44 it has another size than the input; -33 it is
  /// not of eInt8 and one plane.
  void CheckDirections() const;

  /// Runs fnFirst, then fnSecond with its result as the input, and restores the pointers.
  template <typename TFirst, typename TSecond>
  long ProcessTwice(TFirst&& fnFirst, TSecond&& fnSecond) {
    ClImagesGuard oGuard(*this);
    m_pOutImage = &m_oIntermediate;
    const long nResult = fnFirst();
    if (nResult != 0) return nResult;
    m_pInImage = &m_oIntermediate;
    m_pOutImage = oGuard.m_pOutput;
    return fnSecond();
  }

 private:
  class ClImagesGuard {
   public:
    explicit ClImagesGuard(ClIpFilterBase& oFilter)
        : m_oFilter(oFilter), m_pInput(oFilter.m_pInImage), m_pOutput(oFilter.m_pOutImage) {}
    ~ClImagesGuard() {
      m_oFilter.m_pInImage = m_pInput;
      m_oFilter.m_pOutImage = m_pOutput;
    }
    ClImagesGuard(const ClImagesGuard&) = delete;
    ClImagesGuard& operator=(const ClImagesGuard&) = delete;

    ClIpFilterBase& m_oFilter;
    ClImage* const m_pInput;
    ClImage* const m_pOutput;
  };

  ClImage m_oIntermediate;
};
