#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace bench {

/// A catalogue with a question, made by write_catalogues.py.
struct QuestionFile {
  std::filesystem::path path;
  std::string label;  ///< such as "uniform/64" or "random/8/seed2"
  std::string family;
  std::size_t metamodels;
};

/// All that were made for this build, by family and number of metamodels.
const std::vector<QuestionFile>& questionFiles();

/// The one of that label; throws std::out_of_range when there is none.
const QuestionFile& questionFile(const std::string& label);

}  // namespace bench
