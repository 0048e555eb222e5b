#pragma once

#include <string>
#include <vector>

#include "catalogue/catalogue.hpp"

namespace evopath {

/// The selection that arguments of the form NAME=VERSION make. Throws std::invalid_argument, naming
/// `option` and what was given, for an argument of another form or a name that stands twice.
tarn::evolution::catalogue::Selection parseSelection(const std::string& option,
                                                     const std::vector<std::string>& arguments);

}  // namespace evopath
