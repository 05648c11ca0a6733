// What a call raised, as values that tests compare.
#pragma once

#include <string>
#include <utility>

#include "MXTools/Exception.h"

/// Number and text of the ClException that fnCall raises; 0 and "" when it raises none.
template <typename TCall>
std::pair<long, std::string> Raised(TCall&& fnCall) {
  try {
    fnCall();
  } catch (const ClException& oFailure) {
    return {oFailure.Number(), oFailure.What()};
  }
  return {0, ""};
}

template <typename TCall>
long NumberOf(TCall&& fnCall) {
  return Raised(fnCall).first;
}
