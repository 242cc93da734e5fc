// How help is laid out: examples first, values in words, lines that fit a terminal.
#pragma once

#include <string>

#include <CLI/CLI.hpp>

namespace vorlane::commands {

// Of a command's footer the lines from "Examples:" on that are indented stand before everything
// else, the others behind.
class HelpFormat : public CLI::Formatter {
 public:
  HelpFormat();
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override;
  std::string make_option(const CLI::Option* option, bool isPositional) const override;
  std::string make_subcommand(const CLI::App* command) const override;
};

}  // namespace vorlane::commands
