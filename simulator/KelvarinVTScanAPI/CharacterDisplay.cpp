// The two-line character display of the scanner, which a host writes through four data wires.
#include "KelvarinVTScanAPI/CharacterDisplay.h"

#include <algorithm>

namespace Simulator {
namespace {

constexpr uint8_t cnEnable = 0x08;
constexpr uint8_t cnSelectCharacter = 0x02;
constexpr int cnLineMemory = 40;
constexpr uint8_t cnSecondLine = 0x40;  // its address

// How long the controller is busy, in microseconds.
constexpr int64_t cnClearTime = 1520;
constexpr int64_t cnCommandTime = 37;
constexpr int64_t cnCharacterTime = 41;
constexpr int64_t cnWakeTime = 4100;

}  // namespace

std::array<uint8_t, ClCharacterDisplay::cnMemory> ClCharacterDisplay::Blanks() {
  std::array<uint8_t, cnMemory> anMemory;
  anMemory.fill(' ');
  return anMemory;
}

void ClCharacterDisplay::Write(uint8_t nBus, int64_t nMicroseconds) {
  const bool bFalls = (m_nBus & cnEnable) != 0 && (nBus & cnEnable) == 0;
  const uint8_t nBefore = m_nBus;
  m_nBus = nBus;
  if (bFalls)
    TakeNibble(static_cast<uint8_t>(nBefore >> 4), (nBefore & cnSelectCharacter) != 0, nMicroseconds);
}

void ClCharacterDisplay::TakeNibble(uint8_t nNibble, bool bCharacter, int64_t nMicroseconds) {
  if (!m_bFourWires) {
    Execute(static_cast<uint8_t>(nNibble << 4), bCharacter, nMicroseconds);
  } else if (!m_bHalf) {
    m_bHalf = true;
    m_nUpper = nNibble;
    m_nHalfTime = nMicroseconds;
  } else {
    m_bHalf = false;
    Execute(static_cast<uint8_t>(m_nUpper << 4 | nNibble), bCharacter, m_nHalfTime);
  }
}

void ClCharacterDisplay::Execute(uint8_t nByte, bool bCharacter, int64_t nMicroseconds) {
  // A command without a bit does nothing.
  if (nByte == 0 && !bCharacter) return;
  if (nMicroseconds < m_nFree) {
    ++m_nLost;
    return;
  }
  int64_t nTime = cnCharacterTime;
  if (bCharacter) {
    PutCharacter(nByte);
    ++m_nCharacters;
  } else {
    nTime = Command(nByte);
    ++m_nCommands;
  }
  m_nFree = nMicroseconds + nTime;
}

/// The highest bit that is set names the command.
int64_t ClCharacterDisplay::Command(uint8_t nCommand) {
  if (nCommand & 0x80) {
    SetAddress(nCommand & 0x7F);
  } else if (nCommand & 0x40) {
    m_bOwnShapes = true;
  } else if (nCommand & 0x20) {
    return SetFunction(nCommand);
  } else if (nCommand & 0x10) {
    const bool bRight = (nCommand & 0x04) != 0;
    if (nCommand & 0x08)
      MoveWindow(bRight);
    else
      MoveCursor(bRight);
  } else if (nCommand & 0x08) {
    m_bOn = (nCommand & 0x04) != 0;
  } else if (nCommand & 0x04) {
    m_bForward = (nCommand & 0x02) != 0;
    m_bWindowFollows = (nCommand & 0x01) != 0;
  } else {
    Home();
    if (nCommand & 0x02) return cnClearTime;
    m_anMemory = Blanks();
    m_bForward = true;
    return cnClearTime;
  }
  return cnCommandTime;
}

int64_t ClCharacterDisplay::SetFunction(uint8_t nCommand) {
  m_bFourWires = (nCommand & 0x10) == 0;
  m_bTwoLines = (nCommand & 0x08) != 0;
  m_bHalf = false;
  const bool bFirst = !m_bAwake;
  m_bAwake = true;
  return bFirst ? cnWakeTime : cnCommandTime;
}

void ClCharacterDisplay::PutCharacter(uint8_t nCharacter) {
  if (m_bOwnShapes) return;
  m_anMemory[static_cast<size_t>(m_nCursor)] = nCharacter;
  MoveCursor(m_bForward);
  if (m_bWindowFollows) MoveWindow(!m_bForward);
}

void ClCharacterDisplay::Home() {
  m_nCursor = 0;
  m_nWindow = 0;
  m_bOwnShapes = false;
}

void ClCharacterDisplay::MoveCursor(bool bRight) {
  m_nCursor = (m_nCursor + (bRight ? 1 : cnMemory - 1)) % cnMemory;
}

/// The picture moves to the right when the window moves to the left.
void ClCharacterDisplay::MoveWindow(bool bRight) {
  const int nWidth = m_bTwoLines ? cnLineMemory : cnMemory;
  m_nWindow = (m_nWindow + (bRight ? nWidth - 1 : 1)) % nWidth;
}

/// The lines follow one another in the memory but not in the addresses. An address beyond a line stands for
/// its last character.
void ClCharacterDisplay::SetAddress(uint8_t nAddress) {
  m_bOwnShapes = false;
  if (!m_bTwoLines)
    m_nCursor = std::min<int>(nAddress, cnMemory - 1);
  else if (nAddress < cnSecondLine)
    m_nCursor = std::min<int>(nAddress, cnLineMemory - 1);
  else
    m_nCursor = cnLineMemory + std::min(nAddress - cnSecondLine, cnLineMemory - 1);
}

std::string ClCharacterDisplay::Line(int nLine) const {
  std::string sLine(nColumns, ' ');
  if (!m_bOn || (nLine == 1 && !m_bTwoLines)) return sLine;
  const int nWidth = m_bTwoLines ? cnLineMemory : cnMemory;
  for (int i = 0; i < nColumns; ++i) {
    const int nPlace = nLine * cnLineMemory + (m_nWindow + i) % nWidth;
    sLine[static_cast<size_t>(i)] = static_cast<char>(m_anMemory[static_cast<size_t>(nPlace)]);
  }
  return sLine;
}

}  // namespace Simulator
