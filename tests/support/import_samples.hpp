#pragma once

#include <string>
#include <utility>
#include <vector>

#include "catalogue/import/import.hpp"

namespace test {

/// Sources of a format that use all that it offers.
struct ImportSample {
  const char* word;  ///< of the format, as evopath calls it
  tarn::evolution::catalogue::ImportFormat format;
  std::vector<std::pair<std::string, std::string>> files;  ///< names and contents
};

/// One for each format and spelling.
const std::vector<ImportSample>& importSamples();

}  // namespace test
