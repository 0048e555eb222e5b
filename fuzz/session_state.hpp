#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "byte_source.hpp"
#include "small_catalogue.hpp"
#include "support/plain_model.hpp"
#include "support/test_repository.hpp"

namespace fuzz {

/// A repository, the model of what it has to answer, and what is known of both so far.
class SessionState {
 protected:
  using Baseline = test::PlainModel::Baseline;
  using Baselines = std::vector<Baseline>;
  using Direction = test::VersionRepository::Direction;

  static constexpr const char* refused = "refused";  ///< what cannot be linked, or is unknown
  static constexpr const char* failed = "failed";    ///< a callback was told to

  /// What an operation came to: its answer as a text, or how it failed.
  struct Outcome {
    std::string text;
    test::Path path;
  };

  explicit SessionState(ByteSource& bytes);
  SessionState(const SessionState&) = delete;
  SessionState& operator=(const SessionState&) = delete;
  ~SessionState() = default;

  /// Ends the process with a report unless the two are the same.
  void check(const std::string& what, const std::string& expected, const std::string& found) const;

  Outcome outcomeOf(const std::function<test::Path()>& ask);
  std::string outcomeText(const std::function<std::string()>& ask);
  void freshly(const std::function<void(test::TestRepository&)>& use) const;

  /// The repository's baselines for those of the model.
  test::VersionBaseline in(test::TestRepository& repository, const Baseline& baseline);
  std::vector<test::VersionBaseline> in(test::TestRepository& repository, const Baselines& some);
  void remember(const test::VersionBaseline& baseline);
  void forgetPaths();

  Baselines someBaselines();
  test::Selection someSelection();
  std::shared_ptr<test::LinkedMetamodel> someLinked();
  Direction someDirection();

  ByteSource& bytes_;
  SmallCatalogue catalogue_;
  test::TestRepository repository_;
  test::PlainModel model_;

  std::map<Baseline, test::VersionBaseline> known_;
  Baselines listed_;  // what is known, in the order of appearance

  /// What the path cache has to hold, by source and target.
  std::map<std::pair<Baseline, Baseline>, std::string> paths_;
  int additions_ = 0;

  int calls_ = 0;      // that the repository has made
  int loads_ = 0;      // since this was set to 0
  int callsLeft_ = 0;  // until one fails; 0 for never
  std::string history_;
};

}  // namespace fuzz
