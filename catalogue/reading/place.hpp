#pragma once

#include <cstdint>
#include <string>

namespace tarn::evolution::catalogue {

/// Where in a catalogue something stands.
struct Place {
  std::string text;         ///< JSON pointer, or table row; empty for the catalogue as a whole
  std::uint64_t order = 0;  ///< ascending in the order of the file
};

}  // namespace tarn::evolution::catalogue
