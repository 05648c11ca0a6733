// Numbers the connected objects of a binary image.
#pragma once

#include <cstdint>

#include "MXImageProcessing/RunSets.h"
#include "MXTools/FpImage.h"
#include "MXTools/ProcessorBase.h"
#include "MXTools/TpArrayDynamic.h"

/// Objects are the samples of byte value 0, connected four ways. Labels run from 1 in the order of the
/// objects' first pixels, row by row; everything else is 0.
///
/// Domain     one-plane images of 8-bit samples. Input and output are two images.
/// Range      the output is eInt32 with the input's shape, content, black and white.
/// Ownership  the output is allocated on the image handed in; the list of runs is kept for the next image.
/// Threads    thread-bound.
/// Errors     ClException -37 an image is missing; -44 input and output are one object.
/// Cost       one pass to find and join the runs, one to write the labels, whatever the objects look like.
class ClIpLabeling : public ClProcessorBase {
 public:
  ClProcessorBase* Create() const override;
  const char* Name() const override { return "ClIpLabeling"; }
  bool CanApply() override;
  void DeclareParameters(ClParameterRows& oRows) override;

  long ApplyParam(ClImage& oIn, ClImage& oOut);

  ClImage* m_pInImage = nullptr;
  ClImage* m_pOutImage = nullptr;
  /// Number of objects that the last run found.
  int32_t m_nLabels = 0;

 protected:
  long Process() override;

 private:
  void WriteLabels();

  TpArrayDynamic<uint64_t, 1> m_aBits;
  ClRunSets m_oSets;
};
