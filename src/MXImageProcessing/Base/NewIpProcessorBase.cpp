// The check before every run.
#include "MXImageProcessing/NewIpProcessorBase.h"

namespace NewIpBase {

bool ClIpProcessorBase::CanApply() {
  try {
    CheckInOutImageTypes();
  } catch (...) {
    return false;
  }
  return true;
}

long ClIpProcessorBase::Initialize() {
  CheckInOutImageTypes();
  return 0;
}

}  // namespace NewIpBase
