// The files that the service gives to browsers, which are compiled into the tool.
#pragma once

#include <string>

namespace Serve {

struct StWebFile {
  const char* szPath;
  const char* szType;
  const char* szBytes;
  size_t nBytes;
};

/// The file of a path; null when there is none.
const StWebFile* FindWebFile(const std::string& sPath);

}  // namespace Serve
