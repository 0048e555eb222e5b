#pragma once

#include <string>
#include <string_view>

#include "tarn_evolution_catalogue_export.hpp"

/// Names and versions, whatever they hold, as parts of other languages. What would not show is
/// escaped as `toVisible` does.
namespace tarn::evolution::catalogue {

/// For the content of an XML or HTML element, or an attribute's value between quotation marks.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string escapeXml(std::string_view utf8);

/// A quoted identifier or label of DOT, the quotation marks included.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string quoteDot(std::string_view utf8);

/// A quoted label of a Mermaid flowchart, the quotation marks included.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string quoteMermaid(std::string_view utf8);

/// All of an HTML page before the content of its body: a page that has everything in itself and may
/// ask nothing of the network. The title is HTML.
std::string pageBegin(const std::string& title, std::string_view style);

}  // namespace tarn::evolution::catalogue
