#include "catalogue/catalogue_error.hpp"

namespace tarn::evolution::catalogue {

namespace {

std::string joined(const std::string& file, const std::string& place, const std::string& reason) {
  std::string result;
  for (const std::string* part : {&file, &place}) {
    if (!part->empty()) result += *part + ": ";
  }
  return result + reason;
}

}  // namespace

CatalogueError::CatalogueError(const std::string& place, const std::string& reason)
    : CatalogueError(std::string(), place, reason) {}

CatalogueError::CatalogueError(const std::string& file, const std::string& place,
                               const std::string& reason)
    : std::runtime_error(joined(file, place, reason)),
      file_(file),
      place_(place),
      reason_(reason) {}

CatalogueError CatalogueError::inFile(const std::string& file) const {
  return {file, place_, reason_};
}

}  // namespace tarn::evolution::catalogue
