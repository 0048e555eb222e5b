#pragma once

#include <stdexcept>
#include <string>

#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// What is wrong with a catalogue, and where.
///
/// `what()` is one line: the file if there is one, the place, and the reason.
class TARN_EVOLUTION_CATALOGUE_EXPORT CatalogueError : public std::runtime_error {
 public:
  /// `place` is a JSON pointer such as "/metamodels/3/version", or "line 3, column 5", or empty for
  /// the catalogue as a whole.
  CatalogueError(const std::string& place, const std::string& reason);

  /// The same error, said of `file`.
  CatalogueError inFile(const std::string& file) const;

  const std::string& file() const noexcept { return file_; }  ///< empty when there is none
  const std::string& place() const noexcept { return place_; }
  const std::string& reason() const noexcept { return reason_; }

 private:
  CatalogueError(const std::string& file, const std::string& place, const std::string& reason);

  std::string file_;
  std::string place_;
  std::string reason_;
};

}  // namespace tarn::evolution::catalogue
