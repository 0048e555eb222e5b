#pragma once

#include <memory>

#include "pathfinder/blocked_question.hpp"
#include "pathfinder/search/direction.hpp"

namespace tarn::evolution::pathfinder {

/// `BlockedQuestion::pose` within the limits of this thread's search.
std::unique_ptr<BlockedQuestion> poseBlockedQuestion(VersionRepository& repository,
                                                     const BlockedQuestion::Selection& from,
                                                     const BlockedQuestion::Selection& to,
                                                     Direction direction);

}  // namespace tarn::evolution::pathfinder
