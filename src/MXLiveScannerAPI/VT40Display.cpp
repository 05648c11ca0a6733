// Texts as nibbles on the bus of the display.
#include "MXLiveScannerAPI/VT40Display.h"

#include <algorithm>
#include <boost/thread/thread.hpp>

#include "MXTools/Exception.h"
#include "MXVTScanAPI/MXVTScanAPIHandleBase.h"

namespace {

constexpr unsigned int cnLineLength = 16;
/// Bits of the bus: data in the upper four, enable, and register select.
constexpr unsigned char cnEnable = 0x08;
constexpr unsigned char cnSelectCharacter = 0x02;
constexpr unsigned char cnIdle = 0xF7;

// Commands of the HD44780 instruction set, after the three writes that lead into its 4-bit mode.
constexpr unsigned char cnInitialize[] = {3, 3, 2, 0x28, 0x0C, 6, 2, 1};
constexpr unsigned char cnSecondLine = 0xC0;
/// The time that the display needs for its slowest command.
constexpr long cnPauseMs = 5;

void WriteBus(ClMXVTScanAPIHandleBase& oScanner, unsigned char nBus) {
  unsigned char aRegister[6] = {0, 0, 0, 0, 0, nBus};
  if (!oScanner.SetStatusLED(aRegister, sizeof(aRegister))) {
    KLV_RAISE(ClException, "Scanner disconnected.", -60);
  }
}

void WriteByte(ClMXVTScanAPIHandleBase& oScanner, unsigned char nValue, bool bCommand) {
  const unsigned char nSelect = bCommand ? 0 : cnSelectCharacter;
  WriteBus(oScanner, nSelect);
  WriteBus(oScanner, static_cast<unsigned char>((nValue & 0xF0) | cnEnable | nSelect));
  WriteBus(oScanner, cnIdle);
  WriteBus(oScanner, static_cast<unsigned char>((nValue << 4 & 0xF0) | cnEnable | nSelect));
  WriteBus(oScanner, cnIdle);
  boost::this_thread::sleep(boost::posix_time::milliseconds(cnPauseMs));
}

}  // namespace

void ClVT40Display::Write(ClMXVTScanAPIHandleBase& oScanner, unsigned int nType, const void* pData,
                          unsigned int nLength) {
  if (nType != 0) KLV_RAISE(ClException, "This type of data is not supported for display.", -103);
  if (pData == nullptr && nLength != 0) KLV_RAISE_NUMBER(-44);
  const unsigned char* pText = static_cast<const unsigned char*>(pData);
  TpLock oLock(m_oMutex);
  for (unsigned char nCommand : cnInitialize) WriteByte(oScanner, nCommand, true);
  unsigned int n = 0;
  for (; n < std::min(nLength, cnLineLength); ++n) WriteByte(oScanner, pText[n], false);
  WriteByte(oScanner, cnSecondLine, true);
  for (; n < std::min(nLength, 2 * cnLineLength); ++n) WriteByte(oScanner, pText[n], false);
}
