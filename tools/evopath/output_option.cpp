#include "output_option.hpp"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "file_arguments.hpp"
#include "standard_streams.hpp"
#include "text_output.hpp"

namespace evopath {

using tarn::evolution::catalogue::Colouring;

namespace {

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

void OutputOption::addTo(CLI::App& command) {
  command.add_option("--output", file, "Write to this file instead of standard output")
      ->type_name(fileTypeName);
}

void OutputOption::write(const std::string& text) const {
  if (isStandardOutput()) {
    writeToStandardOutput(text);
  } else {
    writeToFile(file, text);
  }
}

void OutputOption::Stream::write(const std::string& text) {
  if (isAtOnce_) {
    writeToStandardOutput(text);
  } else {
    kept_ += text;
  }
}

void OutputOption::Stream::finish() {
  if (!isAtOnce_) option_.write(kept_);
}

bool OutputOption::isStandardOutput() const {
  return file.empty() || evopath::isStandardOutput(file);
}

Colouring OutputOption::colouring() const {
  const char* terminal = std::getenv("TERM");
  const bool isDumb = terminal != nullptr && std::string_view(terminal) == "dumb";
  const bool isColoured = (file.empty() || file == standardStream) &&
                          ::isatty(STDOUT_FILENO) == 1 && !isSet("NO_COLOR");
  return isColoured && !isDumb ? Colouring::Terminal : Colouring::Plain;
}

}  // namespace evopath
