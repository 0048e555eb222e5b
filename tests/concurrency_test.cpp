#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "pathfinder/version_repository.hpp"

namespace test {
namespace {

using namespace tarn::evolution::pathfinder;

/// One metamodel "S" at 1.0.0 to 4.0.0; without any state of its own.
class Line : public VersionRepository {
 public:
  void findMetamodels(const std::u16string& name, const VersionRange& range,
                      std::vector<Metamodel>& result) override {
    for (std::uint64_t number = 1; number <= 4; ++number) {
      const Metamodel metamodel(name, SemVer{number, 0, 0}, {});
      if (includes(range, metamodel)) result.push_back(metamodel);
    }
  }

  void findHops(const std::u16string& name, const VersionId& from,
                std::vector<Hop>& result) override {
    const std::uint64_t number = from.getSemVer().major;
    if (number < 4) result.emplace_back(name, from, SemVer{number + 1, 0, 0}, false);
  }
};

TEST(Concurrency, CachedQuestionsWhilePathsAreForgotten) {
  Line repository;
  std::vector<VersionBaseline> s;
  for (std::uint64_t number = 1; number <= 4; ++number) {
    s.push_back(repository.combine({{u"S", SemVer{number, 0, 0}}}).front());
  }
  std::atomic<int> asking{2};
  std::atomic<int> wrong{0};
  const auto ask = [&](std::size_t from) {
    for (int i = 0; i < 2000; ++i) {
      const auto path = repository.findPath({s[from]}, {s[3]}, VersionRepository::Forward);
      if (!path || path->size() != 3 - from) ++wrong;
    }
    --asking;
  };
  std::thread first(ask, 0);
  std::thread second(ask, 1);
  while (asking > 0) {
    repository.invalidatePathfindingCache();
    std::this_thread::yield();
  }
  first.join();
  second.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace test
