// The order of answers.
#include "play/Answers.h"

#include <algorithm>
#include <cstring>

#include "format/Functions.h"

namespace Recording {
namespace {

/// A call that failed because the room was too small; its argument after the output says what is needed.
bool IsTooSmall(const StCall& oCall) {
  const char* szRoles = FunctionRoles(oCall.nFunction);
  const char* szSize = std::strchr(szRoles, eRoleSize);
  if (szSize == nullptr || oCall.nResult == 0) return false;
  const auto nArgument = static_cast<size_t>(szSize - szRoles);
  return oCall.Number(nArgument, eGot, 0) > oCall.Number(nArgument, eGiven, 0);
}

}  // namespace

std::string QuestionOf(const StCall& oCall) {
  const char* szRoles = FunctionRoles(oCall.nFunction);
  const size_t nRoles = std::strlen(szRoles);
  std::string sQuestion = std::to_string(oCall.nFunction);
  for (const StField& oField : oCall.aFields) {
    const bool bRoom = oField.nArgument < nRoles && szRoles[oField.nArgument] == eRoleSize;
    if (oField.eDirection != eGiven || bRoom || oField.eType == eFieldData) continue;
    uint64_t nReal;
    std::memcpy(&nReal, &oField.dReal, sizeof nReal);
    sQuestion += '|' + std::to_string(oField.nArgument) + ':' + std::to_string(oField.nNumber) + ':' +
                 std::to_string(nReal) + ':' + oField.sBytes;
  }
  return sQuestion;
}

bool IsQuestion(uint16_t nFunction) {
  switch (nFunction) {
    case eVTScanAPIQueryDevices:
    case eVTScanAPIGetDeviceSerial:
    case eVTScanAPIGetVersion:
    case eVTScanAPIGetHandleSerial:
    case eVTScanAPIGetDeviceIndex:
    case eVTScanAPIGetPlugStatus:
    case eVTScanAPIListEPROMFile:
    case eVTScanAPIReadEPROMFile:
    case eVTScanAPIGetPropertyA:
    case eVTScanAPIGetPropertyW:
    case eVTScanAPIGetPropertyLongA:
    case eVTScanAPIGetPropertyDoubleA:
      return true;
    default:
      return false;
  }
}

void ClAnswers::Add(const StRecorded& oRecorded) {
  StQueue& oQueue = m_mapQueues[QuestionOf(*oRecorded.pCall)];
  if (IsTooSmall(*oRecorded.pCall)) {
    oQueue.pTooSmall = oRecorded.pCall;
  } else {
    oQueue.aCalls.push_back(oRecorded);
  }
}

const StCall* ClAnswers::Find(const StCall& oAsked, size_t nPosition) {
  const auto pFound = m_mapQueues.find(QuestionOf(oAsked));
  if (pFound == m_mapQueues.end()) return nullptr;
  StQueue& oQueue = pFound->second;
  if (oQueue.aCalls.empty()) return oQueue.pTooSmall;
  const size_t nLast = oQueue.aCalls.size() - 1;
  oQueue.nChosen = std::min(oQueue.nGiven, nLast);
  if (IsQuestion(oAsked.nFunction)) {
    // The calls after the last sequence that both the recording and the application have got so far.
    const auto Later = [](size_t n, const StRecorded& oRecorded) { return n < oRecorded.nAfter; };
    const auto pEnd = std::upper_bound(oQueue.aCalls.begin(), oQueue.aCalls.end(), nPosition, Later);
    if (pEnd == oQueue.aCalls.begin()) return oQueue.aCalls[oQueue.nChosen = 0].pCall;
    const auto pBegin = std::find_if(oQueue.aCalls.begin(), pEnd, [&](const StRecorded& oRecorded) {
      return oRecorded.nAfter == (pEnd - 1)->nAfter;
    });
    const auto nBegin = static_cast<size_t>(pBegin - oQueue.aCalls.begin());
    const auto nEnd = static_cast<size_t>(pEnd - oQueue.aCalls.begin());
    oQueue.nChosen = std::min(std::max(oQueue.nGiven, nBegin), nEnd - 1);
  }
  return oQueue.aCalls[oQueue.nChosen].pCall;
}

void ClAnswers::Take(const StCall& oAsked) {
  const auto pFound = m_mapQueues.find(QuestionOf(oAsked));
  if (pFound != m_mapQueues.end()) pFound->second.nGiven = pFound->second.nChosen + 1;
}

long ClAnswers::TooSmall(const StCall& oAsked, long nOtherwise) const {
  const auto pFound = m_mapQueues.find(QuestionOf(oAsked));
  if (pFound == m_mapQueues.end() || pFound->second.pTooSmall == nullptr) return nOtherwise;
  return static_cast<long>(pFound->second.pTooSmall->nResult);
}

}  // namespace Recording
