#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "exit_status.hpp"

namespace evopath {

/// What `evopath path` was asked.
struct PathOptions {
  std::filesystem::path catalogue;
  std::vector<std::string> from;  ///< NAME=VERSION each
  std::vector<std::string> to;
  bool question = false;  ///< ask the catalogue's own question instead
  bool json = false;
  bool trace = false;
};

/// Asks for the path and prints it to standard output. Throws for bad input.
ExitStatus runPath(const PathOptions& options);

}  // namespace evopath
