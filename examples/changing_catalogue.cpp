// A host whose catalogue changes while questions are asked: each state of it has a repository of
// its own.
#include <iostream>
#include <memory>
#include <mutex>
#include <vector>

#include "pathfinder/version_repository.hpp"

using namespace tarn::evolution::pathfinder;

namespace {

/// Metamodels and hops as they stood at one time.
class Snapshot : public VersionRepository {
 public:
  Snapshot(std::vector<Metamodel> metamodels, std::vector<Hop> hops)
      : metamodels_(std::move(metamodels)), hops_(std::move(hops)) {}

  void findMetamodels(const std::u16string& name, const VersionRange& range,
                      std::vector<Metamodel>& result) override {
    for (const Metamodel& metamodel : metamodels_) {
      if (metamodel.name == name && includes(range, metamodel)) result.push_back(metamodel);
    }
  }

  void findHops(const std::u16string& name, const VersionId& from,
                std::vector<Hop>& result) override {
    for (const Hop& hop : hops_) {
      if (hop.name == name && hop.from == from) result.push_back(hop);
    }
  }

 private:
  const std::vector<Metamodel> metamodels_;
  const std::vector<Hop> hops_;
};

/// The repository of the present catalogue. Whoever asks keeps the one that it began with.
class CurrentRepository {
 public:
  std::shared_ptr<Snapshot> get() const {
    const std::lock_guard lock(mutex_);
    return current_;
  }

  void replace(std::shared_ptr<Snapshot> next) {
    const std::lock_guard lock(mutex_);
    current_.swap(next);
  }  // the former one is destroyed here, without the lock, unless somebody still asks it

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<Snapshot> current_;
};

std::vector<Metamodel> versionsOfShape(std::uint64_t count) {
  std::vector<Metamodel> versions;
  for (std::uint64_t i = 1; i <= count; ++i) versions.push_back({u"shape", SemVer{i, 0, 0}, {}});
  return versions;
}

void ask(VersionRepository& repository) {
  const auto path =
      repository.findPath({{u"shape", SemVer{1, 0, 0}}}, {{u"shape", SemVer{3, 0, 0}}});
  std::cout << (path ? std::to_string(path->size()) + " steps" : "no path") << "\n";
}

}  // namespace

int main() {
  const Hop first(u"shape", SemVer{1, 0, 0}, SemVer{2, 0, 0}, false);
  const Hop second(u"shape", SemVer{2, 0, 0}, SemVer{3, 0, 0}, false);
  CurrentRepository current;
  current.replace(std::make_shared<Snapshot>(versionsOfShape(3), std::vector{first}));
  const auto before = current.get();
  current.replace(std::make_shared<Snapshot>(versionsOfShape(3), std::vector{first, second}));
  ask(*before);
  ask(*current.get());
}
