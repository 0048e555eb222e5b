#include "catalogue/store/store_rewriting.hpp"

#include <algorithm>
#include <istream>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/model/row_key.hpp"
#include "catalogue/model/same_rows.hpp"
#include "catalogue/reading/json_file.hpp"
#include "catalogue/reading/json_stream.hpp"
#include "catalogue/store/progress_sink.hpp"
#include "catalogue/store/sqlite_reader.hpp"
#include "catalogue/store/sqlite_rows.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// Another text version that has the equivalent of the one at a position.
constexpr const char* selectSharer = R"(
  SELECT other.version FROM metamodels rewritten
  JOIN metamodels other ON other.name = rewritten.name AND other.semver = rewritten.equivalent
    AND other.equivalent IS NOT NULL AND other.position <> rewritten.position
  WHERE rewritten.position = ?1 LIMIT 1)";

/// The first hop of a name that does not lead between two versions that are there.
constexpr const char* selectLoosened = R"(
  SELECT names.name, source, target FROM hops JOIN names ON names.id = hops.name
  WHERE hops.name = (SELECT name FROM metamodels WHERE position = ?1) AND NOT (
    (EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.version = hops.source)
      OR EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.semver = hops.source))
    AND
    (EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.version = hops.target)
      OR EXISTS (SELECT 1 FROM metamodels m WHERE m.name = hops.name AND m.semver = hops.target)))
  ORDER BY hops.position LIMIT 1)";

/// Puts rows in the place of those that a store holds.
class RewritingSink : public CatalogueSink {
 public:
  explicit RewritingSink(SqliteDatabase& store)
      : store_(store),
        reader_(store),
        writer_(store),
        selectName_(store,
                    "SELECT 1 FROM metamodels "
                    "WHERE name = (SELECT id FROM names WHERE name = ?1) LIMIT 1"),
        selectVersion_(store,
                       "SELECT position FROM metamodels "
                       "WHERE name = (SELECT id FROM names WHERE name = ?1) AND version = ?2"),
        updateVersion_(store,
                       "UPDATE metamodels SET equivalent = ?2, note = ?3 WHERE position = ?1"),
        removeDependencies_(store, "DELETE FROM dependencies WHERE metamodel = ?1"),
        selectHops_(store,
                    "SELECT position, expensive, note FROM hops "
                    "WHERE name = (SELECT id FROM names WHERE name = ?1) "
                    "AND source = ?2 AND target = ?3"),
        updateHops_(store,
                    "UPDATE hops SET expensive = ?4, note = ?5 "
                    "WHERE name = (SELECT id FROM names WHERE name = ?1) "
                    "AND source = ?2 AND target = ?3") {}

  void addMetamodel(const CatalogueMetamodel& metamodel) override {
    const std::size_t number = metamodels_++;
    const std::int64_t position = findPosition(metamodel.descriptor, number);
    expectFirst(places_, position, number, metamodelPlace,
                [&] { return textOf(metamodel.descriptor); });
    expectKnownDependencies(metamodel.descriptor, number);
    const CatalogueMetamodel former = reader_.metamodelAt(position).metamodel;
    if (isSameRow(former, metamodel)) {
      ++result_.unchanged.metamodels;
      return;
    }
    ++result_.changed.metamodels;
    if (former.equivalent != metamodel.equivalent) otherEquivalents_.emplace(number, position);
    updateVersion_.run(position,
                       metamodel.equivalent ? SqliteValue(pack(*metamodel.equivalent)) : nullptr,
                       storedNote(metamodel.note));
    removeDependencies_.run(position);
    writer_.addDependencies(position, metamodel);
  }

  void addHop(const pathfinder::Hop& hop, const std::u16string& note) override {
    const std::size_t number = hops_++;
    expectFirst(hopPlaces_, keyOf(hop), number, hopPlace,
                [&] { return hopText(hop.name, hop.from, hop.to); });
    bool isThere = false;
    bool isOther = false;
    const SqliteValue name = sought(hop.name);
    {
      auto rows = selectHops_.query(name, storedVersion(hop.from), storedVersion(hop.to));
      for (; rows.next(); isThere = true) {
        isOther |= (rows.number(1) != 0) != hop.expensive || noteIn(rows, 2) != note;
      }
    }
    if (!isThere) throw CatalogueError(hopPlace(number), unknownHop(hop.name, hop.from, hop.to));
    ++(isOther ? result_.changed : result_.unchanged).hops;
    updateHops_.run(name, storedVersion(hop.from), storedVersion(hop.to),
                    std::int64_t{hop.expensive}, storedNote(note));
  }

  void setQuestion(const Question& question) override {
    store_.run("DELETE FROM question_versions; DELETE FROM question");
    writer_.setQuestion(question);
  }

  /// Throws CatalogueError when the store has become unsound.
  void validate() {
    SqliteStatement sharing(store_, selectSharer);
    SqliteStatement looseHop(store_, selectLoosened);
    for (const auto& [number, position] : otherEquivalents_) {
      const std::string place = metamodelPlace(number) + "/semver";
      const CatalogueMetamodel rewritten = reader_.metamodelAt(position).metamodel;
      if (auto rows = sharing.query(position); rows.next()) {
        const pathfinder::Metamodel other(rewritten.descriptor.name, versionIn(rows, 0), {});
        throw CatalogueError(
            place, sharedEquivalent(*rewritten.equivalent, textOf(other), "in the store"));
      }
      if (auto rows = looseHop.query(position); rows.next()) {
        throw CatalogueError(place,
                             hopText(textIn(rows, 0), versionIn(rows, 1), versionIn(rows, 2)) +
                                 " would lead from or to no version");
      }
    }
  }

  const ChangeResult& result() const { return result_; }

 private:
  std::int64_t findPosition(const pathfinder::Metamodel& metamodel, std::size_t number) {
    const SqliteValue name = sought(metamodel.name);
    if (auto rows = selectVersion_.query(name, storedVersion(metamodel.version)); rows.next()) {
      return rows.number(0);
    }
    const std::string place = metamodelPlace(number);
    if (!selectName_.query(name).next()) {
      throw CatalogueError(place + "/name", unknownMetamodel(metamodel.name));
    }
    throw CatalogueError(place + "/version", unknownVersion(metamodel.name, metamodel.version));
  }

  template <class Places, class Key, class Describe>
  void expectFirst(Places& places, const Key& key, std::size_t number,
                   std::string (*placeOf)(std::size_t), const Describe& describe) {
    const auto [first, isFirst] = places.emplace(key, number);
    if (isFirst) return;
    throw CatalogueError(placeOf(number),
                         standsAlready(describe(), "at " + placeOf(first->second)));
  }

  void expectKnownDependencies(const pathfinder::Metamodel& metamodel, std::size_t number) {
    for (std::size_t i = 0; i < metamodel.dependencies.size(); ++i) {
      const std::u16string& name = metamodel.dependencies[i].name;
      if (selectName_.query(sought(name)).next()) continue;
      throw CatalogueError(dependencyPlace(number, i) + "/name", unknownMetamodel(name));
    }
  }

  SqliteDatabase& store_;
  SqliteReader reader_;
  SqliteRowWriter writer_;
  SqliteStatement selectName_;
  SqliteStatement selectVersion_;
  SqliteStatement updateVersion_;
  SqliteStatement removeDependencies_;
  SqliteStatement selectHops_;
  SqliteStatement updateHops_;
  std::size_t metamodels_ = 0;
  std::size_t hops_ = 0;
  std::unordered_map<std::int64_t, std::size_t> places_;       // in the file, by position
  std::unordered_map<std::u16string, std::size_t> hopPlaces_;  // the same of hops
  std::map<std::size_t, std::int64_t> otherEquivalents_;       // positions, by place in the file
  ChangeResult result_;
};

}  // namespace

ChangeResult rewriteRows(SqliteDatabase& store, const std::filesystem::path& json,
                         const StoreProgress& progress) {
  constexpr double fileShare = 0.5;
  return readJsonFile(json, [&](std::istream& in) {
    RewritingSink rewriting(store);
    ProgressSink sink(rewriting, progress, [](const StoreCounts& /*rows*/) { return 0; });
    streamJsonCatalogue(in, sink);
    const SqliteWatch watch(store, toldAgain(progress, fileShare));
    rewriting.validate();
    return rewriting.result();
  });
}

}  // namespace tarn::evolution::catalogue
