#pragma once

#include <string>

#include "pathfinder/metamodel.hpp"

/// Names and versions as they stand in the text of an exception: whatever the global locale is, and
/// without the NULs at which `what()` would seem to end. Each stands as U+2400, the symbol for it.
namespace tarn::evolution::pathfinder {

/// "major.minor.patch".
std::string plainText(const SemVer& version);

std::string shownText(const std::u16string& text);
std::string shownText(const VersionId& version);

/// "name@version", either of them cut short after a hundred bytes.
std::string briefText(const Metamodel& metamodel);

}  // namespace tarn::evolution::pathfinder
