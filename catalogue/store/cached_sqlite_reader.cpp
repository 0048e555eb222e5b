// Which dependencies lead back is found by Tarjan's algorithm over what is looked up on the way,
// with a stack of its own: all that a metamodel leads to is done with it, so every component is
// whole. It tells the same as `splitDependencies` does of a catalogue in memory.

#include "catalogue/store/cached_sqlite_reader.hpp"

#include <algorithm>
#include <utility>

#include "catalogue/model/dependency_split.hpp"
#include "catalogue/model/row_key.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

/// How many rows each cache is made for.
constexpr std::size_t cachedRows = 10000;

}  // namespace

CachedSqliteReader::CachedSqliteReader(SqliteDatabase& database)
    : database_(database), reader_(database), metamodels_(cachedRows), hops_(cachedRows) {}

CachedSqliteReader::Metamodels CachedSqliteReader::metamodelsIn(const std::u16string& name,
                                                                const VersionRange& range) {
  Metamodels found = lookUp(name, range);
  const auto isAsItStands = [&](const StoredMetamodel& stored) {
    return done_.contains(stored.position) && !leadBack_.contains(stored.position);
  };
  if (std::all_of(found->begin(), found->end(), isAsItStands)) return found;
  std::vector<StoredMetamodel> result = *found;
  split(result);
  return std::make_shared<const std::vector<StoredMetamodel>>(std::move(result));
}

std::optional<CatalogueMetamodel> CachedSqliteReader::find(const std::u16string& name,
                                                           const VersionId& version) {
  const Metamodels found = versionsAt(name, version);
  if (found->empty()) return std::nullopt;
  const auto carrying = std::find_if(found->begin(), found->end(), [&](const auto& stored) {
    return stored.metamodel.descriptor.version == version;
  });
  std::vector<StoredMetamodel> result{carrying == found->end() ? found->front() : *carrying};
  split(result);
  return std::move(result.front().metamodel);
}

std::vector<StoredMetamodel> CachedSqliteReader::metamodelsOf(const std::u16string& name) {
  std::vector<StoredMetamodel> result = reader_.metamodelsOf(name);
  split(result);
  return result;
}

CachedSqliteReader::Hops CachedSqliteReader::hopsFrom(const std::u16string& name,
                                                      const VersionId& version) {
  return hops_.get(keyOf(name, version), [&] {
    auto found = reader_.hopsFrom(name, version);
    for (const pathfinder::Hop& hop : found) {
      if (!versionsAt(name, hop.to)->empty()) continue;
      database_.failDamaged("table hops", textOf(hop) + " leads to no version");
    }
    return found;
  });
}

CachedSqliteReader::Metamodels CachedSqliteReader::versionsAt(const std::u16string& name,
                                                              const VersionId& version) {
  return metamodels_.get(u'v' + keyOf(name, version),
                         [&] { return reader_.metamodelsAt(name, version); });
}

CachedSqliteReader::Metamodels CachedSqliteReader::lookUp(const std::u16string& name,
                                                          const VersionRange& range) {
  return metamodels_.get(u'r' + keyOf(name, range),
                         [&] { return reader_.metamodelsIn(name, range); });
}

void CachedSqliteReader::split(std::vector<StoredMetamodel>& metamodels) {
  for (StoredMetamodel& stored : metamodels) {
    if (!done_.contains(stored.position)) explore(stored);
    const auto leadBack = leadBack_.find(stored.position);
    if (leadBack != leadBack_.end()) makeRequirements(stored.metamodel, leadBack->second);
  }
}

void CachedSqliteReader::explore(const StoredMetamodel& start) {
  trail_.clear();  // a failure may have left something
  open_.clear();
  openAt_.clear();
  enter(start);
  while (!trail_.empty()) {
    Visit& visit = trail_.back();
    if (visit.dependency < open_[visit.open].stored.metamodel.descriptor.dependencies.size()) {
      follow(visit);
    } else {
      leave();
    }
  }
}

void CachedSqliteReader::enter(const StoredMetamodel& stored) {
  openAt_.emplace(stored.position, open_.size());
  trail_.push_back({open_.size()});
  open_.push_back({stored, open_.size()});
}

/// Goes on with the next candidates of a dependency, up to one that has not been entered.
void CachedSqliteReader::follow(Visit& visit) {
  Open& from = open_[visit.open];
  const Dependency& dependency = from.stored.metamodel.descriptor.dependencies[visit.dependency];
  const Metamodels candidates = lookUp(dependency.name, dependency.range);
  while (visit.candidate < candidates->size()) {
    const StoredMetamodel& candidate = (*candidates)[visit.candidate++];
    if (done_.contains(candidate.position)) continue;
    const auto open = openAt_.find(candidate.position);
    if (open == openAt_.end()) return enter(candidate);
    from.low = std::min(from.low, open_[open->second].low);
  }
  ++visit.dependency;
  visit.candidate = 0;
}

void CachedSqliteReader::leave() {
  const std::size_t left = trail_.back().open;
  trail_.pop_back();
  const std::size_t low = open_[left].low;
  if (low == left) return close(left);
  std::size_t& before = open_[trail_.back().open].low;
  before = std::min(before, low);
}

/// Closes the component whose metamodels stand open from `first` on.
void CachedSqliteReader::close(std::size_t first) {
  for (std::size_t i = first; i < open_.size(); ++i) {
    std::vector<bool> leadBack;
    for (const Dependency& dependency : open_[i].stored.metamodel.descriptor.dependencies) {
      const Metamodels candidates = lookUp(dependency.name, dependency.range);
      leadBack.push_back(
          std::any_of(candidates->begin(), candidates->end(), [&](const auto& candidate) {
            const auto open = openAt_.find(candidate.position);
            return open != openAt_.end() && open->second >= first;
          }));
    }
    if (std::find(leadBack.begin(), leadBack.end(), true) != leadBack.end()) {
      leadBack_.emplace(open_[i].stored.position, std::move(leadBack));
    }
  }
  for (; open_.size() > first; open_.pop_back()) {
    done_.insert(open_.back().stored.position);
    openAt_.erase(open_.back().stored.position);
  }
}

}  // namespace tarn::evolution::catalogue
