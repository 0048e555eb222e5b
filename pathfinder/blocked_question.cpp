#include "pathfinder/blocked_question.hpp"

#include "pathfinder/learning/blocked_question_search.hpp"
#include "pathfinder/limits/search_watch.hpp"

namespace tarn::evolution::pathfinder {

BlockedQuestion::BlockedQuestion() = default;

BlockedQuestion::~BlockedQuestion() = default;

std::unique_ptr<BlockedQuestion> BlockedQuestion::pose(VersionRepository& repository,
                                                       const Selection& from, const Selection& to,
                                                       VersionRepository::Direction direction,
                                                       const SearchLimits& limits) {
  const SearchWatch watch(limits);
  return poseBlockedQuestion(repository, from, to, pathfinder::Direction(direction));
}

}  // namespace tarn::evolution::pathfinder
