// Tables: one of versions has the columns name, version, and perhaps needs, as often as it likes,
// and equivalent; one of hops has name, from, to and perhaps expensive. Both may have a note.
#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <utility>

#include "catalogue/import/readers.hpp"
#include "catalogue/import/table_rows.hpp"
#include "catalogue/utf16.hpp"

namespace tarn::evolution::catalogue {

namespace {

constexpr const char* needsColumn = "needs";

class TableReader {
 public:
  explicit TableReader(const Reading& reading) : reading_(reading) {}

  ForeignCatalogue read() {
    for (const auto& source : reading_.sources) {
      for (const auto& path : filesOf(source, {".csv", ".tsv"})) readTable(path);
    }
    for (const TableHop& hop : hops_) reading_.log.attempt([&] { addTableHop(hop); });
    return std::move(catalogue_);
  }

 private:
  struct TableHop {
    std::string name;
    std::string from;
    std::string to;
    bool isExpensive;
    std::string note;
    SourcePlace place;
  };

  void readTable(const std::filesystem::path& path) {
    SourceFile file(path, reading_.advance);
    std::optional<TableHead> head;
    readTableRows(file, [&](const TableRow& row) {
      if (!head) {
        head = readHead(row, file);
        return;
      }
      reading_.log.attempt([&] { readRow(row, *head, file); });
    });
    if (!head) file.place().fail("the table is empty");
  }

  TableHead readHead(const TableRow& row, const SourceFile& file) {
    TableHead head(row, file, needsColumn);
    const bool isOfVersions = head.has("version");
    if (!head.has("name") || (!isOfVersions && !(head.has("from") && head.has("to")))) {
      file.place(row.line).fail(
          "the first row must name the columns: \"name\" and \"version\", or \"name\", \"from\" "
          "and \"to\"");
    }
    const std::set<std::string> known =
        isOfVersions ? std::set<std::string>{"name", "version", needsColumn, "equivalent", "note"}
                     : std::set<std::string>{"name", "from", "to", "expensive", "note"};
    for (const std::string& column : head.columns()) {
      if (known.contains(column)) continue;
      reading_.log.leaveOut(
          file.place(row.line).error("there is no column \"" + column + "\" in such a table"));
    }
    return head;
  }

  void readRow(const TableRow& row, const TableHead& head, const SourceFile& file) {
    if (row.cells.size() > head.columns().size()) {
      file.place(row.line).fail("the row has more cells than the first one");
    }
    if (head.has("version")) {
      readVersionRow(row, head, file);
    } else {
      hops_.push_back({head.neededCell(row, "name", file), head.neededCell(row, "from", file),
                       head.neededCell(row, "to", file),
                       truthOf(head.cell(row, "expensive"), file.place(row.line)),
                       noteOf(row, head, file), file.place(row.line)});
    }
  }

  static std::string noteOf(const TableRow& row, const TableHead& head, const SourceFile& file) {
    std::string note = head.cell(row, "note");
    try {
      toUtf16(note);
    } catch (const std::invalid_argument&) {
      file.place(row.line).fail("the note is not UTF-8");
    }
    return note;
  }

  static bool truthOf(const std::string& cell, const SourcePlace& place) {
    constexpr std::array<std::string_view, 5> yes{"true", "yes", "1", "x", "expensive"};
    constexpr std::array<std::string_view, 4> no{"", "false", "no", "0"};
    if (std::find(yes.begin(), yes.end(), cell) != yes.end()) return true;
    if (std::find(no.begin(), no.end(), cell) != no.end()) return false;
    place.fail("\"" + cell + "\" is neither true nor false");
  }

  void readVersionRow(const TableRow& row, const TableHead& head, const SourceFile& file) {
    const SourcePlace place = file.place(row.line);
    const std::string name = head.neededCell(row, "name", file);
    std::vector<ForeignDependency> dependencies;
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
      if (head.columns()[i] == needsColumn) readNeeds(row.cells[i], place, dependencies);
    }
    const std::string note = noteOf(row, head, file);
    ForeignPackage& package = catalogue_[name];
    package.keepsOrder = true;
    ForeignVersion& version = package.addVersion(head.neededCell(row, "version", file), place);
    version.dependencies = std::move(dependencies);
    version.note = note;
    const std::string equivalent = head.cell(row, "equivalent");
    if (!equivalent.empty()) version.equivalent = equivalent;
  }

  /// "shape >=1 <2; colour 1.0.0": needs between semicolons, each a name, a blank and a range.
  static void readNeeds(const std::string& cell, const SourcePlace& place,
                        std::vector<ForeignDependency>& dependencies) {
    for (std::size_t begin = 0; begin <= cell.size();) {
      const std::size_t end = std::min(cell.find(';', begin), cell.size());
      const std::size_t first = cell.find_first_not_of(' ', begin);
      if (first < end) readNeed(cell.substr(first, end - first), place, dependencies);
      begin = end + 1;
    }
  }

  static void readNeed(const std::string& need, const SourcePlace& place,
                       std::vector<ForeignDependency>& dependencies) {
    const std::size_t blank = std::min(need.find(' '), need.size());
    const std::string name = need.substr(0, blank);
    const std::size_t first = need.find_first_not_of(' ', blank);
    const std::string range = first == std::string::npos
                                  ? ""
                                  : need.substr(first, need.find_last_not_of(' ') + 1 - first);
    dependencies.push_back({name, rangeOf(range), range.empty() ? "any version" : range, place});
  }

  /// What does not read as a range is a version that is a text.
  static ForeignRange rangeOf(const std::string& text) {
    if (text.empty()) return ForeignRange::everything();
    try {
      return parseForeignRange(text, RangeGrammar::Npm);
    } catch (const std::invalid_argument&) {
      return ForeignRange::versions({text});
    }
  }

  /// A name of which no table lists versions has those between which there are hops.
  void addTableHop(const TableHop& hop) {
    const auto [found, isNew] = catalogue_.try_emplace(hop.name);
    if (isNew) {
      found->second.keepsOrder = true;
      unlisted_.insert(hop.name);
    }
    ForeignPackage& package = found->second;
    const auto versionOf = [&](const std::string& text) {
      const auto index = package.find(text);
      if (index) return *index;
      if (!unlisted_.contains(hop.name)) {
        hop.place.fail("there is no version " + text + " of " + hop.name);
      }
      package.addVersion(text, hop.place);
      return package.versions().size() - 1;
    };
    const std::size_t from = versionOf(hop.from);
    package.addHop(from, versionOf(hop.to), hop.isExpensive, hop.note);
  }

  const Reading& reading_;
  ForeignCatalogue catalogue_;
  std::vector<TableHop> hops_;
  std::set<std::string> unlisted_;
};

}  // namespace

ForeignCatalogue readTables(const Reading& reading) {
  return TableReader(reading).read();
}

}  // namespace tarn::evolution::catalogue
