// Feeds what the fuzzer makes up, and before the fuzzer looks at the arguments writes a target's seeds or
// sweeps damage over them.
#include <cstring>
#include <fstream>

#include "FuzzTarget.h"
#include "Sweep.h"

namespace {

void WriteSeeds(const std::string& sFolder) {
  size_t nSeed = 0;
  for (const Bytes& aRaw : Seeds()) {
    const Bytes aSeed = Repaired != nullptr ? Repaired(aRaw) : aRaw;
    std::ofstream oFile(sFolder + "/seed-" + std::to_string(nSeed++), std::ios::binary);
    oFile.write(reinterpret_cast<const char*>(aSeed.data()), static_cast<std::streamsize>(aSeed.size()));
    oFile.close();
    if (!oFile) {
      std::fprintf(stderr, "can't write seeds into %s\n", sFolder.c_str());
      std::exit(1);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* pnArguments, char*** pppArguments) {
  char** ppArguments = *pppArguments;
  if (*pnArguments == 3 && std::strcmp(ppArguments[1], "--seeds") == 0) {
    WriteSeeds(ppArguments[2]);
  } else if (*pnArguments == 4 && std::strcmp(ppArguments[1], "--sweep") == 0) {
    const std::string sProgram = ppArguments[0];
    SweepSeeds(sProgram.substr(sProgram.rfind('/') + 1),
               static_cast<unsigned int>(std::strtoul(ppArguments[2], nullptr, 10)), ppArguments[3]);
  } else {
    return 0;
  }
  std::exit(0);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize) {
  Feed(Bytes(pData, pData + nSize));
  return 0;
}
