#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/evopath_program.hpp"
#include "support/import_samples.hpp"

namespace test {

/// Imports with evopath what stands in "in", in a folder of its own.
class ImportFolder : public EvopathProgram {
 protected:
  /// Below "in"; by names and contents.
  void writeFiles(const std::vector<std::pair<std::string, std::string>>& files) const;

  /// What the tool says of the sample of a format, and what it makes of it: rows without marks and
  /// names of fields.
  std::string imported(const std::string& word, const std::string& options = "") const;

  /// What the tool says of a file that is at fault; "in" holds nothing else.
  std::string said(const std::string& word, const std::string& name, const std::string& text,
                   const std::string& options = "") const;
};

}  // namespace test
