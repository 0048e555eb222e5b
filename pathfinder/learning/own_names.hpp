#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarn::evolution::pathfinder {

/// A version by what it depends on, as positions in lists of names and of versions.
struct NeedingVersion {
  struct Need {
    std::uint32_t name = 0;
    std::vector<std::uint32_t> admitted = {};  ///< versions of that name, as far as they are known
  };

  std::uint32_t name;
  std::vector<Need> needs = {};
};

/// Whether some version depends, by way of others, on its own name. It may then be linked to
/// another version of itself, which stands back wherever it is held: no choice of one version for
/// each name tells of that.
///
/// Cost: linear, unless names depend on one another in circles; then for each of their versions
/// what it leads to among them. Of very many versions it says so without a look at each.
bool mayBringInOwnName(const std::vector<NeedingVersion>& versions, std::size_t names);

}  // namespace tarn::evolution::pathfinder
