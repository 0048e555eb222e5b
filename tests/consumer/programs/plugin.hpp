#pragma once

#include <stdexcept>

#include "pathfinder/version_repository.hpp"

/// What the plugin and its host share. The host loads the plugin with dlopen, and neither exports
/// anything else.

/// What the plugin's repository throws when it is asked for hops of "broken".
class __attribute__((visibility("default"))) PluginError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

extern "C" {

/// A repository that lives in the plugin; the caller's to delete.
using MakeRepository = tarn::evolution::pathfinder::VersionRepository*();

/// Whether the path finder's errors arrive in the plugin by their types.
using CatchesByType = bool(tarn::evolution::pathfinder::VersionRepository&);
}
