#include "support/random_run.hpp"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace test {
namespace {

/// What a run reports: the first report, or nothing.
std::string reportOf(RandomRun& run, const RandomRun::Check& check) {
  testing::TestPartResultArray results;
  {
    using Reporter = testing::ScopedFakeTestPartResultReporter;
    const Reporter reporter(Reporter::INTERCEPT_ALL_THREADS, &results);
    const auto make = [](Random& random) {
      return "A1..5 B" + std::to_string(random.upTo(9)) +
             ":C1+A[1,4)=A2 C1 D1>2!@B D2 Etext~2 | * A1 B2/2 , A3 | D2 | forward | K> L.";
    };
    run.ask(make, check);
  }
  return results.size() == 0 ? "" : results.GetTestPartResult(0).message();
}

TEST(RandomRun, ReportsASmallCaseThatFailsInTheSameWayAndAsksItAgain) {
  std::size_t number = 0;
  const auto check = [&](const std::string& text, Random& random) {
    number = random();
    if (text.find("D2") == std::string::npos) FAIL() << "in another way";
    if (text.find("+A[") != std::string::npos) throw std::runtime_error("a dependency");
  };
  RandomRun run(50);
  const std::string report = reportOf(run, check);
  const std::string small = ":C1+A[3,4) D2 | | | |";
  EXPECT_NE(report.find(small + "\n\nthrows std::runtime_error: a dependency"), std::string::npos);
  const std::string text = report.substr(7, report.find("\n\n") - 7);  // after "Failed"
  const std::size_t numberBefore = number;
  setenv("TARN_RANDOM_CASE", text.c_str(), 1);
  setenv("TARN_RANDOM_SEED", std::to_string(run.seed()).c_str(), 1);
  RandomRun again(50);
  unsetenv("TARN_RANDOM_CASE");
  unsetenv("TARN_RANDOM_SEED");
  number = 0;
  EXPECT_EQ(reportOf(again, check).find(text), 7U);
  EXPECT_EQ(number, numberBefore);
}

}  // namespace
}  // namespace test
