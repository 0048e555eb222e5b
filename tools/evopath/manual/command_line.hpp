#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace evopath::manual {

/// What may stand where an argument or the value of an option is expected.
enum class ValueKind {
  None,           ///< nothing: a flag
  Other,          ///< what only a catalogue knows, or a number
  Choice,         ///< one of a few words
  File,           ///< a file
  Name,           ///< a metamodel of the catalogue
  NameOrVersion,  ///< the same, or one version of it
  Selection,      ///< pairs of name and version, or files after an at sign
};

/// An option, or an argument known by its place.
struct Parameter {
  std::vector<std::string> names;  ///< with their dashes; of an argument the one name, without
  std::string description;
  std::string defaultValue;  ///< empty for none
  ValueKind kind = ValueKind::None;
  std::string valueName;             ///< what help texts call the value; empty for a flag
  std::vector<std::string> choices;  ///< of a choice
  bool isRequired = false;
  bool isRepeatable = false;
};

/// The program, or a command of it.
struct Command {
  std::string name;
  std::string description;
  std::vector<Parameter> options;
  std::vector<Parameter> arguments;
  std::string remarks;     ///< line feeds where the help text has them; empty for none
  std::string exitStatus;  ///< empty for the program as a whole
  std::string example;     ///< a command line
  std::vector<Command> commands;
};

/// What CLI11 knows about a command line, in the order of its help texts. Throws
/// std::invalid_argument, naming the command, for one whose help does not end with an example.
Command describe(const CLI::App& app);

/// The names of all options that take a value, of the command and of those within it, in ascending
/// order and each once.
std::vector<std::string> optionsWithValue(const Command& command);

}  // namespace evopath::manual
