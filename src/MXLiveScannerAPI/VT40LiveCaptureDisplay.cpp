// The two-line character display, whose pins hang on the last byte of the status LED register.
#include <algorithm>

#include "MXLiveScannerAPI/VT40LiveCapture.h"
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

}  // namespace

void ClVT40LiveCapture::SetDisplayData(unsigned int nType, void* pData, unsigned int nLength) {
  if (nType != 0) KLV_RAISE(ClException, "This type of data is not supported for display.", -103);
  if (pData == nullptr && nLength != 0) KLV_RAISE_NUMBER(-44);
  const unsigned char* pText = static_cast<const unsigned char*>(pData);
  Lock oDisplayLock(m_oDisplayMutex);
  for (unsigned char nCommand : cnInitialize) WriteLCD(nCommand, true);
  unsigned int n = 0;
  for (; n < std::min(nLength, cnLineLength); ++n) WriteLCD(pText[n], false);
  WriteLCD(cnSecondLine, true);
  for (; n < std::min(nLength, 2 * cnLineLength); ++n) WriteLCD(pText[n], false);
}

void ClVT40LiveCapture::WriteLCD(unsigned char nValue, bool bCommand) {
  const unsigned char nSelect = bCommand ? 0 : cnSelectCharacter;
  WriteLCDBus(nSelect);
  WriteLCDBus(static_cast<unsigned char>((nValue & 0xF0) | cnEnable | nSelect));
  WriteLCDBus(cnIdle);
  WriteLCDBus(static_cast<unsigned char>((nValue << 4 & 0xF0) | cnEnable | nSelect));
  WriteLCDBus(cnIdle);
  boost::this_thread::sleep(boost::posix_time::milliseconds(5));
}

void ClVT40LiveCapture::WriteLCDBus(unsigned char nBus) {
  unsigned char aRegister[6] = {0, 0, 0, 0, 0, nBus};
  if (!m_pScanner->SetStatusLED(aRegister, sizeof(aRegister))) {
    KLV_RAISE(ClException, "Scanner disconnected.", -60);
  }
}
