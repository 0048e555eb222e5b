#pragma once

#include <iosfwd>
#include <string>

#include "catalogue/picture/path_picture.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// The path as a script for a POSIX shell: for each hop a line made of `line`, in which {step},
/// {name}, {from} and {to} stand for what they say, quoted for the shell where that is necessary,
/// and {expensive} for true or false; {{ and }} stand for a brace. Comments tell the start, the
/// steps and what enters. It ends at the first command that fails.
///
/// Throws std::invalid_argument, before anything is written, for other words in braces, and for a
/// brace without its other half.
TARN_EVOLUTION_CATALOGUE_EXPORT void writePathScript(const PathPicture& picture,
                                                     const std::string& line, std::ostream& out);

}  // namespace tarn::evolution::catalogue
