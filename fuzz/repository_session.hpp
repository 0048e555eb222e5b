#pragma once

#include <functional>
#include <optional>
#include <string>

#include "session_state.hpp"

namespace fuzz {

/// One repository and what is done with it. Ends the process with a report when an answer is not
/// the model's.
class RepositorySession : private SessionState {
 public:
  /// Makes the catalogue; what to do with it follows in the same bytes.
  explicit RepositorySession(ByteSource& bytes) : SessionState(bytes) {}

  /// Does all that the bytes say, up to a number of operations.
  void run();

 private:
  struct PathQuestion {
    Baselines sources;
    Baselines targets;
    Direction direction;
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
  void forget() { forgetPaths(); }
  void addHop();
  void addMetamodel();
  void failSoon();

  void checkPath(const PathQuestion& question, const Ask& ask);
  std::optional<std::string> cachedPath(const PathQuestion& question) const;
  void checkSettled(const std::string& expected, const Ask& ask);
  void checkAgainstModel(const PathQuestion& question, const Outcome& found);
  void forgetUnlessEmpty(const test::Path& path);
  static const char* answerWithout(const std::optional<Baselines>& baselines);
};

}  // namespace fuzz
