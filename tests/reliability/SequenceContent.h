// What the bytes of a sequence stand for: scenes, arguments, failures; and which numbers are answers to them.
#pragma once

#include <string>

#include "Interface.h"

namespace Reliability {

// For any n; NULL where an argument is to be missing.
const std::string& SceneOf(unsigned n);
/// Whether that scene has no first scanner or another one, so that a handle of it is lost.
bool LosesFirst(unsigned n);
const char* SerialOf(bool bSecond);
const char* NameOf(unsigned n);
const char* TextOf(unsigned n);
double NumberOf(unsigned n);
int64_t WholeOf(unsigned n, const Interface::StType& oType);
unsigned SizeOf(unsigned n);
size_t ImageBytesOf(const std::string& sFunction);

// What is made to fail, and with which number.
const char* ScanFunctionOf(unsigned n);
const char* LivenessFunctionOf(unsigned n);
const char* EpromFileOf(unsigned n);
long FailureOf(unsigned n);

/// Whether the function may return the number: one of its own, one of its arguments', one that memory comes
/// to, or where it passes on the scan library's, one that was ordered or that the simulated scanner has.
bool IsDocumented(const Interface::StFunction& oFunction, long nNumber);

/// Ends the process when a rule is broken, which fuzzer and gate take for a crash.
void Require(bool bHolds, const std::string& sRule);

}  // namespace Reliability
