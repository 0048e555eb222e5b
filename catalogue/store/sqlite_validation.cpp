#include "catalogue/store/sqlite_validation.hpp"

#include <algorithm>
#include <optional>
#include <string>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/store/sqlite_rows.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Metamodel;

namespace {

/// The first of the new metamodels whose version stands twice, and where it stands first.
constexpr const char* selectRepeated = R"(
  SELECT later.position, min(earlier.position), names.name, later.version
  FROM metamodels later
  JOIN metamodels earlier ON earlier.name = later.name AND earlier.version = later.version
    AND earlier.position < later.position
  JOIN names ON names.id = later.name
  WHERE later.position >= ?1
  GROUP BY later.position ORDER BY later.position LIMIT 1)";

/// The first of the new metamodels whose equivalent another text version has as well.
constexpr const char* selectSharing = R"(
  SELECT later.position, min(earlier.position), names.name, earlier.version, later.equivalent
  FROM metamodels later
  JOIN metamodels earlier ON earlier.name = later.name AND earlier.semver = later.equivalent
    AND earlier.equivalent IS NOT NULL AND earlier.position < later.position
  JOIN names ON names.id = later.name
  WHERE later.position >= ?1 AND later.equivalent IS NOT NULL
  GROUP BY later.position ORDER BY later.position LIMIT 1)";

constexpr const char* selectUnknownDependency = R"(
  SELECT dependencies.metamodel, dependencies.ordinal, names.name
  FROM dependencies JOIN names ON names.id = dependencies.name
  WHERE dependencies.metamodel >= ?1 AND NOT dependencies.optional
    AND NOT EXISTS (SELECT 1 FROM metamodels WHERE metamodels.name = dependencies.name)
  ORDER BY dependencies.metamodel, dependencies.ordinal LIMIT 1)";

/// The first new hop that does not lead between two versions that are there.
constexpr const char* selectLooseHop = R"(
  WITH checked AS (
    SELECT position, name, source, target,
      EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name) AS has_name,
      EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.version = hops.source)
        OR EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.semver = hops.source)
        AS has_source,
      EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.version = hops.target)
        OR EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.semver = hops.target)
        AS has_target
    FROM hops WHERE position >= ?1)
  SELECT checked.position, names.name, checked.source, checked.target, has_name, has_source
  FROM checked JOIN names ON names.id = checked.name
  WHERE NOT (has_name AND has_source AND has_target)
  ORDER BY checked.position LIMIT 1)";

/// The first new hop that stands already, and where it stands first.
constexpr const char* selectRepeatedHop = R"(
  SELECT later.position, min(earlier.position), names.name, later.source, later.target,
    later.expensive, earlier.expensive
  FROM hops later
  JOIN hops earlier ON earlier.name = later.name AND earlier.source = later.source
    AND earlier.target = later.target AND earlier.position < later.position
  JOIN names ON names.id = later.name
  WHERE later.position >= ?1
  GROUP BY later.position ORDER BY later.position LIMIT 1)";

class Validation {
 public:
  Validation(SqliteDatabase& database, std::int64_t firstMetamodel, std::int64_t firstHop)
      : database_(database), firstMetamodel_(firstMetamodel), firstHop_(firstHop) {}

  void run() {
    checkMetamodels();
    checkHops();
  }

 private:
  using Rows = SqliteStatement::Rows;

  std::size_t fromFirst(std::int64_t position) const {
    return static_cast<std::size_t>(position - firstMetamodel_);
  }

  std::string place(std::int64_t position) const { return metamodelPlace(fromFirst(position)); }

  std::string where(std::int64_t position) const {
    return position < firstMetamodel_ ? "in the store" : "at " + place(position);
  }

  static std::string describe(const std::u16string& name, const pathfinder::VersionId& version) {
    return textOf(Metamodel(name, version, {}));
  }

  /// Throws the error of the metamodel that comes first; of several errors of one metamodel, that
  /// of its version before that of its equivalent before that of a dependency.
  void checkMetamodels() {
    note(selectRepeated, [&](const Rows& rows) {
      return CatalogueError(
          place(rows.number(0)),
          standsAlready(describe(textIn(rows, 2), versionIn(rows, 3)), where(rows.number(1))));
    });
    note(selectSharing, [&](const Rows& rows) {
      return CatalogueError(
          place(rows.number(0)) + "/semver",
          sharedEquivalent(semVerIn(rows, 4), describe(textIn(rows, 2), versionIn(rows, 3)),
                           where(rows.number(1))));
    });
    note(selectUnknownDependency, [&](const Rows& rows) {
      const auto ordinal = static_cast<std::size_t>(rows.number(1));
      return CatalogueError(dependencyPlace(fromFirst(rows.number(0)), ordinal) + "/name",
                            unknownMetamodel(textIn(rows, 2)));
    });
    if (first_) throw CatalogueError(first_->place(), first_->reason());
  }

  /// Keeps the error that `describeRow` makes of a statement's first row, if that comes before the
  /// one that is kept.
  template <class DescribeRow>
  void note(const char* statement, const DescribeRow& describeRow) {
    SqliteStatement prepared(database_, statement);
    auto rows = prepared.query(firstMetamodel_);
    if (!rows.next() || (first_ && firstPosition_ <= rows.number(0))) return;
    first_ = describeRow(rows);
    firstPosition_ = rows.number(0);
  }

  void checkHops() {
    SqliteStatement statement(database_, selectLooseHop);
    auto rows = statement.query(firstHop_);
    if (!rows.next()) return;
    const std::string place = hopPlace(static_cast<std::size_t>(rows.number(0) - firstHop_));
    const std::u16string name = textIn(rows, 1);
    if (rows.number(4) == 0) throw CatalogueError(place + "/name", unknownMetamodel(name));
    const bool hasSource = rows.number(5) != 0;
    throw CatalogueError(place + (hasSource ? "/to" : "/from"),
                         unknownVersion(name, versionIn(rows, hasSource ? 3 : 2)));
  }

  SqliteDatabase& database_;
  std::int64_t firstMetamodel_;
  std::int64_t firstHop_;
  std::optional<CatalogueError> first_;
  std::int64_t firstPosition_ = 0;
};

}  // namespace

void validateAdded(SqliteDatabase& database, std::int64_t firstMetamodel, std::int64_t firstHop) {
  Validation(database, firstMetamodel, firstHop).run();
}

void expectNewHops(SqliteDatabase& database, std::int64_t firstHop) {
  SqliteStatement statement(database, selectRepeatedHop);
  auto rows = statement.query(firstHop);
  if (!rows.next()) return;
  const auto placeOf = [&](std::int64_t position) {
    return hopPlace(static_cast<std::size_t>(position - firstHop));
  };
  const std::string hop = hopText(textIn(rows, 2), versionIn(rows, 3), versionIn(rows, 4));
  const bool isInStore = rows.number(1) < firstHop;
  std::string message =
      standsAlready(hop, isInStore ? "in the store" : "at " + placeOf(rows.number(1)));
  const bool isExpensive = rows.number(6) != 0;
  if ((rows.number(5) != 0) != isExpensive) {
    message += isExpensive ? ", there as an expensive one" : ", there as one that is not expensive";
  }
  throw CatalogueError(placeOf(rows.number(0)), message);
}

}  // namespace tarn::evolution::catalogue
