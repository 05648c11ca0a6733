// The character display, bus value by bus value.
#include <gtest/gtest.h>

#include "KelvarinVTScanAPI/CharacterDisplay.h"

namespace Simulator {
namespace {

constexpr int64_t cnEnough = 5000;  // microseconds

class CharacterDisplay : public testing::Test {
 protected:
  void Nibble(int nValue, bool bCharacter) {
    const int nSelect = bCharacter ? 2 : 0;
    for (const int nBus : {nSelect, nValue << 4 | 8 | nSelect, 0xF7})
      m_oDisplay.Write(static_cast<uint8_t>(nBus), m_nNow);
  }
  /// A byte in two halves, and the time after it.
  void Send(int nValue, bool bCharacter = false, int64_t nWait = cnEnough) {
    Nibble(nValue >> 4, bCharacter);
    Nibble(nValue & 15, bCharacter);
    m_nNow += nWait;
  }
  void Command(std::initializer_list<int> aCommands) {
    for (const int nCommand : aCommands) Send(nCommand);
  }
  void Text(const char* szText, int64_t nWait = cnEnough) {
    for (; *szText; ++szText) Send(*szText, true, nWait);
  }
  void Initialize() { Command({3, 3, 2, 0x28, 0x0C, 6, 2, 1}); }
  void ExpectLines(const std::string& sFirst, const std::string& sSecond) const {
    const auto Line = [](std::string s) { return s.append(16 - s.size(), ' '); };
    EXPECT_EQ(m_oDisplay.Line(0), Line(sFirst));
    EXPECT_EQ(m_oDisplay.Line(1), Line(sSecond));
  }

  ClCharacterDisplay m_oDisplay;
  int64_t m_nNow = 0;
};

TEST_F(CharacterDisplay, WakesUpFromAnyStateIntoFourWires) {
  Text("lost on eight wires");
  ExpectLines("", "");
  EXPECT_FALSE(m_oDisplay.On());
  const unsigned nLost = m_oDisplay.Lost();
  Initialize();
  Text("one");
  Command({0xC0});
  Text("two");
  ExpectLines("one", "two");
  EXPECT_EQ(m_oDisplay.Lost(), nLost);
  // After half a byte too many, bytes are put together of wrong halves until the host begins anew.
  Nibble(4, true);
  Initialize();
  Text("three");
  ExpectLines("three", "");
  EXPECT_TRUE(m_oDisplay.FourWires());
}

TEST_F(CharacterDisplay, WhatComesTooFastIsLostAndCounted) {
  Initialize();
  Text("abcd", 30);
  m_nNow += cnEnough;
  ExpectLines("ac", "");
  EXPECT_EQ(m_oDisplay.Lost(), 2u);
  Send(1, false, 1500);
  Text("ef", 41);
  ExpectLines("f", "");
  EXPECT_EQ(m_oDisplay.Lost(), 3u);
  m_oDisplay = ClCharacterDisplay();
  Send(3, false, 4000);
  Send(3, false, 4000);
  EXPECT_EQ(m_oDisplay.Lost(), 1u) << "the first command of all takes 4.1 ms";
}

TEST_F(CharacterDisplay, CommandsMoveCursorAndWindow) {
  Initialize();
  Text("0123456789ABCDEFGH");
  Command({0x18, 0x18});
  ExpectLines("23456789ABCDEFGH", "");
  Command({0x1C, 2, 0x14});
  Text("x");
  Command({0x10});
  Text("y");
  Command({0x80 + 39});
  Text("<>");
  Command({0xC0 + 3, 0x04});
  Text("cba");
  ExpectLines("0y23456789ABCDEF", ">abc");
  Command({0x06, 0x40});
  Text("shape");
  Command({0x08});
  ExpectLines("", "");
  Command({0x0C, 0x20});
  ExpectLines("0y23456789ABCDEF", "");
}

}  // namespace
}  // namespace Simulator
