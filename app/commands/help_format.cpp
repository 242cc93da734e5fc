#include "app/commands/help_format.h"

#include <set>
#include <sstream>
#include <utility>
#include <vector>

namespace vorlane::commands {
namespace {

constexpr size_t kLineWidth = 88;
constexpr size_t kOptionColumn = 28;
constexpr size_t kCommandColumn = 14;

// Options that exclude more than these say so in their own words.
constexpr size_t kMostNamed = 3;

struct Footer {
  std::string examples;
  std::string notes;
};

Footer PartsOf(const std::string& text) {
  Footer parts;
  std::istringstream lines(text);
  bool isExample = false;
  for (std::string line; std::getline(lines, line);) {
    const bool isHead = line == "Examples:" || line == "Example:";
    isExample = isHead || (isExample && line.starts_with(" "));
    (isExample ? parts.examples : parts.notes) += line + "\n";
  }
  return parts;
}

// What stands for the value in an option's line, and what is said of it behind the option's text.
struct ValueWords {
  std::string name;
  std::string range;
};

std::string RangeWords(const std::string& type) {
  const size_t begin = type.find(" in [");
  if (begin == std::string::npos) return "";
  std::string range = type.substr(begin + 5, type.find(']', begin) - begin - 5);
  return CLI::detail::find_and_replace(range, " - ", " to ");
}

// The parser describes types as "INT:INT in [1 - 100]", "TEXT:{one,other}" and "TEXT:COLOUR".
ValueWords WordsFor(const std::string& type) {
  const size_t colon = type.find(':');
  const std::string plain = type.substr(0, colon);
  const std::string check = colon == std::string::npos ? "" : type.substr(colon + 1);
  const bool isNumber = plain == "INT" || plain == "FLOAT" || plain == "UINT";
  if (check.starts_with("{")) {
    const std::string choices = check.substr(1, check.find('}') - 1);
    return {CLI::detail::find_and_replace(choices, ",", "|"), ""};
  }
  if (check.starts_with("SIZE")) return {"SIZE", ""};
  if (isNumber) return {"N", RangeWords(check)};
  return {check.empty() ? plain : check, ""};
}

std::string NamesOf(const std::set<CLI::Option*>& options) {
  std::set<std::string> names;  // the options come in the order of their addresses
  for (const CLI::Option* option : options) names.insert(option->get_name());
  return CLI::detail::join(names, ", ");
}

void AddRemark(const std::string& remark, std::string* all) {
  if (!remark.empty()) *all += (all->empty() ? "" : "; ") + remark;
}

std::string Description(const CLI::Option& option, const ValueWords& value) {
  std::string text = option.get_description();
  if (!option.get_default_str().empty()) text += " [" + option.get_default_str() + "]";
  std::string remarks;
  AddRemark(value.range, &remarks);
  if (option.get_required() && option.nonpositional()) AddRemark("required", &remarks);
  if (!option.get_needs().empty()) AddRemark("with " + NamesOf(option.get_needs()), &remarks);
  const size_t excluded = option.get_excludes().size();
  if (excluded > 0 && excluded <= kMostNamed) {
    AddRemark("not with " + NamesOf(option.get_excludes()), &remarks);
  }
  return remarks.empty() ? text : text + " (" + remarks + ")";
}

std::string NameWithValue(const CLI::Option& option, const ValueWords& value) {
  if (!option.nonpositional()) {
    const bool isList = option.get_expected_max() > 1;
    return option.get_name(true, false) + (isList ? "..." : "");
  }
  const std::string name = option.get_name(false, true);
  if (option.get_items_expected_max() == 0) return name;
  return name + " " + value.name + (option.get_expected_min() > 1 ? "..." : "");
}

// `head` at the left and `text`, wrapped, from `textColumn` on.
std::string Entry(const std::string& head, const std::string& text, size_t textColumn) {
  std::string all = "  " + head;
  size_t column = all.size();
  const std::string indent(textColumn, ' ');
  if (column + 2 > textColumn) {
    all += "\n" + indent;
  } else {
    all += indent.substr(column);
  }
  column = textColumn;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    if (column > textColumn && column + 1 + word.size() > kLineWidth) {
      all += "\n" + indent;
      column = textColumn;
    }
    if (column > textColumn) {
      all += ' ';
      ++column;
    }
    all += word;
    column += word.size();
  }
  return all + "\n";
}

}  // namespace

HelpFormat::HelpFormat() {
  label("SUBCOMMAND", "COMMAND");
  label("Positionals", "Arguments");
}

std::string HelpFormat::make_help(const CLI::App* app, std::string name,
                                  CLI::AppFormatMode mode) const {
  const Footer footer = PartsOf(app->get_footer());
  std::string text = app->get_description() + "\n";
  if (!footer.examples.empty()) text += "\n" + footer.examples;
  text += "\n" + make_usage(app, std::move(name));
  text += CLI::detail::find_and_replace(make_subcommands(app, mode), "Subcommands:", "Commands:");
  std::string options = make_positionals(app) + make_groups(app, mode);
  for (size_t at = 0; (at = options.find("\n\n\n")) != std::string::npos;) options.erase(at, 1);
  if (!options.ends_with("\n\n")) options += "\n";
  return text + options + footer.notes;
}

std::string HelpFormat::make_option(const CLI::Option* option, bool /*isPositional*/) const {
  const ValueWords value = WordsFor(option->get_type_name());
  return Entry(NameWithValue(*option, value), Description(*option, value), kOptionColumn);
}

std::string HelpFormat::make_subcommand(const CLI::App* command) const {
  return Entry(command->get_name(), command->get_description(), kCommandColumn);
}

}  // namespace vorlane::commands
