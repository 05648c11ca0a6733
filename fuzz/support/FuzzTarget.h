// What the fuzz targets share: their seeds, rules that must hold, and inputs that are cut into portions.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

/// Inputs from which fuzzing sets out; each target defines it. `TARGET --seeds FOLDER` writes them.
std::vector<Bytes> Seeds();
/// Takes one input; each target defines it too.
void Feed(const Bytes& aInput);
/// An input with its checksums put right as far as its structure leads. Targets of such inputs define it and
/// name it in their klv_fuzz (REPAIRS); in others it is NULL.
__attribute__((weak)) Bytes Repaired(const Bytes& aInput);

inline Bytes BytesOf(const std::string& sText) {
  return Bytes(sText.begin(), sText.end());
}

/// The same with a zero, which ends a text of an input, in place of each cEnd.
inline Bytes BytesOf(std::string sText, char cEnd) {
  std::replace(sText.begin(), sText.end(), cEnd, '\0');
  return BytesOf(sText);
}

/// Ends the process when a rule is broken, which the fuzzer takes for a crash.
inline void Require(bool bHolds, const char* szRule) {
  if (bHolds) return;
  std::fprintf(stderr, "broken rule: %s\n", szRule);
  std::abort();
}

/// Whether the call refuses with a TRefusal; what else comes out of it is a fault.
template <typename TRefusal, typename TCall>
bool RefusedWith(TCall&& fnCall) {
  try {
    fnCall();
  } catch (const TRefusal&) {
    return true;
  }
  return false;
}

/// Reads one input, which outlives it, from its first byte to its last; after its end there are zeros.
class ClFuzzInput {
 public:
  explicit ClFuzzInput(const Bytes& aInput) : m_pData(aInput.data()), m_nLeft(aInput.size()) {}

  bool IsEmpty() const { return m_nLeft == 0; }
  unsigned int Byte() {
    if (m_nLeft == 0) return 0;
    --m_nLeft;
    return *m_pData++;
  }
  /// A block as long as the two bytes before it say, or all that is left.
  Bytes Block() {
    const size_t nSize = Byte();
    return Take(nSize | static_cast<size_t>(Byte()) << 8);
  }
  Bytes Rest() { return Take(m_nLeft); }
  /// Up to the next zero, which no text holds, or to the end.
  std::string Text() {
    const uint8_t* pEnd = std::find(m_pData, m_pData + m_nLeft, uint8_t{0});
    const Bytes aText = Take(static_cast<size_t>(pEnd - m_pData));
    Byte();
    return std::string(aText.begin(), aText.end());
  }

  /// The form of a block in a seed.
  static void PutBlock(Bytes& rOut, const Bytes& aBlock) {
    rOut.push_back(static_cast<uint8_t>(aBlock.size()));
    rOut.push_back(static_cast<uint8_t>(aBlock.size() >> 8));
    rOut.insert(rOut.end(), aBlock.begin(), aBlock.end());
  }

 private:
  Bytes Take(size_t nWanted) {
    const size_t nSize = std::min(nWanted, m_nLeft);
    const Bytes aTaken(m_pData, m_pData + nSize);
    m_pData += nSize;
    m_nLeft -= nSize;
    return aTaken;
  }

  const uint8_t* m_pData;
  size_t m_nLeft;
};
