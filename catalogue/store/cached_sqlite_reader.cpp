#include "catalogue/store/cached_sqlite_reader.hpp"

#include <algorithm>

#include "catalogue/text/messages.hpp"
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
  expectNoCycle(found);
  return found;
}

std::optional<CatalogueMetamodel> CachedSqliteReader::find(const std::u16string& name,
                                                           const VersionId& version) {
  const Metamodels found = versionsAt(name, version);
  expectNoCycle(found);
  for (const StoredMetamodel& stored : *found) {
    if (stored.metamodel.descriptor.version == version) return stored.metamodel;
  }
  if (found->empty()) return std::nullopt;
  return found->front().metamodel;
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

void CachedSqliteReader::expectNoCycle(const Metamodels& candidates) {
  trail_.clear();
  onTrail_.clear();
  const auto isCleared = [&](const StoredMetamodel& stored) {
    return cleared_.contains(stored.position);
  };
  while (!std::all_of(candidates->begin(), candidates->end(), isCleared)) {
    enterCandidate(candidates);
    while (!trail_.empty()) {
      Visit& visit = trail_.back();
      const auto& [position, metamodel] = visited(visit);
      const auto& dependencies = metamodel.descriptor.dependencies;
      if (visit.dependency == dependencies.size()) {
        cleared_.insert(position);
        onTrail_.erase(position);
        trail_.pop_back();
      } else {
        const Dependency& dependency = dependencies[visit.dependency];
        const Metamodels needed = lookUp(dependency.name, dependency.range);
        if (std::all_of(needed->begin(), needed->end(), isCleared)) {
          ++visit.dependency;
        } else {
          enterCandidate(needed);
        }
      }
    }
  }
}

/// Goes on with the first of the candidates that is not cleared.
void CachedSqliteReader::enterCandidate(const Metamodels& candidates) {
  const auto next = std::find_if(
      candidates->begin(), candidates->end(),
      [&](const StoredMetamodel& stored) { return !cleared_.contains(stored.position); });
  if (!onTrail_.insert(next->position).second) failForCycle(next->position);
  trail_.push_back({candidates, static_cast<std::size_t>(next - candidates->begin()), 0});
}

void CachedSqliteReader::failForCycle(std::int64_t position) const {
  std::vector<std::string> cycle;
  for (const Visit& visit : trail_) {
    const StoredMetamodel& stored = visited(visit);
    if (stored.position == position || !cycle.empty()) {
      cycle.push_back(textOf(stored.metamodel.descriptor));
    }
  }
  database_.failDamaged("table metamodels, row " + std::to_string(position),
                        dependencyCycle(cycle));
}

}  // namespace tarn::evolution::catalogue
