#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tarn_evolution_catalogue_export.hpp"

/// How much room UTF-8 text takes where people read it. Text that is not UTF-8 is read with U+FFFD
/// for each byte that does not fit.
namespace tarn::evolution::catalogue {

/// The text with an escape, such as \u{1b}, for everything that would not show or would disturb
/// what stands around it: control characters, line breaks, marks that turn the direction of
/// writing. Such a text is safe on a terminal and in XML.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string toVisible(std::string_view utf8);

/// The columns that the text takes on a terminal: two for a wide character, none for a combining
/// one.
TARN_EVOLUTION_CATALOGUE_EXPORT std::size_t countColumns(std::string_view utf8);

/// The text with blanks after it up to that many columns.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string padTo(std::size_t columns, std::string_view utf8);

/// An upper estimate, in units of the font size, of the width of the text in a proportional
/// sans-serif font: whichever of the usual ones is taken, the text fits.
TARN_EVOLUTION_CATALOGUE_EXPORT double estimateWidth(std::string_view utf8);

/// The text if its estimated width is at most `width`, or else its beginning with an ellipsis.
/// Never cuts within what is read as one character.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string shortenTo(double width, std::string_view utf8);

}  // namespace tarn::evolution::catalogue
