#pragma once

#include <cstdint>
#include <functional>

namespace tarn::evolution::catalogue {

/// Told now and then, by long operations on stores, which share of the work is done: from 0 to 1,
/// on the caller's thread. Told so also within long steps, with the same share again, up to the
/// moment from which on the operation can only succeed or fail. What it throws ends the operation,
/// which then has changed nothing.
using StoreProgress = std::function<void(double share)>;

/// Whether a change is made or only tried. A trial does all that the change would do, its checks
/// above all, and returns or throws what it would, but works on a copy in SQLite's temporary files
/// (see TMPDIR). It takes no lock, makes no file beside the one that would change, and leaves that
/// as it is; whether it could be written is not looked at.
enum class ChangeMode { Made, Tried };

/// How much an operation has moved.
struct StoreCounts {
  std::uint64_t metamodels = 0;  ///< versions of metamodels
  std::uint64_t hops = 0;
};

}  // namespace tarn::evolution::catalogue
