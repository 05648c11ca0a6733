// The exception that is being handled as a number and as a text.
#include "MXTools/Failure.h"

#include <new>

#include "MXTools/ErrorTable.h"

namespace Klv {

long FailureNumber() noexcept {
  try {
    throw;
  } catch (const ClException& oFailure) {
    return oFailure.Number();
  } catch (const std::bad_alloc&) {
    return -102;
  } catch (const std::exception&) {
    return -721;
  } catch (...) {
    return -722;
  }
}

const char* FailureText() noexcept {
  try {
    throw;
  } catch (const std::exception& oFailure) {
    return oFailure.what();
  } catch (...) {
    return GetErrorDescriptionIntern(-722);
  }
}

}  // namespace Klv
