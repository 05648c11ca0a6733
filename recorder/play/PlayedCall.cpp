// Refusals, texts, and the one player of a library.
#include "play/PlayedCall.h"

#include <cstdio>
#include <map>
#include <set>

namespace Recording {
namespace {

thread_local char s_szRefusal[512] = "";

/// Texts that were handed out are never given back.
template <typename TText>
const typename TText::value_type* Keep(const TText& oText) {
  static std::mutex s_oMutex;
  static auto& s_aTexts = *new std::set<TText>;
  const std::lock_guard<std::mutex> oLock(s_oMutex);
  return s_aTexts.insert(oText).first->c_str();
}

std::vector<uint8_t> TextOf(uint16_t nFunction, long nError) {
  try {
    ClPlayer& oPlayer = ThePlayer();
    const StField* pText = oPlayer.Answer(nullptr, AskedCall(nFunction, nError), true).Find(1, eGot);
    if (pText != nullptr) return oPlayer.Content(*pText);
  } catch (const std::exception&) {
    // The recording has no text of this number.
  }
  const std::string sText = "error " + std::to_string(nError) + ", of which the recording has no text";
  return {sText.begin(), sText.end()};
}

}  // namespace

ClPlayer& ThePlayer() {
  try {
    static ClPlayer& s_oPlayer = *new ClPlayer(StPlayerSettings::OfEnvironment());
    return s_oPlayer;
  } catch (const ClRecordingError& oError) {
    throw ClPlayError(ePlayNoFile, oError.what());
  }
}

void NoteRefusal(const ClPlayError& oError) noexcept {
  std::snprintf(s_szRefusal, sizeof s_szRefusal, "%s", oError.what());
  // Closed devices and ended captures are the daily end of a worker's wait.
  if (oError.Number() == ePlayBadHandle || oError.Number() == ePlayBadState ||
      oError.Number() == ePlayTooSmall)
    return;
  try {
    static std::mutex s_oMutex;
    static auto& s_aSaid = *new std::set<std::string>;
    const std::lock_guard<std::mutex> oLock(s_oMutex);
    if (s_aSaid.size() < 20 && s_aSaid.insert(s_szRefusal).second)
      std::fprintf(stderr, "vt40 player: %s\n", s_szRefusal);
  } catch (...) {
    // The number is all that is left to be said.
  }
}

const char* LastRefusal() noexcept {
  return s_szRefusal;
}

std::wstring Widen(const std::vector<uint8_t>& aText) {
  std::wstring wsText;
  for (size_t i = 0; i < aText.size();) {
    const uint8_t nFirst = aText[i++];
    const int nMore = nFirst < 0x80 ? 0 : nFirst >= 0xF0 ? 3 : nFirst >= 0xE0 ? 2 : nFirst >= 0xC0 ? 1 : -1;
    uint32_t nCharacter = nMore <= 0 ? nFirst : nFirst & (0x3FU >> nMore);
    bool bGood = nMore >= 0;
    for (int k = 0; bGood && k < nMore; ++k) {
      bGood = i < aText.size() && (aText[i] & 0xC0) == 0x80;
      if (bGood) nCharacter = nCharacter << 6 | (aText[i++] & 0x3FU);
    }
    wsText += bGood ? static_cast<wchar_t>(nCharacter) : L'?';
  }
  return wsText;
}

const char* RecordedText(uint16_t nFunction, long nError) {
  const std::vector<uint8_t> aText = TextOf(nFunction, nError);
  return Keep(std::string(aText.begin(), aText.end()));
}

const wchar_t* RecordedTextWide(uint16_t nFunction, long nError) {
  return Keep(Widen(TextOf(nFunction, nError)));
}

}  // namespace Recording
