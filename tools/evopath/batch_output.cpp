#include "batch_output.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <fstream>
#include <stdexcept>
#include <string_view>

#include "standard_streams.hpp"
#include "text_output.hpp"

namespace evopath {

namespace {

/// The line of the question that an answer is to; 0 for what is no answer.
std::uint64_t lineAnswered(std::string_view answer) {
  constexpr std::string_view beginning = "{\"line\":";
  std::uint64_t line = 0;
  if (!answer.starts_with(beginning)) return line;
  answer.remove_prefix(beginning.size());
  std::from_chars(answer.data(), answer.data() + answer.size(), line);
  return line;
}

}  // namespace

BatchOutput::BatchOutput(const std::filesystem::path& file, bool resumes) : file_(file) {
  if (file_.empty() || isStandardOutput(file_)) {
    file_.clear();
    return;
  }
  std::error_code error;
  const bool isRegular = std::filesystem::is_regular_file(file_, error);
  if (isRegular && std::filesystem::file_size(file_, error) > 0) {
    if (!resumes) {
      throw std::runtime_error(file_.string() + ": exists; --resume goes on with it");
    }
    readAnswered();
    isResumed_ = true;
  }
  descriptor_ = ::open(file_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  if (descriptor_ < 0) failToWrite(file_.string(), errno);
}

BatchOutput::~BatchOutput() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

void BatchOutput::readAnswered() {
  std::ifstream in(file_, std::ios::binary);
  for (std::string line; std::getline(in, line) && !in.eof(); answeredSize_ += line.size() + 1) {
    answered_.push_back(lineAnswered(line));
  }
}

void BatchOutput::skipAnswered(tarn::evolution::catalogue::BatchQuestions& questions) const {
  for (std::size_t i = 0; i < answered_.size(); ++i) {
    const auto question = questions.next();
    if (question && question->line == answered_[i]) continue;
    throw std::runtime_error(file_.string() + ": line " + std::to_string(i + 1) +
                             " does not answer the question that it should" +
                             (question ? ", that of line " + std::to_string(question->line) : "") +
                             "; it is of other questions or another part");
  }
  std::error_code error;
  if (isResumed_) std::filesystem::resize_file(file_, answeredSize_, error);
  if (error) failToWrite(file_.string(), error.value());
}

void BatchOutput::write(const std::string& line) const {
  if (file_.empty()) {
    writeToStandardOutput(line);
  } else {
    writeToDescriptor(descriptor_, line, file_.string());
  }
}

}  // namespace evopath
