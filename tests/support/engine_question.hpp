#pragma once

#include <vector>

#include "pathfinder/search/search_question.hpp"
#include "support/test_repository.hpp"

namespace test {

/// A question as the engines are asked it. Refers to what it is made from.
inline SearchQuestion engineQuestion(TestRepository& repository,
                                     const std::vector<VersionBaseline>& sources,
                                     const std::vector<VersionBaseline>& targets,
                                     VersionRepository::Direction direction) {
  return {repository.access, sources, targets,
          static_cast<tarn::evolution::pathfinder::Direction>(direction)};
}

}  // namespace test
