#include "command_line.hpp"

#include <CLI/CLI.hpp>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "../file_arguments.hpp"
#include "../selection_argument.hpp"

namespace evopath::manual {

namespace {

/// The words of "{one,two}", which is how CLI11 describes a check for membership.
std::vector<std::string> splitChoices(std::string_view braced) {
  std::istringstream text(std::string(braced.substr(1, braced.size() - 2)));
  std::vector<std::string> words;
  for (std::string word; std::getline(text, word, ',');) words.push_back(word);
  return words;
}

ValueKind kindOf(const std::string& type) {
  if (type == selectionTypeName) return ValueKind::Selection;
  if (type == nameTypeName) return ValueKind::Name;
  return type == nameOrVersionTypeName ? ValueKind::NameOrVersion : ValueKind::Other;
}

/// Fills in what the type of the value tells: its name, then a colon and the check, if any.
void describeValue(const std::string& type, Parameter& parameter) {
  const std::size_t braces = type.find(":{");
  parameter.valueName = type.substr(0, braces);
  if (braces != std::string::npos) {
    parameter.kind = ValueKind::Choice;
    parameter.choices = splitChoices(std::string_view(type).substr(braces + 1));
  } else if (type == fileTypeName) {
    parameter.kind = ValueKind::File;
  } else {
    parameter.kind = kindOf(type);
  }
}

Parameter describe(const CLI::Option& option) {
  Parameter parameter;
  if (option.nonpositional()) {
    for (const std::string& name : option.get_snames()) parameter.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) parameter.names.push_back("--" + name);
  } else {
    parameter.names.push_back(option.get_name(true));
  }
  parameter.description = option.get_description();
  parameter.defaultValue = option.get_default_str();
  parameter.isRequired = option.get_required();
  parameter.isRepeatable = option.get_items_expected_max() > 1;
  if (option.get_items_expected_max() > 0) describeValue(option.get_type_name(), parameter);
  return parameter;
}

/// Takes a footer apart: remarks, then perhaps the exit statuses, then an example in the last line.
void describeFooter(const std::string& footer, Command& command) {
  constexpr std::string_view statusMark = "Exit status: ";
  constexpr std::string_view exampleMark = "Example: ";
  std::istringstream lines(footer);
  std::string* paragraph = &command.remarks;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(exampleMark)) {
      command.example = line.substr(exampleMark.size());
      if (std::getline(lines, line)) break;
      return;
    }
    if (line.starts_with(statusMark)) {
      paragraph = &command.exitStatus;
      line.erase(0, statusMark.size());
    }
    if (!paragraph->empty()) *paragraph += '\n';
    *paragraph += line;
  }
  throw std::invalid_argument("the help of " + command.name + " does not end with an example");
}

void collectOptionsWithValue(const Command& command, std::set<std::string>& names) {
  for (const Parameter& option : command.options) {
    if (option.kind != ValueKind::None) names.insert(option.names.begin(), option.names.end());
  }
  for (const Command& inner : command.commands) collectOptionsWithValue(inner, names);
}

}  // namespace

Command describe(const CLI::App& app) {
  Command command;
  command.name = app.get_name();
  command.description = app.get_description();
  for (const CLI::Option* option : app.get_options()) {
    (option->nonpositional() ? command.options : command.arguments).push_back(describe(*option));
  }
  describeFooter(app.get_footer(), command);
  for (const CLI::App* inner : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (!inner->get_group().empty()) command.commands.push_back(describe(*inner));
  }
  return command;
}

std::vector<std::string> optionsWithValue(const Command& command) {
  std::set<std::string> names;
  collectOptionsWithValue(command, names);
  return {names.begin(), names.end()};
}

}  // namespace evopath::manual
