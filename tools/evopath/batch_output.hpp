#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "catalogue/explanation/batch.hpp"

namespace evopath {

/// Where the answers of a batch go: standard output, or a file to which each is added at once, so
/// that a batch that was ended can go on.
class BatchOutput {
 public:
  /// `file` is empty for standard output. Throws std::runtime_error, naming the file, when it
  /// cannot be written, and when it holds something that is not to be resumed.
  BatchOutput(const std::filesystem::path& file, bool resumes);
  BatchOutput(const BatchOutput&) = delete;
  BatchOutput& operator=(const BatchOutput&) = delete;
  ~BatchOutput();

  /// Takes the questions that the file answers, and drops what stands there after the last whole
  /// answer. Throws std::runtime_error when it answers others.
  void skipAnswered(tarn::evolution::catalogue::BatchQuestions& questions) const;

  void write(const std::string& line) const;

 private:
  void readAnswered();

  std::filesystem::path file_;
  int descriptor_ = -1;
  std::vector<std::uint64_t> answered_;  // by the line of the question
  bool isResumed_ = false;
  std::uintmax_t answeredSize_ = 0;  // in bytes
};

}  // namespace evopath
