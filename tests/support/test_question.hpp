#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "support/test_repository.hpp"

namespace test {

/// A question about paths as a text, "CATALOGUE | FROM | TO | DIRECTION | BESIDE".
///
/// The catalogue is what TestRepository::add takes. The ends have alternatives, with " , " between
/// them:
///
///     A1 B1           every baseline of the selection
///     ^ A1 B1         the same, but of another repository that has the same catalogue
///     * A1 B2/2 C-    put together by hand: just A's first linked metamodel, B's second and an
///                     entry for C that holds none; D2@E holds D at 2.0.0 under the name E
///
/// The direction is "forward", "backward" or, as without one, any. Names beside have one hop, in
/// that direction, and nothing to do with the catalogue; every source holds them where it begins:
///
///     K  K.  K>       the targets leave it free, hold it where it is, hold it where its hop leads
struct QuestionText {
  explicit QuestionText(const std::string& text);

  /// The same question with the names beside as part of catalogue and ends; with only the first one
  /// of each of some kinds ("", ".", ">").
  QuestionText withBesideInside() const;
  QuestionText withFirstInside(const std::set<std::string>& kinds) const;

  VersionRepository::Direction askedDirection() const;

  std::string catalogue;
  std::string from;
  std::string to;
  std::string direction;
  std::string beside;

 private:
  QuestionText withInside(const std::string& some) const;
};

/// A question that is posed to a repository of its own, but for the names beside.
class TestQuestion {
 public:
  explicit TestQuestion(const QuestionText& text);
  explicit TestQuestion(const std::string& text) : TestQuestion(QuestionText(text)) {}

  /// Whether both ends can be had.
  bool isPosed() const { return !sources.empty() && !targets.empty(); }

  TestRepository repository;
  std::vector<VersionBaseline> sources;
  std::vector<VersionBaseline> targets;
  VersionRepository::Direction direction;

 private:
  std::vector<VersionBaseline> baselinesOf(const std::string& alternatives);

  std::unique_ptr<TestRepository> former_;
};

/// What a question comes to: the path as `describe` writes it, "none", or what is thrown.
std::string outcomeOf(const std::function<Path()>& ask);

}  // namespace test
