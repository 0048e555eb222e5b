#include "catalogue/store/sqlite_rows.hpp"

#include <stdexcept>

#include "catalogue/utf16.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

constexpr std::size_t componentSize = 8;

/// How many names a writer remembers the numbers of.
constexpr std::size_t rememberedNames = 20000;

void packComponent(std::uint64_t component, unsigned char* bytes) {
  for (std::size_t i = componentSize; i-- > 0; component >>= 8) {
    bytes[i] = static_cast<unsigned char>(component & 0xff);
  }
}

std::uint64_t unpackComponent(std::string_view bytes, std::size_t start) {
  std::uint64_t component = 0;
  for (const char byte : bytes.substr(start, componentSize)) {
    component = component << 8 | static_cast<unsigned char>(byte);
  }
  return component;
}

SqliteValue expectStored(const std::u16string& text) {
  SqliteValue stored = sought(text);
  if (stored != SqliteValue(nullptr)) return stored;
  throw std::invalid_argument("the text is not well-formed UTF-16");
}

std::int64_t positionAfterLast(SqliteDatabase& database, const char* selectLast) {
  return database.number(selectLast) + 1;
}

}  // namespace

SqliteValue storedNote(const std::u16string& note) {
  return note.empty() ? SqliteValue(nullptr) : expectStored(note);
}

PackedSemVer pack(const SemVer& version) {
  PackedSemVer result;
  packComponent(version.major, result.data());
  packComponent(version.minor, result.data() + componentSize);
  packComponent(version.patch, result.data() + 2 * componentSize);
  return result;
}

SqliteValue storedVersion(const VersionId& version) {
  if (version.isSemVer()) return pack(version.getSemVer());
  return expectStored(version.getText());
}

SqliteValue sought(const std::u16string& text) {
  std::string utf8 = fl::i18n::ustring_to_utf8(text);
  if (toUtf16(utf8) != text) return nullptr;
  return utf8;
}

SqliteValue sought(const VersionId& version) {
  if (version.isSemVer()) return pack(version.getSemVer());
  return sought(version.getText());
}

std::u16string textIn(const SqliteStatement::Rows& rows, int column) {
  if (!rows.isText(column)) throw std::invalid_argument("no text where one must be");
  const std::string_view text = rows.bytes(column);
  if (text.empty()) throw std::invalid_argument("an empty text");
  return toUtf16(text);
}

SemVer semVerIn(const SqliteStatement::Rows& rows, int column) {
  const std::string_view bytes = rows.bytes(column);
  if (rows.isText(column) || bytes.size() != sizeof(PackedSemVer)) {
    throw std::invalid_argument("no semantic version where one must be");
  }
  return {unpackComponent(bytes, 0), unpackComponent(bytes, componentSize),
          unpackComponent(bytes, 2 * componentSize)};
}

VersionId versionIn(const SqliteStatement::Rows& rows, int column) {
  if (rows.isText(column)) return textIn(rows, column);
  return semVerIn(rows, column);
}

std::optional<SemVer> optionalSemVerIn(const SqliteStatement::Rows& rows, int column) {
  if (rows.isNull(column)) return std::nullopt;
  return semVerIn(rows, column);
}

VersionRange rangeIn(const SqliteStatement::Rows& rows, int column) {
  if (!rows.isNull(column)) return textIn(rows, column);
  return pathfinder::SemVerRange{semVerIn(rows, column + 1), semVerIn(rows, column + 2)};
}

std::u16string noteIn(const SqliteStatement::Rows& rows, int column) {
  return rows.bytes(column).empty() ? std::u16string() : textIn(rows, column);
}

SqliteRowWriter::SqliteRowWriter(SqliteDatabase& database)
    : insertName_(database, "INSERT OR IGNORE INTO names (name) VALUES (?1)"),
      selectName_(database, "SELECT id FROM names WHERE name = ?1"),
      insertMetamodel_(database,
                       "INSERT INTO metamodels (position, name, version, equivalent, note) "
                       "VALUES (?1, ?2, ?3, ?4, ?5)"),
      insertDependency_(database,
                        "INSERT INTO dependencies (metamodel, ordinal, name, version, lower, "
                        "upper, note, optional) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)"),
      insertHop_(database,
                 "INSERT INTO hops (position, name, source, target, expensive, note) "
                 "VALUES (?1, ?2, ?3, ?4, ?5, ?6)"),
      insertQuestion_(database, "INSERT INTO question (id) VALUES (0)"),
      insertQuestionVersion_(database,
                             "INSERT INTO question_versions (question, side, name, version) "
                             "VALUES (0, ?1, ?2, ?3)"),
      firstMetamodel_(
          positionAfterLast(database, "SELECT ifnull(max(position), -1) FROM metamodels")),
      firstHop_(positionAfterLast(database, "SELECT ifnull(max(position), -1) FROM hops")),
      nextMetamodel_(firstMetamodel_),
      nextHop_(firstHop_) {}

void SqliteRowWriter::addMetamodel(const CatalogueMetamodel& metamodel) {
  const auto& [descriptor, equivalent, note, dependencyNotes, requirements] = metamodel;
  insertMetamodel_.run(nextMetamodel_, idOf(descriptor.name), storedVersion(descriptor.version),
                       equivalent ? SqliteValue(pack(*equivalent)) : SqliteValue(nullptr),
                       storedNote(note));
  addDependencies(nextMetamodel_, metamodel);
  ++nextMetamodel_;
}

void SqliteRowWriter::addDependencies(std::int64_t position, const CatalogueMetamodel& metamodel) {
  const auto& dependencies = metamodel.descriptor.dependencies;
  std::int64_t ordinal = 0;
  for (std::size_t i = 0; i < dependencies.size(); ++i) {
    const auto& [name, range] = dependencies[i];
    addDependency(position, ordinal++, {{name, range, false}, metamodel.noteOfDependency(i)});
  }
  for (const CatalogueRequirement& requirement : metamodel.requirements) {
    addDependency(position, ordinal++, requirement);
  }
}

void SqliteRowWriter::addDependency(std::int64_t position, std::int64_t ordinal,
                                    const CatalogueRequirement& dependency) {
  const auto& [needed, note] = dependency;
  const std::int64_t name = idOf(needed.name);
  const auto isOptional = std::int64_t{needed.isOptional};
  if (needed.range.isSemVerRange()) {
    const auto& [lower, upper] = needed.range.getSemVerRange();
    insertDependency_.run(position, ordinal, name, nullptr, pack(lower), pack(upper),
                          storedNote(note), isOptional);
  } else {
    insertDependency_.run(position, ordinal, name, expectStored(needed.range.getText()), nullptr,
                          nullptr, storedNote(note), isOptional);
  }
}

void SqliteRowWriter::addHop(const pathfinder::Hop& hop, const std::u16string& note) {
  insertHop_.run(nextHop_++, idOf(hop.name), storedVersion(hop.from), storedVersion(hop.to),
                 std::int64_t{hop.expensive}, storedNote(note));
}

void SqliteRowWriter::setQuestion(const Question& question) {
  insertQuestion_.run();
  addSelection("from", question.from);
  addSelection("to", question.to);
}

void SqliteRowWriter::addSelection(const std::string& side, const Selection& selection) {
  for (const auto& [name, version] : selection) {
    insertQuestionVersion_.run(side, expectStored(name), storedVersion(version));
  }
}

std::int64_t SqliteRowWriter::idOf(const std::u16string& name) {
  const auto known = ids_.find(name);
  if (known != ids_.end()) return known->second;
  const SqliteValue stored = expectStored(name);
  insertName_.run(stored);
  auto rows = selectName_.query(stored);
  rows.next();
  if (ids_.size() >= rememberedNames) ids_.clear();
  return ids_[name] = rows.number(0);
}

}  // namespace tarn::evolution::catalogue
