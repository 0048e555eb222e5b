#include "catalogue/store/store_removal.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "catalogue/range_union.hpp"
#include "catalogue/reading/file_error.hpp"
#include "catalogue/store/sqlite_reader.hpp"
#include "catalogue/store/sqlite_rows.hpp"
#include "catalogue/text/messages.hpp"

namespace tarn::evolution::catalogue {

namespace {

constexpr const char* createChosen = R"(
  CREATE TEMP TABLE chosen (position INTEGER PRIMARY KEY, name INTEGER NOT NULL);
  CREATE TEMP TABLE touched (name INTEGER PRIMARY KEY, has_order INTEGER NOT NULL);)";

// Whether version m satisfies dependency d. An upper bound below the lower one has wrapped: the
// range is that of the one version with the largest patch.
#define SATISFIES                                                          \
  "m.name = d.name AND (m.version = d.version OR m.semver >= d.lower AND " \
  "m.semver < d.upper OR d.upper < d.lower AND m.semver = d.lower)"
#define STAYS "m.position NOT IN (SELECT position FROM chosen)"
#define GOES "m.position IN (SELECT position FROM chosen)"

constexpr const char* selectObstacles =
    "SELECT d.metamodel, d.ordinal FROM dependencies d "
    "WHERE d.name IN (SELECT name FROM touched) "
    "AND d.metamodel NOT IN (SELECT position FROM chosen) AND NOT d.optional "
    "AND (NOT EXISTS (SELECT 1 FROM metamodels m WHERE m.name = d.name AND " STAYS
    ") "
    "OR d.name NOT IN (SELECT name FROM touched WHERE has_order) "
    "AND EXISTS (SELECT 1 FROM metamodels m WHERE " SATISFIES " AND " GOES
    ") "
    "AND NOT EXISTS (SELECT 1 FROM metamodels m WHERE " SATISFIES " AND " STAYS
    ")) "
    "ORDER BY d.metamodel, d.ordinal";

// Dependencies that a reader has to look at, of a name of which some version stays: those on a
// union of ranges, and those on versions that are ordered by what their texts read as.
constexpr const char* selectOthers =
    "SELECT d.metamodel, d.ordinal, names.name, d.version, d.lower, d.upper FROM dependencies d "
    "JOIN names ON names.id = d.name "
    "WHERE d.name IN (SELECT name FROM touched) "
    "AND d.metamodel NOT IN (SELECT position FROM chosen) AND NOT d.optional "
    "AND (d.version GLOB ?1 OR d.name IN (SELECT name FROM touched WHERE has_order)) "
    "AND EXISTS (SELECT 1 FROM metamodels m WHERE m.name = d.name AND " STAYS
    ") "
    "ORDER BY d.metamodel, d.ordinal";

#undef SATISFIES
#undef STAYS
#undef GOES

constexpr const char* removeMetamodels =
    "DELETE FROM metamodels WHERE position IN (SELECT position FROM chosen)";

constexpr const char* removeHops = R"(
  DELETE FROM hops WHERE name IN (SELECT name FROM touched) AND NOT (
    (EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.version = hops.source)
      OR EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.semver = hops.source))
    AND
    (EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.version = hops.target)
      OR EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.semver = hops.target))))";

/// Names of what was removed that are no longer in use: optional dependencies may still name them.
constexpr const char* removeNames = R"(
  DELETE FROM names WHERE id IN (SELECT name FROM touched)
    AND NOT EXISTS (SELECT 1 FROM metamodels WHERE metamodels.name = names.id)
    AND NOT EXISTS (SELECT 1 FROM dependencies WHERE dependencies.name = names.id))";

/// A dependency's row: its metamodel and its place among that one's dependencies.
using Place = std::pair<std::int64_t, std::int64_t>;

std::uint64_t removeHop(SqliteDatabase& store, const RemovalChoice& choice) {
  const auto& [name, from, to] = choice;
  if (!from) throw std::invalid_argument("a hop to remove leads from a version");
  SqliteStatement(store,
                  "DELETE FROM hops WHERE name = (SELECT id FROM names WHERE name = ?1) "
                  "AND source = ?2 AND target = ?3")
      .run(sought(name), sought(*from), sought(*to));
  const std::int64_t removed = store.number("SELECT changes()");
  if (removed == 0) failFor(store.file(), unknownHop(name, *from, *to));
  return static_cast<std::uint64_t>(removed);
}

void choose(SqliteDatabase& store, const RemovalChoice& choice) {
  const auto& [name, version, to] = choice;
  const std::string rows =
      "FROM metamodels WHERE name = (SELECT id FROM names WHERE name = ?1) "
      "AND (?2 OR version = ?3)";
  const std::int64_t isAny = version ? 0 : 1;
  const SqliteValue wanted = version ? sought(*version) : nullptr;
  SqliteStatement(store, "INSERT OR IGNORE INTO chosen SELECT position, name " + rows)
      .run(sought(name), isAny, wanted);
  SqliteStatement exists(store, "SELECT 1 " + rows);
  if (exists.query(sought(name), isAny, wanted).next()) return;
  failFor(store.file(), version ? unknownVersion(name, *version) : unknownMetamodel(name));
}

void markOrders(SqliteDatabase& store) {
  SqliteReader reader(store);
  SqliteStatement names(store,
                        "SELECT touched.name, names.name FROM touched "
                        "JOIN names ON names.id = touched.name");
  std::vector<std::int64_t> withOrder;
  auto rows = names.query();
  while (rows.next()) {
    const auto name = readRow(store, "names", rows.number(0), [&] { return textIn(rows, 1); });
    if (reader.hasOwnOrder(name)) withOrder.push_back(rows.number(0));
  }
  SqliteStatement mark(store, "UPDATE touched SET has_order = 1 WHERE name = ?1");
  for (const std::int64_t name : withOrder) mark.run(name);
}

/// Of those that the statement leaves to a reader, the dependencies of which a version goes and
/// none stays.
std::vector<Place> findOtherObstacles(SqliteDatabase& store, SqliteReader& reader) {
  SqliteStatement isChosen(store, "SELECT 1 FROM chosen WHERE position = ?1");
  const auto goes = [&](const StoredMetamodel& stored) {
    return isChosen.query(stored.position).next();
  };
  std::vector<Place> result;
  SqliteStatement statement(store, selectOthers);
  auto rows = statement.query(sought(std::u16string(unionPrefix) + u"*"));
  while (rows.next()) {
    const auto [name, range] = readRow(store, "dependencies", rows.number(0), [&] {
      return std::pair(textIn(rows, 2), rangeIn(rows, 3));
    });
    const auto candidates = reader.metamodelsIn(name, range);
    if (candidates.empty() || !std::all_of(candidates.begin(), candidates.end(), goes)) continue;
    result.emplace_back(rows.number(0), rows.number(1));
  }
  return result;
}

void collectObstacles(SqliteDatabase& store, RemovalResult& result) {
  SqliteReader reader(store);
  const std::vector<Place> others = findOtherObstacles(store, reader);
  const auto add = [&](const Place& place) {
    if (result.obstacleCount++ >= listedObstacles) return;
    result.obstacles.push_back({reader.metamodelAt(place.first).metamodel.descriptor,
                                static_cast<std::size_t>(place.second)});
  };
  auto next = others.begin();
  SqliteStatement statement(store, selectObstacles);
  auto rows = statement.query();
  while (rows.next()) {
    const Place place{rows.number(0), rows.number(1)};
    for (; next != others.end() && *next < place; ++next) add(*next);
    add(place);
  }
  std::for_each(next, others.end(), add);
}

StoreCounts removeChosen(SqliteDatabase& store) {
  StoreCounts counts;
  for (const auto& [statement, count] :
       {std::pair(removeMetamodels, &counts.metamodels), std::pair(removeHops, &counts.hops)}) {
    store.run(statement);
    *count = static_cast<std::uint64_t>(store.number("SELECT changes()"));
  }
  store.run(removeNames);
  return counts;
}

}  // namespace

RemovalResult removeRows(SqliteDatabase& store, const std::vector<RemovalChoice>& choices) {
  store.run(createChosen);
  std::uint64_t hops = 0;
  for (const RemovalChoice& choice : choices) {
    if (choice.to) {
      hops += removeHop(store, choice);
    } else {
      choose(store, choice);
    }
  }
  store.run("INSERT INTO touched SELECT DISTINCT name, 0 FROM chosen");
  markOrders(store);
  RemovalResult result;
  collectObstacles(store, result);
  if (result.obstacleCount > 0) return result;
  result.removed = removeChosen(store);
  result.removed.hops += hops;
  return result;
}

}  // namespace tarn::evolution::catalogue
