// Batches as hosts ask them; tests/evopath_batch_test.py has what evopath makes of them.
#include "catalogue/explanation/batch.hpp"

#include <gtest/gtest.h>

#include <future>

#include "catalogue/catalogue_repository.hpp"
#include "support/store_folder.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

constexpr const char* questionOnA = R"({"from": {"A": "1.0.0"}, "to": {"A": "2.0.0"}})";
constexpr const char* questionOnB = R"({"from": {"B": "1.0.0"}, "to": {"B": "2.0.0"}})";

Catalogue twoMoves() {
  return Catalogue(contentOf(TestRepository("A1..2 B1..2")));
}

TEST(Batch, OfNoThreadsIsAnsweredByTheCaller) {
  CatalogueRepository repository(twoMoves());
  std::vector<std::string> left{questionOnB, questionOnA};
  std::size_t lines = 0;
  const auto next = [&]() -> std::optional<BatchQuestion> {
    if (left.empty()) return std::nullopt;
    BatchQuestion question{3 - left.size(), left.back()};
    left.pop_back();
    return question;
  };
  const BatchCounts counts =
      answerBatch(repository, next, [&](const std::string&) { ++lines; }, {.threads = 0});
  EXPECT_EQ(counts.found, 2U);
  EXPECT_EQ(lines, 2U);
}

/// Stops the search that asks for A's hops, as soon as it is told to.
class StoppingRepository : public CatalogueRepository {
 public:
  explicit StoppingRepository(std::future<void> signal)
      : CatalogueRepository(twoMoves()), signal_(std::move(signal)) {}

  void findHops(const std::u16string& name, const VersionId& from,
                std::vector<Hop>& result) override {
    if (name == u"A") {
      signal_.wait();
      throw SearchStopped(SearchStopped::Reason::StopRequested, {});
    }
    CatalogueRepository::findHops(name, from, result);
  }

 private:
  std::future<void> signal_;
};

TEST(Batch, CountsNoAnswerThatWaitsInVainForTheOneBefore) {
  std::promise<void> secondIsAnswered;
  StoppingRepository repository(secondIsAnswered.get_future());
  std::uint64_t asked = 0;
  const auto next = [&]() -> std::optional<BatchQuestion> {
    if (++asked <= 2) return BatchQuestion{asked, asked == 1 ? questionOnA : questionOnB};
    secondIsAnswered.set_value();  // who has answered it asks for another one
    return std::nullopt;
  };
  std::size_t lines = 0;
  const BatchCounts counts =
      answerBatch(repository, next, [&](const std::string&) { ++lines; }, {.threads = 2});
  EXPECT_EQ(asked, 3U);
  EXPECT_EQ(lines, 0U);
  EXPECT_EQ(counts.found, 0U);
}

}  // namespace
}  // namespace test
