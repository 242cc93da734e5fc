// Scripts that complete command lines of vorlane in a shell, made of the options as the parser has
// them. The command stays out of the help: packages and users run it once.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/batch/exit_codes.h"
#include "app/commands/commands.h"

namespace vorlane::commands {
namespace {

// What a shell is to know of an option.
struct OptionWords {
  std::vector<std::string> shorts;  // without their dashes
  std::vector<std::string> longs;
  std::string about;
  bool takesValue = false;
  std::vector<std::string> choices;  // the values that there are; empty: any, a file's name too
};

struct CommandWords {
  std::string name;
  std::string about;
  std::vector<OptionWords> options;
};

std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

// The parser tells the values that there are as the end of a type's name: "TEXT:{one,other}".
std::vector<std::string> ChoicesIn(const std::string& typeName) {
  const size_t begin = typeName.find('{');
  const size_t end = typeName.find('}');
  if (begin == std::string::npos || end == std::string::npos) return {};
  return CLI::detail::split(typeName.substr(begin + 1, end - begin - 1), ',');
}

std::vector<CommandWords> KnownCommands(const CLI::App& app) {
  const auto isShown = [](const CLI::App* command) { return !command->get_group().empty(); };
  std::vector<CommandWords> commands;
  for (const CLI::App* command : app.get_subcommands(isShown)) {
    CommandWords words{command->get_name(), FirstLine(command->get_description()), {}};
    for (const CLI::Option* option : command->get_options()) {
      if (!option->nonpositional() || option->get_group().empty()) continue;
      words.options.push_back(
          {option->get_snames(), option->get_lnames(), FirstLine(option->get_description()),
           option->get_items_expected_max() > 0, ChoicesIn(option->get_type_name())});
    }
    commands.push_back(std::move(words));
  }
  return commands;
}

// With their dashes.
std::vector<std::string> Names(const OptionWords& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.shorts) names.push_back("-" + name);
  for (const std::string& name : option.longs) names.push_back("--" + name);
  return names;
}

// In single quotes, which all three shells leave as they are but for what ends them.
std::string ShellQuoted(const std::string& text) {
  return "'" + CLI::detail::find_and_replace(text, "'", "'\\''") + "'";
}

std::string BashNames(const CommandWords& command) {
  std::string names;
  for (const OptionWords& option : command.options) {
    for (const std::string& name : Names(option)) names += (names.empty() ? "" : " ") + name;
  }
  return names;
}

// Cases of "COMMAND OPTION" for options with values.
std::string BashValueCases(const CommandWords& command) {
  std::string cases;
  for (const OptionWords& option : command.options) {
    if (!option.takesValue) continue;
    std::string patterns;
    for (const std::string& name : Names(option)) {
      patterns += (patterns.empty() ? "'" : " | '") + command.name + " " + name + "'";
    }
    const std::string choices = CLI::detail::join(option.choices, " ");
    cases += "    " + patterns + ") " +
             (choices.empty() ? "return" : "words=" + ShellQuoted(choices)) + " ;;\n";
  }
  return cases;
}

// Values and inputs without a list are completed as files' names, by the shell.
std::string BashScript(const std::vector<CommandWords>& commands) {
  std::string names;
  std::string values;
  std::string options;
  for (const CommandWords& command : commands) {
    names += command.name + " ";
    values += BashValueCases(command);
    options += "      " + command.name + ") words=" + ShellQuoted(BashNames(command)) + " ;;\n";
  }
  return "# vorlane completion bash\n"
         "_vorlane() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} at=$COMP_CWORD words=\n"
         "  [[ $current = '=' ]] && current='' || { [[ ${COMP_WORDS[at - 1]} = '=' ]] && at=$((at "
         "- 1)); }\n"
         "  COMPREPLY=()\n"
         "  case \"${COMP_WORDS[1]} ${COMP_WORDS[at - 1]}\" in\n" +
         values +
         "    *)\n"
         "      if ((COMP_CWORD == 1)); then\n"
         "        words=" +
         ShellQuoted(names + "--help --version") +
         "\n"
         "      elif [[ $current = -* ]]; then\n"
         "        case ${COMP_WORDS[1]} in\n" +
         CLI::detail::find_and_replace("    " + options, "\n      ", "\n          ") +
         "        esac\n"
         "      fi ;;\n"
         "  esac\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
         "}\n"
         "complete -o default -F _vorlane vorlane\n";
}

// A description within brackets, where a colon ends it.
std::string ZshAbout(std::string about) {
  for (const char* mark : {"\\", "[", "]", ":"}) {
    about = CLI::detail::find_and_replace(about, mark, std::string("\\") + mark);
  }
  return about;
}

std::string ZshOption(const OptionWords& option) {
  std::string value;
  if (option.takesValue) {
    const std::string choices = CLI::detail::join(option.choices, " ");
    value = choices.empty() ? ":value:_files" : ":value:(" + choices + ")";
  }
  std::string lines;
  for (const std::string& name : Names(option)) {
    lines += "        " + ShellQuoted(name + "[" + ZshAbout(option.about) + "]" + value) + " \\\n";
  }
  return lines;
}

std::string ZshScript(const std::vector<CommandWords>& commands) {
  std::string names;
  std::string cases;
  for (const CommandWords& command : commands) {
    names += "      " + ShellQuoted(command.name + ":" + ZshAbout(command.about)) + "\n";
    cases += "    " + command.name + ")\n      _arguments -s \\\n";
    for (const OptionWords& option : command.options) cases += ZshOption(option);
    cases += "        '*:file:_files' ;;\n";
  }
  return "#compdef vorlane\n"
         "_vorlane() {\n"
         "  if ((CURRENT == 2)); then\n"
         "    local -a commands=(\n" +
         names +
         "    )\n"
         "    _describe command commands\n"
         "    return\n"
         "  fi\n"
         "  local command=$words[2]\n"
         "  shift words\n"
         "  ((CURRENT--))\n"
         "  case $command in\n" +
         cases +
         "  esac\n"
         "}\n"
         "_vorlane \"$@\"\n";
}

std::string FishOption(const std::string& command, const OptionWords& option) {
  std::string line = "complete -c vorlane -n '__fish_seen_subcommand_from " + command + "'";
  for (const std::string& name : option.shorts) line += " -s " + name;
  for (const std::string& name : option.longs) line += " -l " + name;
  const std::string choices = CLI::detail::join(option.choices, " ");
  if (!choices.empty()) {
    line += " -x -a " + ShellQuoted(choices);
  } else if (option.takesValue) {
    line += " -r";
  }
  return line + " -d " + ShellQuoted(option.about) + "\n";
}

std::string FishScript(const std::vector<CommandWords>& commands) {
  std::string script = "# vorlane completion fish\n";
  for (const CommandWords& command : commands) {
    script += "complete -c vorlane -n __fish_use_subcommand -f -a " + command.name + " -d " +
              ShellQuoted(command.about) + "\n";
    for (const OptionWords& option : command.options) script += FishOption(command.name, option);
  }
  return script;
}

}  // namespace

CommandRun AddCompletion(CLI::App* app) {
  CLI::App* command = app->add_subcommand("completion", "A script that completes command lines");
  command->group("");
  const auto shell = std::make_shared<std::string>();
  command->add_option("SHELL", *shell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}));
  return [app, shell] {
    const std::vector<CommandWords> commands = KnownCommands(*app);
    const auto script = *shell == "bash"  ? BashScript(commands)
                        : *shell == "zsh" ? ZshScript(commands)
                                          : FishScript(commands);
    (void)std::fputs(script.c_str(), stdout);
    return static_cast<int>(batch::kExitAllDone);
  };
}

}  // namespace vorlane::commands
