#include <ostream>

#include "writers.hpp"

namespace evopath::manual {

namespace {

/// A text that roff shows as it is. The dash is the one of command lines, which can be copied.
std::string escape(const std::string& text) {
  std::string escaped;
  bool startsLine = true;
  for (const char character : text) {
    if (startsLine && (character == '.' || character == '\'')) escaped += "\\&";
    startsLine = character == '\n';
    if (character == '\\') {
      escaped += "\\e";
    } else if (character == '-') {
      escaped += "\\-";
    } else {
      escaped += character;
    }
  }
  return escaped;
}

std::string bold(const std::string& text) {
  return "\\fB" + escape(text) + "\\fR";
}

std::string italic(const std::string& text) {
  return "\\fI" + escape(text) + "\\fR";
}

std::string describeArgument(const Parameter& argument) {
  const std::string name = italic(argument.names.front()) + (argument.isRepeatable ? "..." : "");
  return argument.isRequired ? name : "[" + name + "]";
}

void writeSynopsis(const std::string& program, const Command& command, std::ostream& out) {
  out << bold(program + " " + command.name) << " [" << italic("option") << "]...";
  for (const Parameter& argument : command.arguments) out << " " << describeArgument(argument);
  out << "\n";
}

std::string describeHead(const Parameter& parameter) {
  const bool isArgument = !parameter.names.front().starts_with('-');
  std::string head;
  for (const std::string& name : parameter.names) {
    if (!head.empty()) head += ", ";
    head += isArgument ? italic(name) : bold(name);
  }
  if (!isArgument && !parameter.valueName.empty()) head += " " + italic(parameter.valueName);
  return head;
}

void writeParameter(const Parameter& parameter, std::ostream& out) {
  out << ".TP\n" << describeHead(parameter) << "\n" << escape(parameter.description) << ".\n";
  if (!parameter.choices.empty()) {
    out << "One of";
    const char* separator = " ";
    for (const std::string& choice : parameter.choices) {
      out << separator << bold(choice);
      separator = ", ";
    }
    out << ".\n";
  }
  if (!parameter.defaultValue.empty()) {
    out << "Default: " << escape(parameter.defaultValue) << ".\n";
  }
}

void writeCommand(const Command& command, std::ostream& out) {
  out << ".SS " << escape(command.name) << "\n" << escape(command.description) << ".\n";
  for (const Parameter& argument : command.arguments) writeParameter(argument, out);
  for (const Parameter& option : command.options) writeParameter(option, out);
  if (!command.remarks.empty()) out << ".PP\n" << escape(command.remarks) << "\n";
  if (!command.exitStatus.empty()) {
    out << ".PP\nExit status: " << escape(command.exitStatus) << "\n";
  }
  out << ".PP\nExample:\n.PP\n.EX\n" << escape(command.example) << "\n.EE\n";
}

}  // namespace

void writeManualPage(const Command& program, const std::string& version, std::ostream& out) {
  out << ".TH " << program.name << R"( 1 "" ")" << program.name << " " << version
      << "\" \"User Commands\"\n"
      << ".SH NAME\n"
      << program.name << " \\- " << escape(program.description) << "\n"
      << ".SH SYNOPSIS\n.nf\n";
  for (const Command& command : program.commands) writeSynopsis(program.name, command, out);
  out << ".fi\n.SH DESCRIPTION\n"
      << escape(program.description) << ".\n.PP\n"
      << escape(program.remarks) << "\n.PP\nExample:\n.PP\n.EX\n"
      << escape(program.example) << "\n.EE\n.SH COMMANDS\n";
  for (const Command& command : program.commands) writeCommand(command, out);
}

}  // namespace evopath::manual
