#include "selection_argument.hpp"

#include <stdexcept>

#include "catalogue/version_text.hpp"

namespace evopath {

using tarn::evolution::catalogue::parseName;
using tarn::evolution::catalogue::parseVersion;
using tarn::evolution::catalogue::Selection;

namespace {

void addTo(Selection& selection, const std::string& argument) {
  const std::size_t separator = argument.find('=');
  if (separator == std::string::npos) throw std::invalid_argument("must be NAME=VERSION");
  const std::u16string name = parseName(argument.substr(0, separator));
  if (!selection.emplace(name, parseVersion(argument.substr(separator + 1))).second) {
    throw std::invalid_argument("the name stands twice");
  }
}

}  // namespace

Selection parseSelection(const std::string& option, const std::vector<std::string>& arguments) {
  Selection selection;
  for (const std::string& argument : arguments) {
    try {
      addTo(selection, argument);
    } catch (const std::invalid_argument& error) {
      std::string place = option;
      place.append(" ").append(argument).append(": ");
      throw std::invalid_argument(place + error.what());
    }
  }
  return selection;
}

}  // namespace evopath
