#include "standard_streams.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>

namespace evopath {

std::filesystem::path inputFile(const std::string& argument) {
  static bool isTaken = false;
  if (argument != standardStream) return argument;
  if (isTaken) throw std::invalid_argument("standard input can be read only once");
  isTaken = true;
  return "/dev/stdin";
}

bool isStandardOutput(const std::filesystem::path& file) {
  if (file == standardStream) return true;
  struct stat named {};
  struct stat opened {};
  return ::stat(file.c_str(), &named) == 0 && ::fstat(STDOUT_FILENO, &opened) == 0 &&
         named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

}  // namespace evopath
