// The system refuses a call: an operation says so and has changed nothing, or is done all the same.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>

#include "catalogue/catalogue_error.hpp"
#include "support/file_calls.hpp"
#include "support/store_operations.hpp"

namespace test {
namespace {

using Kind = FileCall::Kind;

const std::filesystem::path folder = quickFolder("store-failure");

/// Has one call of some kinds fail, or all from that one on.
class FailingCalls : public FileCallWatch {
 public:
  struct Plan {
    std::vector<Kind> kinds;
    int error;
    bool persists;
  };

  FailingCalls(const Plan& plan, unsigned first)
      : FileCallWatch(folder), plan_(plan), left_(first) {}

  int before(const FileCall& call) override {
    if (std::find(plan_.kinds.begin(), plan_.kinds.end(), call.kind) == plan_.kinds.end()) return 0;
    if (left_ > 0) {
      --left_;
      return 0;
    }
    if (hasFailed && !plan_.persists) return 0;
    hasFailed = true;
    return plan_.error;
  }

  bool hasFailed = false;

 private:
  const Plan plan_;
  unsigned left_;
};

/// What the operation gives, or what it says is wrong.
std::string outcomeOf(const StoreOperation& operation) {
  try {
    return operation.run(folder);
  } catch (const tarn::evolution::catalogue::CatalogueError& error) {
    EXPECT_TRUE(error.file().starts_with(folder.string())) << error.what();
    EXPECT_EQ(error.reason().find("not JSON"), std::string::npos) << error.what();
    return std::string("error: ") + error.what();
  }
}

/// An operation with what it comes to when nothing fails.
class Trial {
 public:
  explicit Trial(const StoreOperation& operation) : operation_(operation) {
    writeDisk(operation.disk, folder);
    before_ = contentOf(folder / operation.file);
    writeDisk(operation.disk, folder);
    answer_ = operation.run(folder);
    after_ = contentOf(folder / operation.file);
  }

  /// Has it run as planned, and then once more without a fault. Whether the fault was met.
  bool fail(const FailingCalls::Plan& plan, unsigned first) {
    writeDisk(operation_.disk, folder);
    FailingCalls calls(plan, first);
    const std::string outcome = outcomeOf(operation_);
    calls.end();
    const Disk left = readDisk(folder);
    const auto [known, isNew] = contents_.try_emplace(left);
    if (isNew) known->second = contentOf(folder / operation_.file);
    const std::string& content = known->second;
    const bool isDone = outcome == answer_;
    EXPECT_TRUE(isDone || outcome.starts_with("error: ")) << outcome;
    // A medium that cannot be read is damage to SQLite, and nothing else is.
    EXPECT_TRUE(plan.error == EIO || outcome.find("damaged") == std::string::npos) << outcome;
    EXPECT_TRUE(content == after_ || (!isDone && content == before_)) << outcome;
    if (isNew) goOnFrom(left, content);
    return calls.hasFailed;
  }

 private:
  void goOnFrom(const Disk& left, const std::string& content) {
    writeDisk(left, folder);
    const std::string again = outcomeOf(operation_);
    EXPECT_TRUE(again == answer_ || (again.starts_with("error: ") && content == after_)) << again;
    EXPECT_TRUE(contentOf(folder / operation_.file) == after_);
    for (const auto& [name, bytes] : readDisk(folder)) EXPECT_FALSE(name.ends_with(".partial"));
  }

  const StoreOperation& operation_;
  std::string answer_;
  std::string before_;  // the content of the operation's file
  std::string after_;
  std::map<Disk, std::string> contents_;  // by what trials left
};

TEST(StoreFailure, NoCallThatFailsLosesAnything) {
  const std::pair<std::vector<Kind>, int> faults[] = {{{Kind::Open, Kind::Make}, EMFILE},
                                                      {{Kind::Read}, EIO},
                                                      {{Kind::Read}, ETIMEDOUT},
                                                      {{Kind::Write}, ENOSPC},
                                                      {{Kind::Truncate}, EIO},
                                                      {{Kind::Sync}, EIO},
                                                      {{Kind::Rename}, EIO},
                                                      {{Kind::Unlink}, EPERM},
                                                      {{Kind::Lock}, ENOLCK},
                                                      {{Kind::Write, Kind::Sync}, EDQUOT}};
  for (const StoreOperation& operation : storeOperations()) {
    Trial trial(operation);
    for (const auto& [kinds, error] : faults) {
      for (const bool persists : {false, true}) {
        const FailingCalls::Plan plan{kinds, error, persists};
        for (unsigned first = 0;; ++first) {
          SCOPED_TRACE(operation.name + ", " + strerror(error) + (persists ? " from " : " at ") +
                       std::to_string(first));
          if (!trial.fail(plan, first)) break;
          if (HasFailure()) return;
        }
      }
    }
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace test
