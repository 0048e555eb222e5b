#include <ostream>

#include "shell_text.hpp"
#include "writers.hpp"

namespace evopath::manual {

namespace {

/// What does not depend on the commands, but for the options that take a value.
constexpr const char* helpers =
    R"(# The arguments that the command has so far, without options and their values.
function __evopath_arguments
    set -l words (commandline -opc)
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
                printf '%s\n' $word
        end
    end
end

# Whether an argument of a command is expected that has so many before it, or at least so many.
function __evopath_expects -a command place comparison
    set -l words (commandline -opc)
    test "$words[2]" = "$command"; or return 1
    set -l found (__evopath_arguments)
    test (count $found) $comparison $place
end

# The first argument of the command.
function __evopath_catalogue
    set -l found (__evopath_arguments)
    set -q found[1]; and string replace -r '^~/' "$HOME/" -- $found[1]
end

# The names and versions that the last part of the word may become; arguments are options.
function __evopath_known
    set -l catalogue (__evopath_catalogue)
    set -l program (commandline -opc)[1]
    test -n "$catalogue"; or return 1
    set -l word (commandline -ct)
    set -l start (string match -r '^(?:--[a-z-]+=)?(?:.*,)?' -- $word)
    set -l value (string sub -s (math (string length -- "$start") + 1) -- $word)
    for found in ($program words $catalogue $argv -- "$value" 2>/dev/null)
        echo $start$found
    end
end

# The files for the last @FILE of a selection, or names and versions.
function __evopath_selection
    set -l word (commandline -ct)
    if not string match -qr '(^|,|=)@[^,]*$' -- $word
        __evopath_known --selection
        return
    end
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
    case ValueKind::Name:
    case ValueKind::NameOrVersion:
      return " -x -a '(__evopath_known)'";
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
    const Parameter& argument = command.arguments[place];
    const bool isFile = argument.kind == ValueKind::File;
    const bool isKnown =
        argument.kind == ValueKind::Name || argument.kind == ValueKind::NameOrVersion;
    if (!isFile && !isKnown) continue;
    out << "complete -c evopath -n "
        << quote("__evopath_expects " + command.name + " " + std::to_string(place) +
                 (argument.isRepeatable ? " -ge" : " -eq"))
        << (isFile ? " -F\n" : " -a '(__evopath_known)'\n");
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
