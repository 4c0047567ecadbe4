#include "packaging/reference/tool_reference.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>
#include <vector>

#include "cli/messages.h"
#include "cli/output_formats.h"
#include "cli/platform.h"
#include "packaging/reference/roff.h"

namespace korvel::packaging {
namespace {

std::vector<const CLI::App*> commandsOf(const CLI::App& app) {
  return app.get_subcommands(std::function<bool(const CLI::App*)>());
}

std::string joined(const std::vector<std::string>& words, std::string_view between) {
  std::string text;
  for (const std::string& word : words) text.append(text.empty() ? "" : between).append(word);
  return text;
}

/// "-h", "--help".
std::vector<std::string> namesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

bool takesValue(const CLI::Option& option) {
  return option.get_items_expected_max() > 0;
}

/// What another option has to do with it, a sentence each.
std::string conditionText(const CLI::Option& option) {
  std::string text;
  for (const CLI::Option* other : option.get_needs()) text += " Needs " + other->get_name() + ".";
  for (const CLI::Option* other : option.get_excludes()) text += " Not together with " + other->get_name() + ".";
  return text;
}

std::string itemsOf(const CLI::App& app) {
  std::string items;
  for (const CLI::Option* option : app.get_options()) {
    const std::string value = takesValue(*option) ? option->get_option_text() : std::string();
    std::string text = option->get_description();
    const std::string conditions = conditionText(*option);
    if (!conditions.empty()) text += "." + conditions;
    if (option->get_positional())
      items += roffItem(value, "", text);
    else
      items += roffItem(joined(namesOf(*option), ", "), value, text);
  }
  return items;
}

/// The command's own footer; the exit statuses, which all have, stand once on the page.
std::string footerOf(const CLI::App& command) {
  std::string footer = command.get_footer();
  const std::string_view common = cli::exitStatusHelp;
  if (footer.ends_with(common)) footer.resize(footer.size() - common.size());
  return footer;
}

std::string synopsisOf(const CLI::App& command) {
  std::string text = ".PP\n\\fBkorvel\\-audit " + roffText(command.get_name()) + "\\fR [\\fIOPTION\\fR]...";
  for (const CLI::Option* option : command.get_options()) {
    if (!option->get_positional()) continue;
    const std::string value = "\\fI" + roffText(option->get_option_text()) + "\\fR";
    text += option->get_required() ? " " + value : " [" + value + "]";
    if (option->get_items_expected_max() > 1) text += "...";
  }
  return text + '\n';
}

std::string withoutHeading(std::string_view text) {
  return std::string(text.substr(text.find('\n') + 1));
}

/// Whether what stands for a value says that it is a file or a folder. A server may be a folder too.
bool isPath(std::string_view placeholder) {
  constexpr std::array words{"FILE", "FOLDER", "DIR", "SNAPSHOT"};
  return std::any_of(words.begin(), words.end(), [&](std::string_view word) { return placeholder.starts_with(word); });
}

std::string formatNames() {
  std::vector<std::string> names;
  for (const cli::OutputFormat& format : cli::outputFormats()) names.emplace_back(format.name);
  return joined(names, " ");
}

/// The lines of a case statement that complete the values of a command's options; words are "COMMAND OPTION".
std::string valueCases(const CLI::App& command) {
  std::vector<std::string> files;
  std::vector<std::string> formats;
  std::vector<std::string> others;
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional() || !takesValue(*option)) continue;
    const std::string& placeholder = option->get_option_text();
    const bool path = isPath(placeholder) || option->get_name() == "--server";
    std::vector<std::string>& kind = placeholder == "FORMAT" ? formats : path ? files : others;
    for (const std::string& name : namesOf(*option)) kind.push_back("'" + command.get_name() + " " + name + "'");
  }
  std::string lines;
  if (!formats.empty()) lines += "    " + joined(formats, " | ") + ") words='" + formatNames() + "' ;;\n";
  if (!files.empty()) lines += "    " + joined(files, " | ") + ") files=yes ;;\n";
  if (!others.empty()) lines += "    " + joined(others, " | ") + ") ;;\n";
  return lines;
}

std::string wordsOf(const CLI::App& command) {
  std::vector<std::string> words;
  for (const CLI::Option* option : command.get_options())
    for (const std::string& name : namesOf(*option)) words.push_back(name);
  return joined(words, " ");
}

bool takesFiles(const CLI::App& command) {
  const auto options = command.get_options();
  return std::any_of(options.begin(), options.end(), [](const CLI::Option* option) {
    return option->get_positional() && isPath(option->get_option_text());
  });
}

}  // namespace

std::string toolManual(const cli::ToolParser& parser, const std::string& day, const std::string& version) {
  const CLI::App& app = parser.app;
  std::string page = roffHead("korvel-audit", day, version, "read audit trails without a screen");
  page += ".SH SYNOPSIS\n\\fBkorvel\\-audit\\fR \\fICOMMAND\\fR [\\fIOPTION\\fR]...\n";
  page += ".SH DESCRIPTION\n" + roffText(app.get_description());
  page += ".SH OPTIONS\n" + itemsOf(app);
  page += ".SH COMMANDS\n";
  for (const CLI::App* command : commandsOf(app)) {
    page += ".SS " + roffText(command->get_name()) + '\n' + synopsisOf(*command);
    page += ".PP\n" + roffText(command->get_description()) + ".\n";
    page += itemsOf(*command) + roffLines(footerOf(*command));
  }
  page += ".SH EXIT STATUS\n" + roffLines(withoutHeading(cli::exitStatusHelp));
  page += ".SH ENVIRONMENT\n" + roffLines(cli::environmentHelp);
  return page + ".SH SEE ALSO\n.BR KorvelAuditViewer (1)\n";
}

std::string toolCompletion(const cli::ToolParser& parser) {
  std::string cases;
  std::string commandCases;
  std::vector<std::string> names;
  for (const CLI::App* command : commandsOf(parser.app)) {
    names.push_back(command->get_name());
    cases += valueCases(*command);
    commandCases += "        " + command->get_name() + ") words='" + wordsOf(*command) + "'";
    commandCases += takesFiles(*command) ? "; files=yes ;;\n" : " ;;\n";
  }
  return "# bash completion for korvel-audit, made of the tool's own options.\n"
         "_korvel_audit() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' words='' files=''\n"
         "  # The shell takes --format=csv for three words.\n"
         "  if [ \"$word\" = = ]; then\n"
         "    word=''\n"
         "  elif [ \"$before\" = = ]; then\n"
         "    before=${COMP_WORDS[COMP_CWORD - 2]}\n"
         "  fi\n"
         "  # A command comes first.\n"
         "  [ \"$COMP_CWORD\" -lt 2 ] || command=${COMP_WORDS[1]}\n"
         "  case \"$command $before\" in\n" +
         cases +
         "    *)\n"
         "      case $command in\n"
         "        '') words='" +
         joined(names, " ") + " " + wordsOf(parser.app) + "' ;;\n" + commandCases +
         "      esac\n"
         "      case $word in -*) files='' ;; esac\n"
         "      ;;\n"
         "  esac\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n"
         "  if [ -n \"$files\" ]; then\n"
         "    compopt -o filenames 2>/dev/null\n"
         "    mapfile -t -O \"${#COMPREPLY[@]}\" COMPREPLY < <(compgen -f -- \"$word\")\n"
         "  fi\n"
         "}\n"
         "complete -F _korvel_audit korvel-audit\n";
}

}  // namespace korvel::packaging
