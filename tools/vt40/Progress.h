// The line that shows a person what the tool waits for.
#pragma once

#include <string>

/// The columns of the terminal; 80 where there is none.
unsigned int TerminalWidth();

/// Rewrites one line on the standard error when that is a terminal which can do so; silent otherwise, and
/// with TERM=dumb. The line is cut to the terminal's width. NO_COLOR is respected.
class ClProgress {
 public:
  ClProgress();
  ClProgress(const ClProgress&) = delete;
  ClProgress& operator=(const ClProgress&) = delete;
  /// Clears the line.
  ~ClProgress();

  void Show(const std::string& sText);

 private:
  bool m_bTerminal;
  bool m_bColor;
  bool m_bShown = false;
};
