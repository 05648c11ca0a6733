// How results of variable size are handed to a caller.
#pragma once

namespace SDKHelper {

/// Copies nSource bytes into a buffer of *pnSize bytes and stores the needed size in *pnSize in every case. A
/// NULL pDest with room enough only asks for the size.
///
/// Threads  reentrant.
/// Errors   -24 pnSize NULL; -21 *pnSize below nSource.
void GetData(unsigned char* pDest, unsigned int* pnSize, const char* pSource, unsigned int nSource);

}  // namespace SDKHelper
