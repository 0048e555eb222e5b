#pragma once

#include <memory>
#include <vector>

#include "support/test_repository.hpp"

namespace test {

/// A small random catalogue with a question: ranges, hops that skip, go sideways or back, doubled
/// hops, expensive hops, text versions with and without equivalents, names that only links bring
/// in, targets that name a part.
struct RandomQuestion {
  explicit RandomQuestion(unsigned seed);

  std::unique_ptr<TestRepository> repository = std::make_unique<TestRepository>();
  std::vector<VersionBaseline> sources;
  std::vector<VersionBaseline> targets;
  VersionRepository::Direction direction;
};

}  // namespace test
