// A call of an exported function whose buffers all end at protected pages.
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "GuardedRoom.h"
#include "Interface.h"

namespace Interface {

/// The arguments of one call, each buffer with its end at a protected page. They are good until one is
/// changed.
class ClGuardedCall {
 public:
  /// nSize is the room, or the count of bytes, where the function takes one.
  ClGuardedCall(const StFunction& oFunction, void* h, size_t nSize, size_t nImage) : m_oFunction(oFunction) {
    for (size_t n = 0; n < oFunction.aArguments.size(); ++n) {
      const StArgument& oArgument = oFunction.aArguments[n];
      const StType& oType = oFunction.aTypes[n];
      m_aValues.push_back({});
      m_aRooms.emplace_back();
      StValue& rValue = m_aValues.back();
      switch (oArgument.eRole) {
        case eHandle:
          rValue.p = h;
          break;
        case eClose:
          Give(n, sizeof(void*));
          SetHandleAt(n, nullptr);
          break;
        case eIn:
          SetText(n, GoodText());
          break;
        case eName:
          SetText(n, IsDouble() ? "dSignatureDetectTime" : "nAutoCaptureBeep");
          break;
        case eOut:
          Give(n, oType.nPointee);
          break;
        case eSerial:
          Give(n, KLV_VT40_SERIAL_SIZE);
          break;
        case eImage:
          Give(n, nImage);
          break;
        case eRoom:
          Give(n, nSize);
          break;
        case eCells:
          Give(n, nSize * KLV_VT40_SERIAL_SIZE);
          break;
        case eSize:
          SetSize(n, static_cast<unsigned int>(nSize));
          break;
        case eData:
          Give(n, nSize);
          break;
        case eCount:
          rValue.n = static_cast<int64_t>(nSize);
          break;
        case eRange:
          rValue.n = oArgument.nLow;
          break;
        case eValue:
          rValue.n = 1;
          rValue.d = 1.0;
          break;
        case eUnread:
          Give(n, 0);
          break;
      }
    }
  }

  void Set(size_t n, void* p) { m_aValues[n].p = p; }
  void Set(size_t n, int64_t nValue) { m_aValues[n].n = nValue; }
  void Set(size_t n, double dValue) { m_aValues[n].d = dValue; }
  void SetText(size_t n, const std::string& sText) {
    m_aRooms[n] = std::make_unique<ClGuardedRoom>(sText);
    m_aValues[n].p = m_aRooms[n]->Data();
  }
  void SetHandleAt(size_t n, void* h) { std::memcpy(m_aRooms[n]->Data(), &h, sizeof(h)); }
  void SetSize(size_t n, unsigned int nSize) {
    Give(n, sizeof(nSize));
    std::memcpy(m_aRooms[n]->Data(), &nSize, sizeof(nSize));
  }
  unsigned int SizeAt(size_t n) const {
    unsigned int nSize = 0;
    std::memcpy(&nSize, m_aRooms[n]->Data(), sizeof(nSize));
    return nSize;
  }

  void* HandleAt(size_t n) const {
    void* h = nullptr;
    std::memcpy(&h, m_aRooms[n]->Data(), sizeof(h));
    return h;
  }

  long Make() { return m_oFunction.fnCall(m_aValues); }

  /// Nothing was written before a buffer, and after a failure nothing into one.
  bool LeftAlone(bool bFailed) const {
    for (size_t n = 0; n < m_aRooms.size(); ++n) {
      if (!m_aRooms[n]) continue;
      const ERole eRole = m_oFunction.aArguments[n].eRole;
      const bool bOut =
          eRole == eOut || eRole == eSerial || eRole == eImage || eRole == eRoom || eRole == eCells;
      // An opening that has found its scanner stores NULL, a property that is not there leaves an empty text.
      const bool bStores =
          m_oFunction.sName == "LS_VT40OpenScanner" || m_oFunction.sName == "LS_VT40GetPropertyA";
      if (!m_aRooms[n]->Intact()) return false;
      if (bFailed && bOut && !bStores && !m_aRooms[n]->Untouched()) return false;
    }
    return true;
  }

 private:
  bool IsDouble() const { return m_oFunction.sName.find("PropertyDouble") != std::string::npos; }
  std::string GoodText() const {
    if (m_oFunction.sName == "LS_VT40CompatibilityCheck") return "2.0";
    return m_oFunction.sName == "LS_VT40OpenScanner" ? "VT40-AB0001" : "1";
  }
  void Give(size_t n, size_t nBytes) {
    m_aRooms[n] = std::make_unique<ClGuardedRoom>(nBytes);
    m_aValues[n].p = m_aRooms[n]->Data();
  }

  const StFunction& m_oFunction;
  Values m_aValues;
  std::vector<std::unique_ptr<ClGuardedRoom>> m_aRooms;
};

}  // namespace Interface
