#pragma once

#include <cstddef>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "support/test_repository.hpp"

namespace test {

/// A small random catalogue with a question, or a question without sources when a version at its
/// ends cannot be linked.
class RandomQuestion {
 public:
  enum Shape {
    /// Ranges, hops that skip, go sideways or back, doubled hops, expensive hops, text versions
    /// with and without equivalents, names that only links bring in, targets that name a part.
    Loose,
    /// A hidden way through narrow ranges, with dear and cheap hops beside it: what one metamodel
    /// saves, others may have to pay for.
    Web,
  };

  explicit RandomQuestion(unsigned seed, Shape shape = Loose);

  std::string catalogue;
  TestRepository repository{""};
  std::vector<VersionBaseline> sources;
  std::vector<VersionBaseline> targets;
  VersionRepository::Direction direction = anyDirection;

 private:
  bool chance(unsigned percent) { return random_() % 100 < percent; }
  std::size_t upTo(std::size_t last) { return 1 + random_() % last; }
  void make(char end);
  void addVersions(char name, std::size_t last);
  std::string someRange(const std::vector<std::string>& versions);
  void weave(char end);
  void weaveVersion(char name, std::size_t version,
                    const std::vector<std::map<char, std::size_t>>& epochs);
  void ask(const std::string& from, const std::string& to);

  std::mt19937 random_;
  std::map<char, std::vector<std::string>> versions_;
};

}  // namespace test
