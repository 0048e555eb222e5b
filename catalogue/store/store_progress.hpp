#pragma once

#include <cstdint>
#include <functional>

namespace tarn::evolution::catalogue {

/// Told now and then, by long operations on stores, which share of the work is done: from 0 to 1,
/// on the caller's thread. What it throws ends the operation, which then has changed nothing,
/// unless the share was 1: then all is done.
using StoreProgress = std::function<void(double share)>;

/// How much an operation has moved.
struct StoreCounts {
  std::uint64_t metamodels = 0;  ///< versions of metamodels
  std::uint64_t hops = 0;
};

}  // namespace tarn::evolution::catalogue
