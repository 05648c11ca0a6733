// Which files are read at all.
#pragma once

#include <filesystem>
#include <string>

#include "scene/SimError.h"

namespace Simulator {

/// Refuses devices, pipes and folders before they are opened: they may never end, or never begin.
///
/// Domain     a path that leads nowhere passes; opening it gives the reason.
/// Errors     -203; the text begins with sWhat, which names the file.
inline void NeedRegularFile(const std::string& sPath, const std::string& sWhat) {
  std::error_code oError;
  const std::filesystem::file_status oStatus = std::filesystem::status(sPath, oError);
  if (std::filesystem::exists(oStatus) && !std::filesystem::is_regular_file(oStatus))
    throw ClSimError(eFileRead, sWhat + " is no regular file");
}

}  // namespace Simulator
