// Layout of the help, and distances between names.
#include "Help.h"

#include <algorithm>
#include <numeric>
#include <sstream>
#include <vector>

#include "Progress.h"

namespace {

constexpr size_t cnIndent = 2;
/// Where descriptions begin.
constexpr size_t cnColumn = 30;
constexpr size_t cnFewestColumns = 60;
constexpr size_t cnMostColumns = 110;

size_t Columns() {
  return std::min(std::max<size_t>(TerminalWidth(), cnFewestColumns), cnMostColumns);
}

/// Appends the words of sText to sOut, whose last line has nAt columns, with further lines from nIndent on.
void AppendWrapped(std::string& sOut, size_t nAt, size_t nIndent, const std::string& sText) {
  std::istringstream oWords(sText);
  bool bFirst = true;
  for (std::string sWord; oWords >> sWord;) {
    if (!bFirst && nAt + 1 + sWord.size() > Columns()) {
      sOut += "\n" + std::string(nIndent, ' ');
      nAt = nIndent;
    } else if (!bFirst) {
      sOut += ' ';
      ++nAt;
    }
    sOut += sWord;
    nAt += sWord.size();
    bFirst = false;
  }
  sOut += "\n";
}

/// A name on the left, its description on the right, or below a long name.
std::string Row(const std::string& sName, const std::string& sText) {
  std::string sOut = std::string(cnIndent, ' ') + sName;
  if (sOut.size() + 2 > cnColumn)
    sOut += "\n" + std::string(cnColumn, ' ');
  else
    sOut.resize(cnColumn, ' ');
  AppendWrapped(sOut, cnColumn, cnColumn, sText);
  return sOut;
}

/// The choices of an option that has some, else the name of its type.
std::string Takes(const CLI::Option& oOption) {
  if (oOption.get_type_size() == 0) return "";
  const std::string sType = oOption.get_type_name();
  const size_t nColon = sType.find(':');
  const std::string sCheck = nColon == std::string::npos ? "" : sType.substr(nColon + 1);
  if (!sCheck.empty() && sCheck.front() == '{') return " " + sCheck;
  return " " + sType.substr(0, nColon);
}

class ClHelp : public CLI::Formatter {
 public:
  std::string make_option(const CLI::Option* pOption, bool bPositional) const override {
    const std::string sName = bPositional ? pOption->get_name(true) : pOption->get_name(false, true);
    std::string sText = pOption->get_description();
    if (!pOption->get_default_str().empty()) sText += " (default: " + pOption->get_default_str() + ")";
    // A positional is described by its name, an option by what it takes.
    return Row(bPositional ? sName : sName + Takes(*pOption), sText);
  }
  std::string make_usage(const CLI::App* pApp, std::string sName) const override {
    std::string sOut = "Usage: " + (sName.empty() ? pApp->get_name() : sName) + " [OPTIONS]";
    for (const CLI::Option* pOption :
         pApp->get_options([](const CLI::Option* p) { return p->get_positional(); })) {
      const std::string sText = pOption->get_name(true);
      sOut += pOption->get_required() ? " " + sText : " [" + sText + "]";
      if (pOption->get_expected_max() > 1) sOut += " [" + sText + "]";
    }
    const bool bCommands = !pApp->get_subcommands([](const CLI::App*) { return true; }).empty();
    return sOut + (bCommands ? " COMMAND\n" : "\n");
  }
  std::string make_subcommand(const CLI::App* pCommand) const override {
    return Row(pCommand->get_name(), pCommand->get_description());
  }
  std::string make_footer(const CLI::App* pApp) const override {
    std::string sOut;
    if (!pApp->get_footer().empty()) AppendWrapped(sOut, 0, 0, pApp->get_footer());
    return sOut;
  }
};

/// Levenshtein's distance.
size_t Distance(const std::string& sA, const std::string& sB) {
  std::vector<size_t> aRow(sB.size() + 1);
  std::iota(aRow.begin(), aRow.end(), size_t{0});
  for (size_t i = 1; i <= sA.size(); ++i) {
    size_t nDiagonal = aRow[0];
    aRow[0] = i;
    for (size_t j = 1; j <= sB.size(); ++j) {
      const size_t nChange = nDiagonal + (sA[i - 1] == sB[j - 1] ? 0 : 1);
      nDiagonal = aRow[j];
      aRow[j] = std::min({aRow[j] + 1, aRow[j - 1] + 1, nChange});
    }
  }
  return aRow[sB.size()];
}

/// The names that may stand where sName stands.
std::vector<std::string> NamesFor(const CLI::App& oApp, const std::string& sName) {
  std::vector<std::string> aNames;
  if (sName.rfind("--", 0) == 0) {
    for (const CLI::Option* pOption : oApp.get_options()) {
      for (const std::string& sLong : pOption->get_lnames()) aNames.push_back("--" + sLong);
    }
    return aNames;
  }
  for (const CLI::App* pCommand : oApp.get_subcommands([](const CLI::App*) { return true; }))
    if (!pCommand->get_group().empty()) aNames.push_back(pCommand->get_name());
  return aNames;
}

std::string Nearest(const CLI::App& oApp, const std::string& sName) {
  std::string sBest;
  // More changes than a third of the name make another word.
  size_t nBest = sName.size() / 3 + 1;
  for (const std::string& sOther : NamesFor(oApp, sName)) {
    const size_t nDistance = Distance(sName, sOther);
    if (nDistance >= nBest) continue;
    nBest = nDistance;
    sBest = sOther;
  }
  return sBest;
}

/// The command that the line names, as far as it was understood.
const CLI::App& InnermostCommand(const CLI::App& oApp) {
  const std::vector<CLI::App*> aChosen = oApp.get_subcommands();
  return aChosen.empty() ? oApp : InnermostCommand(*aChosen.front());
}

}  // namespace

std::shared_ptr<CLI::FormatterBase> MakeHelp() {
  return std::make_shared<ClHelp>();
}

std::string DescribeMistake(const CLI::App& oApp, const CLI::ParseError& oError) {
  const CLI::App& oCommand = InnermostCommand(oApp);
  const std::vector<std::string> aUnknown = oApp.remaining(true);
  const std::string sHelp =
      oCommand.get_parent() == nullptr ? "vt40 --help" : "vt40 " + oCommand.get_name() + " --help";
  if (aUnknown.empty()) return std::string(oError.what()) + "; see " + sHelp;
  const std::string sUnknown = aUnknown.front().substr(0, aUnknown.front().find('='));
  const std::string sNearest = Nearest(oCommand, sUnknown);
  // An option may be known, and stand on the wrong side of the command; a second command is no such case.
  const bool bOption = sUnknown.rfind("--", 0) == 0;
  if (bOption && sNearest == sUnknown)
    return "\"" + sUnknown + "\" must stand after \"" + oCommand.get_name() + "\"";
  if (bOption && Nearest(oApp, sUnknown) == sUnknown)
    return "\"" + sUnknown + "\" must stand before the command";
  return "\"" + sUnknown + "\" is unknown" +
         (sNearest.empty() ? "; see " + sHelp : "; did you mean \"" + sNearest + "\"?");
}
