#include "support/random_run.hpp"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <boost/core/demangle.hpp>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <set>
#include <typeinfo>
#include <utility>

namespace test {

namespace {

std::uint64_t numberIn(const char* variable, std::uint64_t otherwise) {
  const char* text = std::getenv(variable);
  return text == nullptr ? otherwise : std::stoull(text);
}

void checkAll(const RandomRun::Check& check, const std::string& text, std::uint64_t seed) {
  Random random(~seed);
  try {
    check(text, random);
  } catch (const std::exception& error) {
    ADD_FAILURE() << "throws " << boost::core::demangle(typeid(error).name()) << ": "
                  << error.what();
  } catch (...) {
    ADD_FAILURE() << "throws what is no std::exception";
  }
}

/// What the assertions say that fail; empty when none does.
std::string failureOf(const RandomRun::Check& check, const std::string& text, std::uint64_t seed) {
  testing::TestPartResultArray results;
  {
    using Reporter = testing::ScopedFakeTestPartResultReporter;
    const Reporter reporter(Reporter::INTERCEPT_ALL_THREADS, &results);
    checkAll(check, text, seed);
  }
  std::string failure;
  for (int i = 0; i < results.size(); ++i) {
    const testing::TestPartResult& result = results.GetTestPartResult(i);
    if (!result.failed()) continue;
    const std::string message = result.message();
    const std::string plain = "Failed\n";  // before what ADD_FAILURE is told
    failure += message.substr(message.starts_with(plain) ? plain.size() : 0) + "\n";
  }
  return failure;
}

std::string quoted(const std::string& text) {
  std::string result;
  for (const char letter : text) result += letter == '\'' ? "'\\''" : std::string(1, letter);
  return "'" + result + "'";
}

std::string commandFor(const std::string& text, std::uint64_t seed) {
  const auto& test = *testing::UnitTest::GetInstance()->current_test_info();
  return "TARN_RANDOM_SEED=" + std::to_string(seed) + " TARN_RANDOM_CASE=" + quoted(text) + " " +
         std::filesystem::read_symlink("/proc/self/exe").string() +
         " --gtest_filter=" + test.test_suite_name() + "." + test.name();
}

}  // namespace

RandomRun::RandomRun(std::size_t usualCases)
    : seed_(numberIn("TARN_RANDOM_SEED", std::random_device("/dev/urandom")())),
      cases_(numberIn("TARN_RANDOM_CASES", usualCases)) {
  if (const char* text = std::getenv("TARN_RANDOM_CASE")) only_ = text;
  std::cout << "[   SEED   ] TARN_RANDOM_SEED=" << seed_ << std::endl;
}

void RandomRun::ask(const Make& make, const Check& check, const Simplify& simplify) {
  for (std::uint64_t seed = seed_; seed < seed_ + (only_ ? 1 : cases_); ++seed) {
    Random random(seed);
    const std::string text = only_ ? *only_ : make(random);
    std::string failure = failureOf(check, text, seed);
    if (failure.empty()) continue;
    std::cout << "[   FAILS  ] " << text << std::endl;
    const std::string shrunk = shrink(text, seed, failure, check, simplify);
    ADD_FAILURE() << shrunk << "\n\n"
                  << failure << "\nTo ask it again:\n"
                  << commandFor(shrunk, seed);
    return;
  }
}

std::string RandomRun::shrink(std::string text, std::uint64_t seed, std::string& failure,
                              const Check& check, const Simplify& simplify) {
  using Clock = std::chrono::steady_clock;
  isShrinking_ = true;
  const auto end = Clock::now() + std::chrono::minutes(1);
  const std::string firstLine = failure.substr(0, failure.find('\n'));
  std::set<std::string> tried;
  for (bool isSimpler = true; std::exchange(isSimpler, false);) {
    for (const std::string& simpler : simplify(text)) {
      if (!tried.insert(simpler).second) continue;
      if (Clock::now() > end) return text;
      const std::string simplersFailure = failureOf(check, simpler, seed);
      if (simplersFailure.substr(0, simplersFailure.find('\n')) != firstLine) continue;
      text = simpler;
      failure = simplersFailure;
      isSimpler = true;
      break;
    }
  }
  return text;
}

void RandomRun::count(const std::string& kind, bool is) {
  if (!isShrinking_) counts_[kind] += is ? 1 : 0;
}

void RandomRun::expectPercentages(const std::map<std::string, double>& least) const {
  std::cout << "[   CASES  ] " << cases_;
  for (const auto& [kind, count] : counts_) std::cout << ", " << kind << " " << count;
  std::cout << std::endl;
  if (isShrinking_ || only_) return;
  for (const auto& [kind, percentage] : least) {
    const double wanted = static_cast<double>(cases_) * percentage / 100;
    if (wanted < 5) continue;
    EXPECT_GE(static_cast<double>(counted(kind)), wanted) << kind;
  }
}

std::size_t RandomRun::counted(const std::string& kind) const {
  const auto found = counts_.find(kind);
  return found == counts_.end() ? 0 : found->second;
}

}  // namespace test
