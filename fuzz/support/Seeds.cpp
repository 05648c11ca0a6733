// Feeds what the fuzzer makes up, and writes a target's seeds before the fuzzer looks at the arguments.
#include <cstring>
#include <fstream>

#include "FuzzTarget.h"

extern "C" int LLVMFuzzerInitialize(int* pnArguments, char*** pppArguments) {
  char** ppArguments = *pppArguments;
  if (*pnArguments != 3 || std::strcmp(ppArguments[1], "--seeds") != 0) return 0;
  const std::string sFolder = ppArguments[2];
  size_t nSeed = 0;
  for (const Bytes& aSeed : Seeds()) {
    std::ofstream oFile(sFolder + "/seed-" + std::to_string(nSeed++), std::ios::binary);
    oFile.write(reinterpret_cast<const char*>(aSeed.data()), static_cast<std::streamsize>(aSeed.size()));
    oFile.close();
    if (!oFile) {
      std::fprintf(stderr, "can't write seeds into %s\n", sFolder.c_str());
      std::exit(1);
    }
  }
  std::exit(0);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  Feed(Bytes(pData, pData + nSize));
  return 0;
}
