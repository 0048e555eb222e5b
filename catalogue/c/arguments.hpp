#pragma once

#include <functional>
#include <stdexcept>
#include <stop_token>
#include <string>

#include "catalogue/c/tarn_evolution_catalogue.h"
#include "catalogue/catalogue.hpp"
#include "pathfinder/search_limits.hpp"

/// What C hands in. Everything here throws std::invalid_argument, which names the argument, for
/// what cannot be.
namespace tarn::evolution::catalogue::c {

/// A pointer that must not be null.
template <class Value>
Value& required(Value* pointer, const char* argument) {
  if (pointer == nullptr) throw std::invalid_argument(std::string(argument) + ": is NULL");
  return *pointer;
}

/// The text that `parse`, which throws std::invalid_argument, makes something of.
template <class Parse>
auto parsed(const char* text, const std::string& argument, const Parse& parse) {
  const char& first = required(text, argument.c_str());
  try {
    return parse(std::string(&first));
  } catch (const std::invalid_argument& error) {
    throw std::invalid_argument(argument + ": " + error.what());
  }
}

std::u16string readName(const char* text, const std::string& argument);
pathfinder::VersionId readVersion(const char* text, const std::string& argument);

/// One range, or the union of several.
pathfinder::VersionRange readRanges(const tarn_evolution_range* ranges, size_t count,
                                    const std::string& argument);

Selection readSelection(const tarn_evolution_named_version* items, size_t count,
                        const std::string& argument);

/// No limits for NULL. Refers to `*limits` and to its stop.
pathfinder::SearchLimits readLimits(const tarn_evolution_limits* limits);

/// Whom to tell of better paths, which throws what ends the search; empty for nobody.
std::function<void(const tarn_evolution_steps&)> readBetterPath(
    const tarn_evolution_limits* limits);

/// Throws for a null pointer and for a size that is none; returns what the caller knows.
tarn_evolution_callbacks readCallbacks(const tarn_evolution_callbacks* callbacks);

}  // namespace tarn::evolution::catalogue::c

struct tarn_evolution_stop {
  std::stop_source source;
};
