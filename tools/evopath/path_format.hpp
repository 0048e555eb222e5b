#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "catalogue/picture/path_picture.hpp"
#include "catalogue/picture/step_text.hpp"

namespace evopath {

/// The forms in which a path can be shown.
enum class PathFormat { Text, Json, Html, Svg, Dot, Mermaid };

/// The options --format and --json of a command.
struct PathFormatOption {
  PathFormat format = PathFormat::Text;

  /// Adds the options to a command; they set `format`, so this must outlive the parsing.
  void addTo(CLI::App& command);

  /// Whether the answer is a picture, which there is none of when there is no path.
  bool isPicture() const { return format != PathFormat::Text && format != PathFormat::Json; }
};

/// The picture in that form.
std::string renderPath(const tarn::evolution::catalogue::PathPicture& picture, PathFormat format,
                       tarn::evolution::catalogue::Colouring colouring);

}  // namespace evopath
