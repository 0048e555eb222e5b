#pragma once

#include <string>
#include <utility>

#include "support/store_folder.hpp"

namespace test {

/// Runs evopath in the folder.
class EvopathProgram : public StoreFolder {
 protected:
  /// The exit status, and what goes to standard output.
  std::pair<int, std::string> run(const std::string& arguments) const {
    return runShell("'" EVOPATH_PROGRAM "' " + arguments);
  }
};

}  // namespace test
