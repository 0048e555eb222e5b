#include <ostream>

#include "shell_text.hpp"
#include "writers.hpp"

namespace evopath::manual {

namespace {

/// What does not depend on the commands, but for the options that take a value.
constexpr const char* helpers =
    R"(# Whether an argument of a command is expected that has so many before it, or at least so many.
function __evopath_expects -a command place comparison
    set -l words (commandline -opc)
    test "$words[2]" = "$command"; or return 1
    set -l found 0
    set -l skipped 0
    for word in $words[3..]
        if test $skipped = 1
            set skipped 0
            continue
        end
        switch $word
            case @VALUED@
                set skipped 1
            case '-*'
            case '*'
                set found (math $found + 1)
        end
    end
    test $found $comparison $place
end

# The files for the last @FILE of a selection.
function __evopath_selection
    set -l word (commandline -ct)
    string match -qr '(^|,|=)@[^,]*$' -- $word; or return 1
    set -l file (string replace -r '.*@' '' -- $word)
    set -l start (string replace -r '[^@]*$' '' -- $word)
    for found in (__fish_complete_path "$file")
        echo $start$found
    end
end

)";

std::string quote(const std::string& text) {
  return "'" + escapeEach(text, "\\'") + "'";
}

std::string completionFor(const Parameter& parameter) {
  switch (parameter.kind) {
    case ValueKind::None:
      return "";
    case ValueKind::Other:
      return " -x";
    case ValueKind::Choice:
      return " -x -a " + quote(join(parameter.choices, " "));
    case ValueKind::File:
      return " -r -F";
    case ValueKind::Selection:
      return " -x -a '(__evopath_selection)'";
  }
  return "";
}

void writeOption(const std::string& condition, const Parameter& option, std::ostream& out) {
  out << "complete -c evopath -n " << quote(condition);
  for (const std::string& name : option.names) {
    if (name.starts_with("--")) {
      out << " -l " << name.substr(2);
    } else {
      out << " -s " << name.substr(1);
    }
  }
  out << completionFor(option) << " -d " << quote(option.description) << "\n";
}

void writeCommand(const Command& command, std::ostream& out) {
  out << "\ncomplete -c evopath -n __fish_use_subcommand -a " << command.name << " -d "
      << quote(command.description) << "\n";
  for (std::size_t place = 0; place < command.arguments.size(); ++place) {
    if (command.arguments[place].kind != ValueKind::File) continue;
    out << "complete -c evopath -n "
        << quote("__evopath_expects " + command.name + " " + std::to_string(place) +
                 (command.arguments[place].isRepeatable ? " -ge" : " -eq"))
        << " -F\n";
  }
  for (const Parameter& option : command.options) {
    writeOption("__fish_seen_subcommand_from " + command.name, option, out);
  }
}

}  // namespace

void writeFishCompletion(const Command& program, std::ostream& out) {
  std::string functions = helpers;
  const std::string mark = "@VALUED@";
  functions.replace(functions.find(mark), mark.size(), join(optionsWithValue(program), " "));
  out << "# Completion of " << program.name << " for fish.\n\n"
      << functions << "complete -c evopath -f\n";
  for (const Parameter& option : program.options) {
    writeOption("__fish_use_subcommand", option, out);
  }
  for (const Command& command : program.commands) writeCommand(command, out);
}

}  // namespace evopath::manual
