#pragma once

#include <utility>

#include "answers.hpp"
#include "stopwatch.hpp"

namespace bench {

template <class Result>
struct Timed {
  Result result;
  double seconds;
};

/// The result of `ask(repository)` on a repository that has not been asked anything before, and the
/// time it took. Making the repository and taking it apart does not count.
template <class Ask>
auto timeFresh(const Catalogue& catalogue, const Ask& ask) {
  CatalogueRepository repository(catalogue);
  const Stopwatch stopwatch;
  auto result = ask(repository);
  const double seconds = stopwatch.seconds();
  return Timed<decltype(result)>{std::move(result), seconds};
}

}  // namespace bench
