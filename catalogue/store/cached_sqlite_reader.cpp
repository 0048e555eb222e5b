// Which dependencies lead back is found by Tarjan's algorithm over what is looked up on the way,
// with a stack of its own: all that a metamodel leads to is done with it, so every component is
// whole. It tells the same as `splitDependencies` does of a catalogue in memory.

#include "catalogue/store/cached_sqlite_reader.hpp"

#include <algorithm>
#include <utility>

#include "catalogue/model/dependency_split.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Dependency;
using pathfinder::SemVer;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

/// How many rows each cache is made for.
constexpr std::size_t cachedRows = 10000;

void append(std::u16string& key, const SemVer& version) {
  for (std::uint64_t component : {version.major, version.minor, version.patch}) {
    for (int unit = 0; unit < 4; ++unit, component >>= 16) {
      key += static_cast<char16_t>(component & 0xffff);
    }
  }
}

/// A text of its own for each name and version; names hold no NUL in a store.
std::u16string cacheKeyOf(const std::u16string& name, const VersionId& version) {
  std::u16string key = name;
  key += u'\0';
  if (!version.isSemVer()) return key + u't' + version.getText();
  key += u's';
  append(key, version.getSemVer());
  return key;
}

/// The same for each name and range.
std::u16string cacheKeyOf(const std::u16string& name, const VersionRange& range) {
  if (!range.isSemVerRange()) return cacheKeyOf(name, VersionId(range.getText()));
  const auto& [lower, upper] = range.getSemVerRange();
  std::u16string key = cacheKeyOf(name, VersionId(lower));
  append(key, upper);
  return key;
}

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
  const std::u16string key = cacheKeyOf(name, version);
  if (Hops cached = hops_.find(key)) return cached;
  auto found = reader_.hopsFrom(name, version);
  for (const pathfinder::Hop& hop : found) {
    if (!versionsAt(name, hop.to)->empty()) continue;
    database_.failDamaged("table hops", textOf(hop) + " leads to no version");
  }
  const std::size_t size = 1 + found.size();
  return hops_.add(key, std::move(found), size);
}

CachedSqliteReader::Metamodels CachedSqliteReader::versionsAt(const std::u16string& name,
                                                              const VersionId& version) {
  return remembered(u'v' + cacheKeyOf(name, version),
                    [&] { return reader_.metamodelsAt(name, version); });
}

CachedSqliteReader::Metamodels CachedSqliteReader::lookUp(const std::u16string& name,
                                                          const VersionRange& range) {
  return remembered(u'r' + cacheKeyOf(name, range),
                    [&] { return reader_.metamodelsIn(name, range); });
}

template <class Read>
CachedSqliteReader::Metamodels CachedSqliteReader::remembered(const std::u16string& key,
                                                              const Read& read) {
  if (Metamodels cached = metamodels_.find(key)) return cached;
  std::vector<StoredMetamodel> found = read();
  const std::size_t size = 1 + found.size();
  return metamodels_.add(key, std::move(found), size);
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
  entered_ = 0;
  enter(start);
  while (!trail_.empty()) {
    Visit& visit = trail_.back();
    if (visit.dependency < visit.stored.metamodel.descriptor.dependencies.size()) {
      follow(visit);
    } else {
      leave();
    }
  }
}

void CachedSqliteReader::enter(const StoredMetamodel& stored) {
  openAt_.emplace(stored.position, open_.size());
  open_.push_back({stored, entered_});
  trail_.push_back({stored, entered_++});
}

/// Goes on with the next candidates of a dependency, up to one that has not been entered.
void CachedSqliteReader::follow(Visit& visit) {
  const Dependency& dependency = visit.stored.metamodel.descriptor.dependencies[visit.dependency];
  const Metamodels candidates = lookUp(dependency.name, dependency.range);
  while (visit.candidate < candidates->size()) {
    const StoredMetamodel& candidate = (*candidates)[visit.candidate++];
    if (done_.contains(candidate.position)) continue;
    const auto open = openAt_.find(candidate.position);
    if (open == openAt_.end()) return enter(candidate);
    std::uint32_t& low = lowOf(visit.stored.position);
    low = std::min(low, open_[open->second].low);
  }
  ++visit.dependency;
  visit.candidate = 0;
}

void CachedSqliteReader::leave() {
  const std::int64_t position = trail_.back().stored.position;
  const std::uint32_t entered = trail_.back().entered;
  trail_.pop_back();
  const std::uint32_t low = lowOf(position);
  if (low == entered) return close(openAt_.at(position));
  std::uint32_t& before = lowOf(trail_.back().stored.position);
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
