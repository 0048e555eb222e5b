#include "question_files.hpp"

#include <algorithm>
#include <stdexcept>
#include <tuple>

namespace bench {

namespace {

QuestionFile describe(const std::filesystem::path& path) {
  std::string label = path.stem().string();
  std::replace(label.begin(), label.end(), '-', '/');
  const std::size_t slash = label.find('/');
  return {path, label, label.substr(0, slash), std::stoul(label.substr(slash + 1))};
}

std::vector<QuestionFile> findQuestionFiles() {
  std::vector<QuestionFile> files;
  for (const auto& entry : std::filesystem::directory_iterator(CATALOGUES)) {
    if (entry.path().extension() == ".json") files.push_back(describe(entry.path()));
  }
  std::sort(files.begin(), files.end(), [](const QuestionFile& left, const QuestionFile& right) {
    return std::tie(left.family, left.metamodels, left.label) <
           std::tie(right.family, right.metamodels, right.label);
  });
  return files;
}

}  // namespace

const std::vector<QuestionFile>& questionFiles() {
  static const std::vector<QuestionFile> files = findQuestionFiles();
  return files;
}

const QuestionFile& questionFile(const std::string& label) {
  for (const QuestionFile& file : questionFiles()) {
    if (file.label == label) return file;
  }
  throw std::out_of_range("There is no catalogue for " + label + " in " CATALOGUES);
}

}  // namespace bench
