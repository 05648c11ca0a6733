// How the progress line is drawn.
#include "Progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

bool IsTerminal() {
  const char* szTerminal = std::getenv("TERM");
  const bool bDumb = szTerminal == nullptr || std::strcmp(szTerminal, "dumb") == 0;
  return isatty(STDERR_FILENO) == 1 && !bDumb;
}

bool ColorWanted() {
  const char* szNoColor = std::getenv("NO_COLOR");
  return szNoColor == nullptr || szNoColor[0] == '\0';
}

}  // namespace

unsigned int TerminalWidth() {
  constexpr unsigned int cnUsual = 80;
  winsize oSize{};
  for (const int nFile : {STDERR_FILENO, STDOUT_FILENO}) {
    if (ioctl(nFile, TIOCGWINSZ, &oSize) == 0 && oSize.ws_col != 0) return oSize.ws_col;
  }
  return cnUsual;
}

ClProgress::ClProgress() : m_bTerminal(IsTerminal()), m_bColor(ColorWanted()) {}

ClProgress::~ClProgress() {
  if (m_bShown) std::fputs("\r\033[K", stderr);
}

void ClProgress::Show(const std::string& sText) {
  if (!m_bTerminal) return;
  m_bShown = true;
  // A line that is longer would wrap, and could not be rewritten.
  const std::string sLine = sText.substr(0, TerminalWidth() - 1);
  std::fprintf(stderr, m_bColor ? "\r\033[K\033[36m%s\033[0m" : "\r\033[K%s", sLine.c_str());
  std::fflush(stderr);
}
