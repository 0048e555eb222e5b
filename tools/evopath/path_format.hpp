#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "catalogue/picture/path_picture.hpp"
#include "catalogue/picture/step_text.hpp"

namespace evopath {

/// The forms in which a path can be shown.
enum class PathFormat { Text, Json, Script, Html, Svg, Dot, Mermaid };

/// The options --format, --json and --template of a command.
struct PathFormatOption {
  PathFormat format = PathFormat::Text;
  std::string scriptLine;  ///< for each hop

  /// Adds the options to a command; they set the fields, so this must outlive the parsing.
  void addTo(CLI::App& command);

  /// Throws what is wrong with the template of a script, or that it is missing.
  void expectTemplate() const;

  /// Whether the answer is a picture or script, which there is none of when there is no path.
  bool isPicture() const { return format != PathFormat::Text && format != PathFormat::Json; }
};

/// The picture in a form other than JSON.
std::string renderPath(const tarn::evolution::catalogue::PathPicture& picture,
                       const PathFormatOption& form,
                       tarn::evolution::catalogue::Colouring colouring);

}  // namespace evopath
