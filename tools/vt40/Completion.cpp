// The scripts' texts.
#include "Completion.h"

#include <vector>

namespace {

/// A command that a line can begin with, several words for one below another.
struct StCommand {
  std::string sWords;
  const CLI::App* pApp;
};

void Collect(const CLI::App& oApp, const std::string& sWords, std::vector<StCommand>& aCommands) {
  for (const CLI::App* pCommand : oApp.get_subcommands([](const CLI::App*) { return true; })) {
    if (pCommand->get_group().empty()) continue;
    const std::string sAll = sWords.empty() ? pCommand->get_name() : sWords + " " + pCommand->get_name();
    aCommands.push_back({sAll, pCommand});
    Collect(*pCommand, sAll, aCommands);
  }
}

std::vector<StCommand> CommandsOf(const CLI::App& oApp) {
  std::vector<StCommand> aCommands = {{"", &oApp}};
  Collect(oApp, "", aCommands);
  return aCommands;
}

std::string Join(const std::vector<std::string>& aWords) {
  std::string sAll;
  for (const std::string& sWord : aWords) sAll += (sAll.empty() ? "" : " ") + sWord;
  return sAll;
}

std::vector<std::string> SubcommandsOf(const CLI::App& oApp) {
  std::vector<std::string> aNames;
  for (const CLI::App* pCommand : oApp.get_subcommands([](const CLI::App*) { return true; }))
    if (!pCommand->get_group().empty()) aNames.push_back(pCommand->get_name());
  return aNames;
}

std::vector<std::string> OptionsOf(const CLI::App& oApp) {
  std::vector<std::string> aNames;
  for (const CLI::Option* pOption : oApp.get_options())
    for (const std::string& sName : pOption->get_lnames()) aNames.push_back("--" + sName);
  return aNames;
}

/// The words that an option's value is one of; empty when it may be anything.
std::vector<std::string> ChoicesOf(const CLI::Option& oOption) {
  const std::string sType = oOption.get_type_name();
  const size_t nBegin = sType.find(":{"), nEnd = sType.rfind('}');
  std::vector<std::string> aChoices;
  if (nBegin == std::string::npos || nEnd == std::string::npos) return aChoices;
  std::string sRest = sType.substr(nBegin + 2, nEnd - nBegin - 2);
  for (size_t nComma; (nComma = sRest.find(',')) != std::string::npos; sRest.erase(0, nComma + 1))
    aChoices.push_back(sRest.substr(0, nComma));
  aChoices.push_back(sRest);
  return aChoices;
}

/// In quotes, so that the shell takes the text for one word.
std::string Quoted(const std::string& sText) {
  std::string sOut;
  for (const char c : sText) sOut += c == '\'' ? "'\\''" : std::string(1, c);
  return "'" + sOut + "'";
}

/// Serves bash and, by way of its emulation of bash, zsh.
std::string BashScript(const CLI::App& oApp) {
  std::string sCommands, sValues;
  for (const StCommand& o : CommandsOf(oApp)) {
    std::vector<std::string> aWords = SubcommandsOf(*o.pApp);
    const std::vector<std::string> aOptions = OptionsOf(*o.pApp);
    aWords.insert(aWords.end(), aOptions.begin(), aOptions.end());
    sCommands += "    " + Quoted(o.sWords) + ") words=" + Quoted(Join(aWords)) + " ;;\n";
    for (const CLI::Option* pOption : o.pApp->get_options()) {
      const std::vector<std::string> aChoices = ChoicesOf(*pOption);
      if (aChoices.empty() || pOption->get_lnames().empty()) continue;
      sValues += "    " + Quoted(o.sWords + " --" + pOption->get_lnames().front()) +
                 ") words=" + Quoted(Join(aChoices)) + " ;;\n";
    }
  }
  return "_vt40() {\n"
         "  local word command= words= current=${COMP_WORDS[COMP_CWORD]} "
         "previous=${COMP_WORDS[COMP_CWORD-1]} i\n"
         "  for ((i = 1; i < COMP_CWORD; ++i)); do\n"
         "    word=${COMP_WORDS[i]}\n"
         "    case $word in -*) break ;; esac\n"
         "    command=\"${command:+$command }$word\"\n"
         "  done\n"
         "  case \"$command\" in\n" +
         sCommands +
         "  esac\n"
         "  case \"$command $previous\" in\n" +
         sValues +
         "    *' --out' | *' --frames' | *' --print' | *' --from' | *' --scene' | *' --check')\n"
         "      COMPREPLY=($(compgen -f -- \"$current\")); return ;;\n"
         "  esac\n"
         "  COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
         "}\n"
         "complete -F _vt40 vt40";
}

/// What follows an option: nothing, one of some words, or a file.
std::string FishValue(const CLI::Option& oOption) {
  if (oOption.get_type_size() == 0) return "";
  const std::vector<std::string> aChoices = ChoicesOf(oOption);
  return aChoices.empty() ? " -r -F" : " -x -a " + Quoted(Join(aChoices));
}

std::string FishScript(const CLI::App& oApp) {
  std::string sScript = "complete -c vt40 -f";
  for (const StCommand& o : CommandsOf(oApp)) {
    const std::string sLast = o.sWords.substr(o.sWords.rfind(' ') + 1);
    const std::string sWhen = o.sWords.empty() ? " -n __fish_use_subcommand"
                                               : " -n " + Quoted("__fish_seen_subcommand_from " + sLast);
    for (const CLI::App* pCommand : o.pApp->get_subcommands([](const CLI::App*) { return true; })) {
      if (pCommand->get_group().empty()) continue;
      sScript += "\ncomplete -c vt40" + sWhen + " -a " + pCommand->get_name() + " -d " +
                 Quoted(pCommand->get_description());
    }
    for (const CLI::Option* pOption : o.pApp->get_options()) {
      for (const std::string& sName : pOption->get_lnames()) {
        sScript.append("\ncomplete -c vt40").append(sWhen).append(" -l ").append(sName);
        sScript.append(FishValue(*pOption)).append(" -d ").append(Quoted(pOption->get_description()));
      }
    }
  }
  return sScript;
}

}  // namespace

std::string CompletionScript(const CLI::App& oApp, const std::string& sShell) {
  if (sShell == "fish") return FishScript(oApp);
  if (sShell == "zsh")
    return "#compdef vt40\nautoload -U +X bashcompinit && bashcompinit\n" + BashScript(oApp);
  return BashScript(oApp);
}
