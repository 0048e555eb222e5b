#include <ostream>

#include "shell_text.hpp"
#include "writers.hpp"

namespace evopath::manual {

namespace {

/// What does not depend on the commands. Bash breaks words at "=", "@" and the like, so the words
/// are taken from the line, and of a reply only what follows the last break is handed back.
constexpr const char* helpers = R"(_evopath_reply() {
  local reply
  while IFS= read -r reply; do COMPREPLY+=("${reply#"$given"}"); done
}

_evopath_words() { _evopath_reply < <(compgen -P "$prefix" -W "$1" -- "$value"); }

_evopath_files() {
  compopt -o filenames 2>/dev/null
  _evopath_reply < <(compgen -P "$prefix" -f -- "$value")
}

_evopath_known() {
  local known
  compopt -o nospace 2>/dev/null
  _evopath_reply < <("${words[0]}" words "${catalogue/#~\//$HOME/}" "$@" -- "$value" 2>/dev/null |
    while IFS= read -r known; do printf '%s\n' "$prefix$known"; done)
}

_evopath_selection() {
  case $value in *,*) prefix+=${value%,*}, value=${value##*,} ;; esac
  case $value in
    @*) prefix+=@ value=${value#@}; _evopath_files ;;
    *) _evopath_known --selection ;;
  esac
}

)";

constexpr const char* readWords = R"(_evopath() {
  local -a words
  local line=${COMP_LINE:0:COMP_POINT} word option place=0 value prefix= given catalogue=
  read -ra words <<<"$line"
  case $line in *[[:space:]]) words+=("") ;; esac
  local last=$((${#words[@]} - 1)) command=${words[1]}
  value=${words[last]}
  given=${value%"$2"}
  COMPREPLY=()
  if [ "$last" -le 1 ]; then
)";

constexpr const char* findPlace = R"(    return
  fi
  for word in "${words[@]:2:last-2}"; do
    if [ -n "$option" ]; then
      option=
      continue
    fi
    case $word in
      @VALUED@) option=$word ;;
      -*) ;;
      *) place=$((place + 1)) catalogue=${catalogue:-$word} ;;
    esac
  done
  case $value in --*=*) option=${value%%=*} prefix=${value%%=*}= value=${value#*=} ;; esac
  if [ -z "$option" ] && [ "${value:0:1}" != - ]; then option=$place; fi
  case $command/$option in
)";

void writeCase(const std::string& pattern, const Parameter& parameter, std::ostream& out) {
  switch (parameter.kind) {
    case ValueKind::None:
    case ValueKind::Other:
      return;
    case ValueKind::Choice:
      out << "    " << pattern << ") _evopath_words \"" << join(parameter.choices, " ")
          << "\" ;;\n";
      return;
    case ValueKind::File:
      out << "    " << pattern << ") _evopath_files ;;\n";
      return;
    case ValueKind::Name:
    case ValueKind::NameOrVersion:
      out << "    " << pattern << ") _evopath_known ;;\n";
      return;
    case ValueKind::Selection:
      out << "    " << pattern << ") _evopath_selection ;;\n";
      return;
  }
}

void writeCases(const Command& command, std::ostream& out) {
  for (const Parameter& option : command.options) {
    for (const std::string& name : option.names) writeCase(command.name + "/" + name, option, out);
  }
  for (std::size_t place = 0; place < command.arguments.size(); ++place) {
    const Parameter& argument = command.arguments[place];
    const std::string places = argument.isRepeatable ? "[0-9]*" : std::to_string(place);
    writeCase(command.name + "/" + places, argument, out);
  }
  out << "    " << command.name << "/) _evopath_words \"" << join(namesOf(command.options), " ")
      << "\" ;;\n";
}

}  // namespace

void writeBashCompletion(const Command& program, std::ostream& out) {
  std::string placing = findPlace;
  const std::string mark = "@VALUED@";
  placing.replace(placing.find(mark), mark.size(), join(optionsWithValue(program), " | "));
  out << "# Completion of " << program.name << " for bash.\n\n"
      << helpers << readWords << "    _evopath_words \"" << join(namesOf(program.commands), " ")
      << " " << join(namesOf(program.options), " ") << "\"\n"
      << placing;
  for (const Command& command : program.commands) writeCases(command, out);
  out << "  esac\n}\n\ncomplete -F _evopath " << program.name << "\n";
}

}  // namespace evopath::manual
