#pragma once

#include <memory>

#include "pathfinder/repository_access.hpp"
#include "pathfinder/search/search_question.hpp"
#include "support/test_question.hpp"

namespace test {

/// The repository as linking and the searches see it, for as long as the repository lives.
inline tarn::evolution::pathfinder::RepositoryAccess& accessTo(TestRepository& repository) {
  using tarn::evolution::pathfinder::RepositoryAccess;
  if (!repository.access) repository.access = std::make_shared<RepositoryAccess>(repository);
  return *repository.access;
}

/// A question as the engines are asked it. Refers to what it is made from.
inline SearchQuestion engineQuestion(TestQuestion& question) {
  return {accessTo(question.repository), question.sources, question.targets,
          static_cast<tarn::evolution::pathfinder::Direction>(question.direction)};
}

}  // namespace test
