// Threads that ask one repository over a store at once.
#include <atomic>
#include <thread>

#include "catalogue/store/sqlite_catalogue_repository.hpp"
#include "support/store_folder.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

using StoreConcurrency = StoreFolder;

/// All that can be asked in a few ways: the answers as one text.
std::string askAll(SqliteCatalogueRepository& repository,
                   const std::vector<std::pair<Selection, Selection>>& questions) {
  std::string answers;
  for (const auto& [from, to] : questions) {
    answers += describe(repository.findPath(from, to)) + "\n";
    repository.invalidatePathfindingCache();
    for (const auto& baseline : repository.combine(to)) {
      answers +=
          describe(baseline) + std::to_string(repository.getStepsFrom(baseline, forward).size());
    }
  }
  for (const std::u16string& name : repository.listNames()) {
    for (const auto& metamodel : repository.listMetamodels(name)) {
      answers += printed(metamodel.descriptor);
      answers += std::to_string(repository.getLinkedMetamodels(metamodel.descriptor).size());
      answers += std::to_string(hopsFrom(repository, metamodel.descriptor).size());
    }
    answers += std::to_string(repository.listHops(name).size());
  }
  return answers + (repository.getQuestion() ? "question" : "");
}

TEST_F(StoreConcurrency, EveryThreadGetsTheAnswersThatOneAloneGets) {
  TestRepository content(
      "C1..4 B1:C[1,3) B2:C[2,4) Btext3~3:C[3,5) B1>2 B2>text3 "
      "A1:B1 A2:B[1,4) A3:B[2,4) A1>2 A2>3 D1:A[1,3) D2:A2+C3 D1>2");
  make("shared", contentOf(content));
  std::vector<std::pair<Selection, Selection>> questions;
  for (const auto& [from, to] : {std::pair("A1 B1 C1", "A3 C4"), std::pair("A1 B1 C1 D1", "C3 D2"),
                                 std::pair("C1", "C4"), std::pair("A3", "A1")}) {
    questions.emplace_back(selection(from), selection(to));
  }
  SqliteCatalogueRepository alone(path("shared.store"));
  const std::string expected = askAll(alone, questions);
  EXPECT_NE(expected.find("=>"), std::string::npos);
  for (int round = 0; round < 10; ++round) {
    SqliteCatalogueRepository shared(path("shared.store"));
    std::vector<std::string> answers(4);
    std::atomic<std::size_t> waiting = answers.size();
    std::vector<std::thread> threads;
    threads.reserve(answers.size());
    for (std::string& answer : answers) {
      threads.emplace_back([&] {
        for (--waiting; waiting > 0;) std::this_thread::yield();
        answer = askAll(shared, questions);
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::string& answer : answers) EXPECT_EQ(answer, expected);
  }
}

}  // namespace
}  // namespace test
