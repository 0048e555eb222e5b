#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "catalogue/comparison/content_difference.hpp"
#include "pathfinder/hop.hpp"
#include "pathfinder/search_limits.hpp"

namespace tarn::evolution::catalogue {

/// How sure it is that differences are why an answer differs.
enum class CauseProof {
  None,        ///< they are all that could be
  Sufficient,  ///< the worse catalogue with them answers as the better one; there may be fewer
  Smallest,    ///< and no fewer differences do
};

/// Differences through which an answer differs. A version that only one catalogue has stands for
/// its hops as well.
struct ChangeCause {
  ContentDifference through;
  CauseProof proof = CauseProof::None;
};

struct CauseLimits {
  std::size_t questions = 300;  ///< to ask of catalogues between both
  std::chrono::nanoseconds time = std::chrono::seconds(10);
  pathfinder::SearchLimits search = {};  ///< of each; the deadline is that of all
};

/// Why the better of two catalogues has a path, and the worse one has none or a heavier one. All
/// that can matter to the question must be in both. `path` is that of the better one, of this
/// weight.
///
/// Takes what differs into the worse catalogue: first what the path passes, then less and less of
/// that, as long as the answer is as good. At last tries whether fewer differences, any of them,
/// would do. Whatever is said to be sufficient has been asked.
ChangeCause findCause(const CatalogueContent& worse, const CatalogueContent& better,
                      const Question& question, const std::vector<pathfinder::BaselineHop>& path,
                      std::uint64_t weight, const CauseLimits& limits);

}  // namespace tarn::evolution::catalogue
