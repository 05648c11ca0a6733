// One call of an application: answered as it was when it was recorded.
#pragma once

#include <cstring>

#include "format/Arguments.h"
#include "play/Player.h"

namespace Recording {

/// The player of the file that the environment names, which is read once.
///
/// Errors  ClPlayError -200.
ClPlayer& ThePlayer();

/// The recorded text of an error number, or one that says that there is none. Valid for good.
const char* RecordedText(uint16_t nFunction, long nError);
const wchar_t* RecordedTextWide(uint16_t nFunction, long nError);

/// Keeps the reason of this thread's last refusal, and says it once for each text on the standard error when
/// it is about what the recording has not.
void NoteRefusal(const ClPlayError& oError) noexcept;
const char* LastRefusal() noexcept;

/// Runs an operation and returns its number, or that of its failure.
template <typename F>
long Played(F&& fnOperation) noexcept {
  try {
    return fnOperation();
  } catch (const ClPlayError& oError) {
    NoteRefusal(oError);
    return oError.Number();
  } catch (const std::bad_alloc&) {
    return ePlayOutOfMemory;
  } catch (...) {
    return ePlayInternal;
  }
}

/// The characters of a text in UTF-8; what is none becomes a question mark.
std::wstring Widen(const std::vector<uint8_t>& aText);

/// Hands out what a recorded call returned, argument after argument.
///
/// Errors  ClPlayError.
class ClAnswerArguments {
 public:
  ClAnswerArguments(const ClPlayer& oPlayer, const StCall& oAnswer, long nTooSmall)
      : m_oPlayer(oPlayer),
        m_oAnswer(oAnswer),
        m_szRoles(FunctionRoles(oAnswer.nFunction)),
        m_nTooSmall(nTooSmall) {}

  /// The number that the application gets.
  template <typename... TArguments>
  long Give(TArguments... aArguments) {
    m_nResult = static_cast<long>(m_oAnswer.nResult);
    [[maybe_unused]] size_t n = 0;
    (GiveOne(n++, aArguments), ...);
    return m_nResult;
  }
  bool DidNotFit() const { return m_bDidNotFit; }

 private:
  void Returned(size_t n, double* p) {
    const StField* pField = m_oAnswer.Find(n, eGot);
    *p = pField != nullptr ? pField->dReal : 0.0;
  }
  template <typename T>
  void Returned(size_t n, T* p) {
    if constexpr (std::is_integral_v<T>) *p = static_cast<T>(m_oAnswer.Number(n, eGot, 0));
  }

  template <typename T>
  void Fit(const T* pContent, size_t nCount) {
    const size_t nRoom = *m_pnSize;
    *m_pnSize = static_cast<unsigned int>(nCount);
    m_bDidNotFit = nRoom < nCount;
    if (m_bDidNotFit) {
      m_nResult = m_nTooSmall;
    } else if (nCount > 0 && m_pOutput == nullptr) {
      m_nResult = ePlayBadPointer;
    } else if (nCount > 0) {
      std::memcpy(m_pOutput, pContent, nCount * sizeof(T));
    }
  }

  /// The output's type decides what its content is; it was an argument before.
  void Size(size_t nOutput, unsigned int* pnSize) {
    m_pnSize = pnSize;
    const int64_t nNeed = m_oAnswer.Number(nOutput + 1, eGot, 0);
    if (m_oAnswer.nResult != 0) {
      *pnSize = static_cast<unsigned int>(nNeed);
      return;
    }
    const StField* pField = m_oAnswer.Find(nOutput, eGot);
    if (pField == nullptr && nNeed != 0)
      throw ClPlayError(ePlayNotRecorded, "the recording lacks an answer's content");
    const std::vector<uint8_t> aContent =
        pField != nullptr ? m_oPlayer.Content(*pField) : std::vector<uint8_t>();
    if (m_eOutput == eText) {
      const std::string sText(aContent.begin(), aContent.end());
      Fit(sText.c_str(), sText.size() + 1);
    } else if (m_eOutput == eWideText) {
      const std::wstring wsText = Widen(aContent);
      Fit(wsText.c_str(), wsText.size() + 1);
    } else if (m_eOutput == eNumbers) {
      Fit(reinterpret_cast<const unsigned int*>(aContent.data()), aContent.size() / sizeof(unsigned int));
    } else {
      Fit(aContent.data(), aContent.size());
    }
  }

  template <typename T>
  void GiveOne(size_t n, T oArgument) {
    if constexpr (std::is_pointer_v<T>) {
      using Pointed = std::remove_pointer_t<T>;
      const char cRole = m_szRoles[n];
      if constexpr (!std::is_const_v<Pointed>) {
        if (cRole == eRoleReturned && m_oAnswer.nResult == 0) {
          if (oArgument == nullptr) throw ClPlayError(ePlayBadPointer, "a pointer is NULL");
          Returned(n, oArgument);
        }
        if (cRole == eRoleOutput) {
          m_pOutput = oArgument;
          m_eOutput = std::is_same_v<Pointed, char>           ? eText
                      : std::is_same_v<Pointed, wchar_t>      ? eWideText
                      : std::is_same_v<Pointed, unsigned int> ? eNumbers
                                                              : eBytes;
        }
        if constexpr (std::is_same_v<Pointed, unsigned int>) {
          if (cRole != eRoleSize) return;
          if (oArgument == nullptr) throw ClPlayError(ePlayBadPointer, "a size is NULL");
          Size(n - 1, oArgument);
        }
      }
    }
  }

  const ClPlayer& m_oPlayer;
  const StCall& m_oAnswer;
  const char* const m_szRoles;
  const long m_nTooSmall;
  long m_nResult = 0;
  bool m_bDidNotFit = false;
  void* m_pOutput = nullptr;
  unsigned int* m_pnSize = nullptr;
  enum { eText, eWideText, eNumbers, eBytes } m_eOutput = eBytes;
};

/// The call as a recording would hold it.
template <typename... TArguments>
StCall AskedCall(uint16_t nFunction, TArguments... aArguments) {
  ClCallRecord oRecord(nFunction);
  ClGivenArguments(oRecord, FunctionRoles(nFunction), false).Add(aArguments...);
  oRecord.SetHead(0, 0, 0, 0, 0);
  const uint8_t* pBytes = oRecord.Bytes();
  return ParseCall({pBytes, pBytes + oRecord.Size()});
}

/// How function nFunction is answered: as it was when it was recorded, but for the functions that specialise
/// this.
template <uint16_t nFunction>
struct TpPlay {
  template <typename... TArguments>
  static long Answer(ClPlayer& oPlayer, void* hDevice, TArguments... aArguments) {
    const StCall oAsked = AskedCall(nFunction, aArguments...);
    const StCall& oAnswer = oPlayer.Answer(hDevice, oAsked, false);
    ClAnswerArguments oGot(oPlayer, oAnswer, oPlayer.TooSmall(hDevice, oAsked));
    const long nResult = oGot.Give(aArguments...);
    // Who asks for the size first gets the content next.
    if (!oGot.DidNotFit()) oPlayer.Take(hDevice, oAsked);
    return nResult;
  }
};

/// A call that changes something of which the recording does not depend: without a recorded answer it
/// succeeds.
template <uint16_t nFunction>
struct TpPlayFreely {
  template <typename... TArguments>
  static long Answer(ClPlayer& oPlayer, void* hDevice, TArguments... aArguments) {
    const StCall oAsked = AskedCall(nFunction, aArguments...);
    try {
      return static_cast<long>(oPlayer.Answer(hDevice, oAsked, true).nResult);
    } catch (const ClPlayError& oError) {
      if (oError.Number() != ePlayNotRecorded) throw;
      return 0;
    }
  }
};

/// Answers a row of the tables.
template <uint16_t nFunction, typename TResult>
struct TpPlayed {
  template <typename... TArguments>
  TResult operator()(TArguments... aArguments) const {
    if constexpr (std::is_same_v<TResult, long>) {
      return Played(
          [&] { return TpPlay<nFunction>::Answer(ThePlayer(), Device(aArguments...), aArguments...); });
    } else if constexpr (std::is_same_v<std::remove_cv_t<std::remove_pointer_t<TResult>>, char>) {
      return const_cast<TResult>(RecordedText(nFunction, aArguments...));
    } else {
      return const_cast<TResult>(RecordedTextWide(nFunction, aArguments...));
    }
  }

 private:
  template <typename... TArguments>
  static void* Device([[maybe_unused]] TArguments... aArguments) {
    if (FunctionRoles(nFunction)[0] != eRoleHandle) return nullptr;
    void* hDevice = nullptr;
    [[maybe_unused]] bool bFirst = true;
    ((bFirst ? Take(hDevice, aArguments) : void(), bFirst = false), ...);
    // NULL stands for no device where answers are looked up; as a handle it is none that is open.
    if (hDevice == nullptr) throw ClPlayError(ePlayBadHandle, "the handle is NULL");
    return hDevice;
  }
  static void Take(void*& hDevice, void* hArgument) { hDevice = hArgument; }
  template <typename T>
  static void Take(void*&, T) {}
};

}  // namespace Recording

/// The exported function of a row of the tables.
#define KLV_EXPORT_PLAYED(Number, Name, Result, Parameters, Arguments, Roles) \
  extern "C" __attribute__((visibility("default"))) Result Name Parameters {  \
    return Recording::TpPlayed<Number, Result>() Arguments;                   \
  }
