// The size negotiation of results.
#include "MXTools/SDKHelper.h"

#include <cstring>

#include "MXTools/Exception.h"

namespace SDKHelper {

void GetData(unsigned char* pDest, unsigned int* pnSize, const char* pSource, unsigned int nSource) {
  if (pnSize == nullptr) KLV_RAISE_NUMBER(-24);
  const unsigned int nRoom = *pnSize;
  *pnSize = nSource;
  if (nRoom < nSource) KLV_RAISE_NUMBER(-21);
  if (pDest != nullptr) std::memcpy(pDest, pSource, nSource);
}

}  // namespace SDKHelper
