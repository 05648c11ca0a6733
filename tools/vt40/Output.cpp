// Results are written past stdio, so that a failure shows at once and at the right place.
#include "Output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "ToolError.h"

namespace {

/// A standard output that was closed by whoever started the tool is an open place, in which the next file
/// that is opened would land.
int TakeStandardOutput() {
  if (fcntl(STDOUT_FILENO, F_GETFD) != -1) return fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
  const int nNothing = open("/dev/null", O_WRONLY);
  if (nNothing != STDOUT_FILENO && nNothing != -1) {
    dup2(nNothing, STDOUT_FILENO);
    close(nNothing);
  }
  return -1;
}

std::string TextOf(const nlohmann::ordered_json& oJson, int nIndent) {
  return oJson.dump(nIndent, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

}  // namespace

ClOutput::ClOutput(EForm eForm) : m_eForm(eForm), m_nFile(TakeStandardOutput()) {
  std::signal(SIGPIPE, SIG_IGN);
  if (IsJson()) dup2(STDERR_FILENO, STDOUT_FILENO);
}

ClOutput::~ClOutput() {
  if (m_nFile == -1) return;
  if (IsJson()) {
    std::fflush(stdout);
    dup2(m_nFile, STDOUT_FILENO);
  }
  close(m_nFile);
}

void ClOutput::Line(const std::string& sText) {
  if (!IsJson()) Write(sText + "\n");
}

void ClOutput::Document(const nlohmann::ordered_json& oJson) {
  if (IsJson()) Write(TextOf(oJson, m_eForm == eJson ? 2 : -1));
}

void ClOutput::Event(const nlohmann::ordered_json& oJson) {
  if (m_eForm == eJsonLines) Write(TextOf(oJson, -1));
}

void ClOutput::Write(const std::string& sText) {
  // Lines of the library's log keep their place among those of the tool.
  std::fflush(stdout);
  for (size_t nDone = 0; nDone < sText.size();) {
    const ssize_t nWritten = write(m_nFile, sText.data() + nDone, sText.size() - nDone);
    if (nWritten < 0 && errno == EINTR) continue;
    if (nWritten < 0)
      throw ClToolError(eExitFile,
                        std::string("the standard output cannot be written: ") + std::strerror(errno));
    nDone += static_cast<size_t>(nWritten);
  }
}
