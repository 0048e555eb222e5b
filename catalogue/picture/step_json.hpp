#pragma once

#include "catalogue/json_printer.hpp"
#include "catalogue/picture/path_picture.hpp"

namespace tarn::evolution::catalogue {

/// Writes the fields of a step of a picture: "weight", "hops": [{"name", "from", "to",
/// "expensive"}], "broughtIn": [{"name", "version"}].
void writeStepFields(JsonPrinter& printer, const PathPicture& picture,
                     const PathPicture::Step& step);

}  // namespace tarn::evolution::catalogue
