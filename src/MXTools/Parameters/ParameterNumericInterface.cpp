// The format that a numeric parameter prints with.
#include "MXTools/ParameterNumericInterface.h"

#include <cstring>
#include <string>

void ClParameterNumericInterface::SetFormat(const char* szFormat) {
  // The text is copied first, since it may be the one that New frees.
  const std::string szCopy(szFormat);
  m_aFormat.New(static_cast<unsigned int>(szCopy.size() + 1));
  std::memcpy(m_aFormat.Data(), szCopy.c_str(), szCopy.size() + 1);
}
