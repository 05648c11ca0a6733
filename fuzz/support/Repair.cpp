// The mutator of targets whose inputs carry checksums: most changes put them right, so that the fuzzer gets
// beyond them; some leave them wrong.
#include <algorithm>

#include "FuzzTarget.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* pData, size_t nSize, size_t nRoom);

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* pData, size_t nSize, size_t nRoom, unsigned int nSeed) {
  nSize = LLVMFuzzerMutate(pData, nSize, nRoom);
  if (nSeed % 16 == 0) return nSize;
  const Bytes aRight = Repaired(Bytes(pData, pData + nSize));
  nSize = std::min(aRight.size(), nRoom);
  std::copy_n(aRight.begin(), nSize, pData);
  return nSize;
}
