#include <ostream>

#include "shell_text.hpp"
#include "writers.hpp"

namespace evopath::manual {

namespace {

constexpr const char* selection = R"zsh(_evopath_known() {
  local -a known
  known=(${(f)"$(evopath words ${~${(Q)line[1]}} $@ -- "$PREFIX" 2>/dev/null)"})
  compadd -S '' -- $known
}

_evopath_selection() {
  compset -P '*,'
  if compset -P '@'; then _files; else _evopath_known --selection; fi
}

)zsh";

std::string escape(const std::string& text) {
  return escapeEach(text, "\\:[]");
}

/// What _arguments shall offer as the value.
std::string actionFor(const Parameter& parameter) {
  switch (parameter.kind) {
    case ValueKind::Choice:
      return "(" + join(parameter.choices, " ") + ")";
    case ValueKind::File:
      return "_files";
    case ValueKind::Name:
    case ValueKind::NameOrVersion:
      return "_evopath_known";
    case ValueKind::Selection:
      return "_evopath_selection";
    case ValueKind::None:
    case ValueKind::Other:
      break;
  }
  return " ";
}

void writeOption(const Parameter& option, std::ostream& out) {
  for (const std::string& name : option.names) {
    std::string text = (option.isRepeatable ? "*" : "") + name;
    if (option.kind != ValueKind::None && name.starts_with("--")) text += '=';
    text += "[" + escape(option.description) + "]";
    if (option.kind != ValueKind::None) {
      text += ":" + escape(option.valueName) + ":" + actionFor(option);
    }
    out << " \\\n        " << quoteForShell(text);
  }
}

void writeCommand(const Command& command, std::ostream& out) {
  out << "    " << command.name << ")\n      _arguments -s";
  for (const Parameter& option : command.options) writeOption(option, out);
  for (const Parameter& argument : command.arguments) {
    out << " \\\n        "
        << quoteForShell((argument.isRepeatable ? "*:" : ":") + escape(argument.names.front()) +
                         ":" + actionFor(argument));
  }
  out << "\n      ;;\n";
}

}  // namespace

void writeZshCompletion(const Command& program, std::ostream& out) {
  out << "#compdef " << program.name << "\n\n"
      << selection << "_evopath() {\n  local context state state_descr line\n  local -A opt_args\n"
      << "  local -a commands=(\n";
  for (const Command& command : program.commands) {
    out << "    " << quoteForShell(command.name + ":" + escape(command.description)) << "\n";
  }
  out << "  )\n  _arguments -C";
  for (const Parameter& option : program.options) writeOption(option, out);
  out << " \\\n        '1:command:->command' '*::argument:->arguments' && return\n"
      << "  if [[ $state == command ]]; then\n    _describe command commands\n    return\n  fi\n"
      << "  case $words[1] in\n";
  for (const Command& command : program.commands) writeCommand(command, out);
  out << "  esac\n}\n\n"
      << "if [[ $funcstack[1] == _evopath ]]; then\n  _evopath \"$@\"\nelse\n"
      << "  compdef _evopath " << program.name << "\nfi\n";
}

}  // namespace evopath::manual
