// Names that depend on no other are taken away, again and again (Kahn's algorithm); what is left
// leads to circles of names. From each version of these a depth-first search looks for its name.

#include "pathfinder/learning/own_names.hpp"

#include "pathfinder/limits/search_watch.hpp"

namespace tarn::evolution::pathfinder {

namespace {

constexpr std::size_t mostVisits = 10'000'000;

class OwnNames {
 public:
  OwnNames(const std::vector<NeedingVersion>& versions, std::size_t names)
      : versions_(versions), isLeft_(names, true), visitedFrom_(versions.size(), none) {}

  bool anyComesBack() {
    takeAwayWhatLeadsNowhere();
    for (std::size_t start = 0; start < versions_.size(); ++start) {
      if (isLeft_[versions_[start].name] && comesBack(start)) return true;
    }
    return false;
  }

 private:
  static constexpr auto none = ~std::size_t{0};

  void takeAwayWhatLeadsNowhere() {
    std::vector<std::vector<std::size_t>> needing(isLeft_.size());
    std::vector<std::size_t> needsLeft(isLeft_.size());
    for (const NeedingVersion& version : versions_) {
      for (const NeedingVersion::Need& need : version.needs) {
        needing[need.name].push_back(version.name);
        ++needsLeft[version.name];
      }
    }
    std::vector<std::size_t> open;
    for (std::size_t name = 0; name < isLeft_.size(); ++name) {
      if (needsLeft[name] == 0) open.push_back(name);
    }
    while (!open.empty()) {
      const std::size_t name = open.back();
      open.pop_back();
      isLeft_[name] = false;
      for (const std::size_t other : needing[name]) {
        if (--needsLeft[other] == 0) open.push_back(other);
      }
    }
  }

  bool comesBack(std::size_t start) {
    std::vector<std::size_t> open{start};
    while (!open.empty()) {
      const NeedingVersion& version = versions_[open.back()];
      open.pop_back();
      for (const NeedingVersion::Need& need : version.needs) {
        if (need.name == versions_[start].name) return true;
        if (!isLeft_[need.name]) continue;
        for (const std::size_t next : need.admitted) {
          checkpoint();
          if (++visits_ > mostVisits) return true;
          if (visitedFrom_[next] == start) continue;
          visitedFrom_[next] = start;
          open.push_back(next);
        }
      }
    }
    return false;
  }

  const std::vector<NeedingVersion>& versions_;
  std::vector<bool> isLeft_;              // by name
  std::vector<std::size_t> visitedFrom_;  // by version: the last start
  std::size_t visits_ = 0;
};

}  // namespace

bool mayBringInOwnName(const std::vector<NeedingVersion>& versions, std::size_t names) {
  return OwnNames(versions, names).anyComesBack();
}

}  // namespace tarn::evolution::pathfinder
