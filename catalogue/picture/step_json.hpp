#pragma once

#include "catalogue/picture/path_picture.hpp"
#include "catalogue/text/json_printer.hpp"

namespace tarn::evolution::catalogue {

/// Writes what a step of a picture does: "weight", "hops": [{"name", "from", "to", "expensive",
/// "notes"}], "broughtIn": [{"name", "version", "notes"}]; "notes", a list of texts, only where
/// there are any.
void writeStepFields(JsonPrinter& printer, const PathPicture& picture,
                     const PathPicture::Step& step);

/// Writes a list of all steps of a picture.
void writeSteps(JsonPrinter& printer, const PathPicture& picture);

}  // namespace tarn::evolution::catalogue
