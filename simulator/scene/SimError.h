// The one exception of the simulator: a number for the C boundary and a text for people.
#pragma once

#include <stdexcept>
#include <string>

namespace Simulator {

/// Numbers that the C functions answer; the values are part of the scan library's contract.
enum EError : long {
  eNotInitialized = -2,
  eBadHandle = -43,
  eBadValue = -44,
  eReadOnly = -47,
  eBadState = -50,
  eDisconnected = -60,
  eOpenFail = -61,
  eInternal = -101,
  eOutOfMemory = -102,
  eFileOpen = -200,
  eFileRead = -203,
  eUnknownName = -206,
  eBadPointer = -701,
  eTooSmall = -702
};

class ClSimError : public std::runtime_error {
 public:
  ClSimError(long nNumber, const std::string& sText) : std::runtime_error(sText), m_nNumber(nNumber) {}
  long Number() const noexcept { return m_nNumber; }

 private:
  long m_nNumber;
};

}  // namespace Simulator
