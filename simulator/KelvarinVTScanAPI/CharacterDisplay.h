// The two-line character display of the scanner, which a host writes through four data wires.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace Simulator {

/// A controller with the HD44780 command set: 80 characters of memory of which a window of 16 columns shows,
/// on one line or two. It wakes up with eight data wires, of which only the upper four are connected, so that
/// each nibble is an instruction, until a host switches it to four. While an instruction is carried out,
/// others are lost.
///
/// Units      microseconds, from any moment on.
/// Threads    thread-bound.
class ClCharacterDisplay {
 public:
  static constexpr int nColumns = 16;
  static constexpr int nLines = 2;

  /// Takes a new value of the bus: bits 7 to 4 are data, bit 3 enables, bit 1 is set for characters and clear
  /// for commands. Data are taken when the enable line falls, as they stood before.
  void Write(uint8_t nBus, int64_t nMicroseconds);

  /// The characters that show, as codes; blanks while the display is off, and on a line that is switched off.
  std::string Line(int nLine) const;
  bool On() const noexcept { return m_bOn; }
  bool FourWires() const noexcept { return m_bFourWires; }
  /// Instructions that were carried out, and that were lost.
  unsigned Commands() const noexcept { return m_nCommands; }
  unsigned Characters() const noexcept { return m_nCharacters; }
  unsigned Lost() const noexcept { return m_nLost; }

 private:
  static constexpr int cnMemory = 80;

  void TakeNibble(uint8_t nNibble, bool bCharacter, int64_t nMicroseconds);
  void Execute(uint8_t nByte, bool bCharacter, int64_t nMicroseconds);
  /// Microseconds that the command takes.
  int64_t Command(uint8_t nCommand);
  int64_t SetFunction(uint8_t nCommand);
  void PutCharacter(uint8_t nCharacter);
  void Home();
  void MoveCursor(bool bRight);
  void MoveWindow(bool bRight);
  void SetAddress(uint8_t nAddress);
  static std::array<uint8_t, cnMemory> Blanks();

  uint8_t m_nBus = 0;
  bool m_bFourWires = false;
  bool m_bHalf = false;  // the upper half of a byte has arrived
  uint8_t m_nUpper = 0;
  int64_t m_nHalfTime = 0;
  bool m_bAwake = false;  // a host has set the number of wires
  int64_t m_nFree = INT64_MIN;
  std::array<uint8_t, cnMemory> m_anMemory = Blanks();  // line after line, 40 characters each
  int m_nCursor = 0;                                    // place in the memory
  int m_nWindow = 0;                                    // first column that shows
  bool m_bOn = false;
  bool m_bTwoLines = false;
  bool m_bForward = true;
  bool m_bWindowFollows = false;
  bool m_bOwnShapes = false;  // characters go to the memory of the shapes
  unsigned m_nCommands = 0, m_nCharacters = 0, m_nLost = 0;
};

}  // namespace Simulator
