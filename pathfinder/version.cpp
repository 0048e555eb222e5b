#include "pathfinder/version.hpp"

namespace tarn::evolution::pathfinder {

SemVer libraryVersion() noexcept {
  return headerVersion;
}

}  // namespace tarn::evolution::pathfinder
