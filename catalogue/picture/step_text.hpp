#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

#include "catalogue/picture/path_picture.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

enum class Colouring {
  Plain,
  Terminal,  ///< ANSI escape sequences
  // As hosts may write them.
  plain = Plain,
  terminal = Terminal,
};

/// Writes steps of a picture for a terminal: a heading, then a line for each move, with names and
/// versions of all steps in columns, and lines for its notes below; then, where they are known, why
/// the moves go together.
class TARN_EVOLUTION_CATALOGUE_EXPORT StepTextWriter {
 public:
  /// Keeps references.
  StepTextWriter(const PathPicture& picture, Colouring colouring, std::ostream& out);

  /// `step` counts from 0.
  void write(const std::string& heading, std::size_t step) const;

 private:
  void writeMove(const PathPicture::Move& move) const;
  void writeTies(const PathPicture::Step& step) const;

  const PathPicture& picture_;
  const Colouring colouring_;
  std::ostream& out_;
  std::size_t nameColumns_ = 0;
  std::size_t fromColumns_ = 0;
};

/// The text as a heading.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string emphasise(const std::string& text, Colouring colouring);

}  // namespace tarn::evolution::catalogue
