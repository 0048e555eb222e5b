#include "question_file.hpp"

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace evopath {

std::ifstream openQuestions(const std::filesystem::path& file) {
  std::error_code ignored;
  std::ifstream in(file, std::ios::binary);
  const int error = errno;
  if (std::filesystem::is_directory(file, ignored)) {
    throw std::runtime_error(file.string() + ": is a directory, not a file");
  }
  if (!in) {
    throw std::runtime_error(file.string() +
                             ": cannot be opened: " + std::generic_category().message(error));
  }
  in.exceptions(std::ios::badbit);
  return in;
}

}  // namespace evopath
