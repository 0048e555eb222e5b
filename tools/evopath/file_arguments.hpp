#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>

namespace evopath {

/// What an argument that names a file is called in help texts; completions offer files for it.
inline constexpr const char* fileTypeName = "FILE";

/// Adds a file as a command's required argument; `file` receives what is given, so it must outlive
/// the parsing.
inline void addFileArgument(CLI::App& command, const char* name, std::filesystem::path& file,
                            const char* description) {
  command.add_option(name, file, description)->type_name(fileTypeName)->required();
}

/// The same for a catalogue in either form.
inline void addCatalogueArgument(CLI::App& command, std::filesystem::path& file) {
  addFileArgument(command, "catalogue", file, "The catalogue, a JSON file or a SQLite store");
}

/// The same for the store that a command works on.
inline void addStoreArgument(CLI::App& command, std::filesystem::path& file) {
  addFileArgument(command, "store", file, "The store, a SQLite file");
}

}  // namespace evopath
