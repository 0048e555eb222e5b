#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "standard_streams.hpp"

namespace evopath {

/// What an argument that names a file is called in help texts; completions offer files for it.
inline constexpr const char* fileTypeName = "FILE";

/// Has an option read standard input for a hyphen.
inline CLI::Option* readsInput(CLI::Option* option) {
  const auto replaceHyphen = [](std::string& argument) {
    try {
      argument = inputFile(argument).string();
      return std::string();
    } catch (const std::invalid_argument& error) {
      return std::string(error.what());
    }
  };
  return option->transform(CLI::Validator(replaceHyphen, ""));
}

/// Adds a file as a command's required argument; `file` receives what is given, so it must outlive
/// the parsing.
inline void addFileArgument(CLI::App& command, const char* name, std::filesystem::path& file,
                            const char* description) {
  command.add_option(name, file, description)->type_name(fileTypeName)->required();
}

/// The same for a file that is read.
inline void addInputArgument(CLI::App& command, const char* name, std::filesystem::path& file,
                             const char* description) {
  readsInput(command.add_option(name, file, description)->type_name(fileTypeName)->required());
}

/// The same for a catalogue in either form.
inline void addCatalogueArgument(CLI::App& command, std::filesystem::path& file) {
  addInputArgument(command, "catalogue", file,
                   "The catalogue, a JSON file or a SQLite store; - for JSON on standard input");
}

/// The same for the store that a command works on.
inline void addStoreArgument(CLI::App& command, std::filesystem::path& file) {
  addFileArgument(command, "store", file, "The store, a SQLite file");
}

}  // namespace evopath
