#pragma once

#include <filesystem>
#include <functional>

#include "catalogue/catalogue.hpp"
#include "catalogue/import/import.hpp"

namespace tarn::evolution::catalogue {

/// Makes the content of a catalogue of what was there.
using Successor = std::function<CatalogueContent(CatalogueContent former)>;

/// Puts what `succeed` makes in the place of a catalogue, and fills in what the report says of
/// that. From before `succeed` is called until it is done nobody else writes the catalogue; whoever
/// has the old one open keeps it. Throws CatalogueError when what stands there is not to be
/// replaced or what comes is unsound; nothing has been changed then.
void updateCatalogue(const std::filesystem::path& catalogue, const Successor& succeed,
                     const StoreProgress& progress, ChangeMode mode, ImportReport& report);

}  // namespace tarn::evolution::catalogue
