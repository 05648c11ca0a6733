// Base of the processors that check their images by a list of element types.
#pragma once

#include "MXImageProcessing/ImageDataTypeCheck.h"
#include "MXTools/ProcessorBase.h"

namespace NewIpBase {

/// Checks the images before every run.
///
/// Threads  thread-bound.
/// Errors   what CheckInOutImageTypes raises leaves Apply.
class ClIpProcessorBase : public ClProcessorBase, public ClImageDataTypeCheck {
 public:
  /// True when CheckInOutImageTypes raises nothing.
  bool CanApply() override;

 protected:
  long Initialize() override;
};

}  // namespace NewIpBase
