#include "selection_argument.hpp"

#include <stdexcept>

#include "catalogue/selection_file.hpp"
#include "catalogue/text/visible.hpp"
#include "catalogue/version_text.hpp"
#include "standard_streams.hpp"

namespace evopath {

using tarn::evolution::catalogue::parseName;
using tarn::evolution::catalogue::parseVersion;
using tarn::evolution::catalogue::QuestionSide;
using tarn::evolution::catalogue::readSelectionFile;
using tarn::evolution::catalogue::Selection;
using tarn::evolution::catalogue::visible;

namespace {

Selection parseOne(const std::string& argument, QuestionSide side) {
  const std::size_t separator = argument.find('=');
  if (separator == std::string::npos) {
    if (argument.starts_with('@')) return readSelectionFile(inputFile(argument.substr(1)), side);
    throw std::invalid_argument("must be NAME=VERSION or @FILE");
  }
  return {{parseName(argument.substr(0, separator)), parseVersion(argument.substr(separator + 1))}};
}

void addTo(Selection& selection, const Selection& added) {
  for (const auto& [name, version] : added) {
    if (selection.emplace(name, version).second) continue;
    throw std::invalid_argument("the name " + visible(name) + " stands twice");
  }
}

}  // namespace

Selection parseSelection(const std::string& option, const std::vector<std::string>& arguments,
                         QuestionSide side) {
  Selection selection;
  for (const std::string& argument : arguments) {
    try {
      addTo(selection, parseOne(argument, side));
    } catch (const std::invalid_argument& error) {
      std::string place = option;
      place.append(" ").append(argument).append(": ");
      throw std::invalid_argument(place + error.what());
    }
  }
  return selection;
}

}  // namespace evopath
