#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>

#include "catalogue/picture/step_text.hpp"

namespace evopath {

/// Where a command's answer goes: standard output, or a file that then holds all of it or is left
/// as it was.
struct OutputOption {
  std::filesystem::path file;  ///< empty for standard output

  /// Adds --output to a command; it receives what is given, so this must outlive the parsing.
  void addTo(CLI::App& command);

  /// Throws std::runtime_error, naming the file, when it cannot be written.
  void write(const std::string& text) const;

  /// An answer that is written in pieces: to standard output at once, to a file when it is whole.
  class Stream {
   public:
    explicit Stream(const OutputOption& option)
        : option_(option), isAtOnce_(option.isStandardOutput()) {}
    void write(const std::string& text);
    void finish();

   private:
    const OutputOption& option_;
    const bool isAtOnce_;
    std::string kept_;
  };

  /// Colours for a terminal, unless NO_COLOR says otherwise.
  tarn::evolution::catalogue::Colouring colouring() const;

 private:
  bool isStandardOutput() const;
};

}  // namespace evopath
