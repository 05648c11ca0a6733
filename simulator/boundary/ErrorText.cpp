// The libraries' texts of their numbers.
#include "boundary/ErrorText.h"

namespace Simulator {
namespace {

struct ClText {
  long nNumber;
  const char* szText;
  const wchar_t* wszText;
};

#define VTSIM_TEXT(nNumber, szText) \
  { nNumber, szText, L##szText }

constexpr ClText caTexts[] = {
    VTSIM_TEXT(0, "No error."),
    VTSIM_TEXT(-2, "The library is not initialized."),
    VTSIM_TEXT(-43, "The handle is not valid."),
    VTSIM_TEXT(-44, "A parameter is invalid."),
    VTSIM_TEXT(-47, "The property can't be set."),
    VTSIM_TEXT(-50, "The call is not possible in the present state."),
    VTSIM_TEXT(-60, "The device is disconnected or does not answer."),
    VTSIM_TEXT(-61, "The device can't be opened."),
    VTSIM_TEXT(-101, "Internal error."),
    VTSIM_TEXT(-102, "Out of memory."),
    VTSIM_TEXT(-200, "The file can't be opened."),
    VTSIM_TEXT(-203, "The file can't be read."),
    VTSIM_TEXT(-206, "The name is unknown."),
    VTSIM_TEXT(-701, "A pointer is NULL."),
    VTSIM_TEXT(-702, "The given size is too small."),
};
constexpr ClText coUnknown = VTSIM_TEXT(1, "Unknown error code.");

const ClText& Find(long nNumber) {
  for (const ClText& oText : caTexts)
    if (oText.nNumber == nNumber) return oText;
  return coUnknown;
}

}  // namespace

const char* ErrorText(long nNumber) noexcept {
  return Find(nNumber).szText;
}
const wchar_t* ErrorTextWide(long nNumber) noexcept {
  return Find(nNumber).wszText;
}

}  // namespace Simulator
