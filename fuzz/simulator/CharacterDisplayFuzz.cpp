// Feeds bus bytes and pauses to the character display: whatever a host writes, both lines can be read.
#include "FuzzTarget.h"
#include "KelvarinVTScanAPI/CharacterDisplay.h"

namespace {

using Simulator::ClCharacterDisplay;

constexpr uint8_t cnEnable = 0x08;
constexpr uint8_t cnCharacter = 0x02;

/// A nibble as a host writes it: enabled, then not, each with a pause behind it.
void PutNibble(Bytes& rOut, unsigned int nNibble, uint8_t nKind) {
  const auto nBus = static_cast<uint8_t>(nNibble << 4 | nKind);
  rOut.insert(rOut.end(), {static_cast<uint8_t>(nBus | cnEnable), 1, nBus, 250});
}

}  // namespace

std::vector<Bytes> Seeds() {
  Bytes aSeed;
  for (const unsigned int nNibble : {3u, 3u, 3u, 2u}) PutNibble(aSeed, nNibble, 0);
  for (const unsigned int nCommand : {0x28u, 0x0Cu, 0x06u, 0x01u, 0xC0u, 0x14u, 0x1Cu, 0x41u, 0x80u}) {
    PutNibble(aSeed, nCommand >> 4, 0);
    PutNibble(aSeed, nCommand & 15, 0);
  }
  for (const char cLetter : {'K', 'l', 'v'}) {
    PutNibble(aSeed, static_cast<unsigned int>(cLetter) >> 4, cnCharacter);
    PutNibble(aSeed, static_cast<unsigned int>(cLetter) & 15, cnCharacter);
  }
  return {aSeed};
}

void Feed(const Bytes& aInput) {
  ClFuzzInput oInput(aInput);
  ClCharacterDisplay oDisplay;
  int64_t nMicroseconds = 0;
  while (!oInput.IsEmpty()) {
    oDisplay.Write(static_cast<uint8_t>(oInput.Byte()), nMicroseconds);
    nMicroseconds += oInput.Byte() * 20;
    for (int nLine = 0; nLine < ClCharacterDisplay::nLines; ++nLine)
      Require(oDisplay.Line(nLine).size() == ClCharacterDisplay::nColumns, "a line has all its columns");
  }
}
