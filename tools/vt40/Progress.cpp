// How the progress line is drawn.
#include "Progress.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

bool ColorWanted() {
  const char* szNoColor = std::getenv("NO_COLOR");
  return szNoColor == nullptr || szNoColor[0] == '\0';
}

}  // namespace

ClProgress::ClProgress() : m_bTerminal(isatty(STDERR_FILENO) == 1), m_bColor(ColorWanted()) {}

ClProgress::~ClProgress() {
  if (m_bShown) std::fputs("\r\033[K", stderr);
}

void ClProgress::Show(const std::string& sText) {
  if (!m_bTerminal) return;
  m_bShown = true;
  std::fprintf(stderr, m_bColor ? "\r\033[K\033[36m%s\033[0m" : "\r\033[K%s", sText.c_str());
  std::fflush(stderr);
}
