#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "byte_source.hpp"
#include "small_catalogue.hpp"
#include "support/plain_model.hpp"
#include "support/test_repository.hpp"

namespace fuzz {

/// One repository, what is done with it, and the model of what it has to answer. Ends the process
/// with a report when the two differ.
class RepositorySession {
 public:
  /// Makes the catalogue; what to do with it follows in the same bytes.
  explicit RepositorySession(ByteSource& bytes);

  /// Does all that the bytes say, up to a number of operations.
  void run();

 private:
  using Baseline = test::PlainModel::Baseline;
  using Baselines = std::vector<Baseline>;
  using Direction = test::VersionRepository::Direction;

  struct PathQuestion {
    Baselines sources;
    Baselines targets;
    Direction direction;
  };

  /// What an operation came to: its answer as a text, or how it failed.
  struct Outcome {
    std::string text;
    test::Path path;
  };

  /// Asks one repository, be it the one of the session or a fresh one.
  using Ask = std::function<test::Path(test::TestRepository&)>;

  void runOperation();
  void askBetweenBaselines();
  void askBetweenTwoBaselines();
  void askBetweenSelections();
  void askToSelection();
  void askBothEngines();
  void listSteps();
  void combineSelection();
  void linkOneMetamodel();
  void buildBaseline();
  void linkClone();
  void lookUp();
  void forgetPaths();
  void addHop();
  void addMetamodel();
  void failSoon();

  void checkPath(const PathQuestion& question, const Ask& ask);
  void forgetUnlessEmpty(const test::Path& path);
  std::optional<std::string> cachedPath(const PathQuestion& question) const;
  void checkSettled(const std::string& expected, const Ask& ask);
  void checkAgainstModel(const PathQuestion& question, const Outcome& found);
  void check(const std::string& what, const std::string& expected, const std::string& found) const;
  Outcome outcomeOf(const std::function<test::Path()>& ask);
  std::string outcomeText(const std::function<std::string()>& ask);
  void freshly(const std::function<void(test::TestRepository&)>& use) const;

  test::VersionBaseline in(test::TestRepository& repository, const Baseline& baseline);
  std::vector<test::VersionBaseline> in(test::TestRepository& repository, const Baselines& some);
  void remember(const test::VersionBaseline& baseline);

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
  int loads_ = 0;      // of metamodels, in the operation that runs
  int callsLeft_ = 0;  // until one fails; 0 for never
  int additions_ = 0;
  std::string history_;
};

}  // namespace fuzz
