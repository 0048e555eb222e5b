#include "catalogue/explorer/explorer_rows.hpp"

#include <map>
#include <ostream>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "catalogue/model/numbered_versions.hpp"
#include "catalogue/text/json_printer.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

namespace {

using fl::i18n::ustring_to_utf8;

/// JSON in which no character means anything to HTML or ends a line of a script: such characters
/// stand in strings only, where an escape stands for them as well.
std::string escapeForScript(std::string_view json) {
  constexpr std::pair<std::string_view, std::string_view> escapes[] = {{"<", "\\u003c"},
                                                                       {">", "\\u003e"},
                                                                       {"&", "\\u0026"},
                                                                       {"\u2028", "\\u2028"},
                                                                       {"\u2029", "\\u2029"}};
  std::string result;
  result.reserve(json.size());
  while (!json.empty()) {
    std::string_view taken = json.substr(0, 1);
    std::string_view instead = taken;
    for (const auto& [text, escape] : escapes) {
      if (json.starts_with(text)) std::tie(taken, instead) = std::tie(text, escape);
    }
    result += instead;
    json.remove_prefix(taken.size());
  }
  return result;
}

/// A name, a version's number and what is told of them.
struct Told {
  std::vector<std::uint64_t> place;
  std::string text;
};

class RowsWriter {
 public:
  RowsWriter(BrowsableRepository& repository, const std::string& catalogue,
             const ExplorerAnswers& answers, std::ostream& out)
      : repository_(repository),
        catalogue_(catalogue),
        answers_(answers),
        printer_(out, JsonPrinter::Layout::Line) {
    for (const std::u16string& name : repository.listNames()) {
      numbers_.emplace(name, metamodels_.size());
      metamodels_.emplace_back(repository, name);
    }
  }

  void write() {
    printer_.object([&] {
      printer_.key("catalogue");
      printer_.anyText(catalogue_);
      writeNames();
      writeByName("versions", &RowsWriter::writeVersionsOf);
      writeByName("needs", &RowsWriter::writeNeedsOfName);
      writeRanges();
      writeByName("hops", &RowsWriter::writeHopsOf);
      writeTold("semver", equivalents_);
      writeTold("unlinked", unlinked_);
      printer_.objectField("notes", [&] {
        writeTold("versions", versionNotes_);
        writeTold("needs", needNotes_);
        writeTold("hops", hopNotes_);
      });
      writeQuestions();
      printer_.field("leftOut", std::uint64_t{answers_.leftOut});
    });
  }

 private:
  using Range = std::pair<std::uint64_t, pathfinder::VersionRange>;

  void writeNames() {
    printer_.arrayField("names", [&] {
      for (const auto& metamodel : metamodels_) printer_.value(ustring_to_utf8(metamodel.name()));
    });
  }

  /// A list that has for each name the list of what `writeOf` tells of it.
  void writeByName(const char* field, void (RowsWriter::*writeOf)(std::size_t name)) {
    printer_.arrayField(field, [&] {
      for (std::size_t name = 0; name < metamodels_.size(); ++name) {
        printer_.array([&] { (this->*writeOf)(name); });
      }
    });
  }

  void writeVersionsOf(std::size_t name) {
    for (std::size_t version = 0; version < metamodels_[name].size(); ++version) {
      const CatalogueMetamodel& metamodel = metamodels_[name][version];
      printer_.value(textOf(metamodel.descriptor.version));
      if (metamodel.equivalent) {
        equivalents_.push_back({{name, version}, textOf(*metamodel.equivalent)});
      }
      tell(versionNotes_, {name, version}, metamodel.note);
    }
  }

  static void tell(std::vector<Told>& told, std::vector<std::uint64_t> place,
                   const std::u16string& note) {
    if (!note.empty()) told.push_back({std::move(place), ustring_to_utf8(note)});
  }

  void writeNeedsOfName(std::size_t name) {
    for (std::size_t version = 0; version < metamodels_[name].size(); ++version) {
      printer_.array([&] { writeNeedsOf(name, version); });
    }
  }

  void writeNeedsOf(std::size_t name, std::size_t version) {
    const CatalogueMetamodel& metamodel = metamodels_[name][version];
    const auto& dependencies = metamodel.descriptor.dependencies;
    for (std::size_t i = 0; i < dependencies.size(); ++i) {
      printer_.value(std::uint64_t{numberOf(dependencies[i])});
      tell(needNotes_, {name, version, i}, metamodel.noteOfDependency(i));
    }
    std::size_t place = dependencies.size();
    for (const auto& [needed, note] : metamodel.requirements) {
      if (!numbers_.contains(needed.name)) continue;  // of what is not there nothing can be needed
      printer_.value(std::uint64_t{numberOf({needed.name, needed.range})});
      tell(needNotes_, {name, version, place}, note);
      unlinked_.push_back(
          {{name, version, place++}, needed.isOptional ? "if it is there" : "not linked"});
    }
  }

  /// Equal ranges of a name share a number.
  std::size_t numberOf(const pathfinder::Dependency& dependency) {
    const std::size_t name = numbers_.at(dependency.name);
    const auto [entry, isNew] =
        rangeNumbers_.try_emplace({name, rangeText(dependency.range)}, ranges_.size());
    if (isNew) ranges_.emplace_back(name, dependency.range);
    return entry->second;
  }

  void writeRanges() {
    printer_.arrayField("ranges", [&] {
      for (const Range& range : ranges_) {
        printer_.array([&] { writeRange(range.first, range.second); });
      }
    });
  }

  void writeRange(std::uint64_t name, const pathfinder::VersionRange& range) {
    printer_.value(name);
    printer_.value(rangeText(range));
    printer_.array([&] { writeAdmitted(metamodels_[name], range); });
  }

  void writeAdmitted(const NumberedVersions& versions, const pathfinder::VersionRange& range) {
    bool wasAdmitted = false;
    for (std::size_t i = 0; i <= versions.size(); ++i) {
      const bool isAdmitted = i < versions.size() && admits(range, versions[i].descriptor.version,
                                                            versions[i].precedence());
      if (isAdmitted && !wasAdmitted) printer_.value(std::uint64_t{i});
      if (wasAdmitted && !isAdmitted) printer_.value(std::uint64_t{i - 1});
      wasAdmitted = isAdmitted;
    }
  }

  /// A hop from what no version carries is never offered, so that none has it.
  void writeHopsOf(std::size_t name) {
    std::uint64_t place = 0;
    for (const pathfinder::Hop& hop : repository_.listHops(metamodels_[name].name())) {
      const auto from = metamodels_[name].find(hop.from);
      const auto to = metamodels_[name].findMeant(hop.to);
      if (!from || !to) continue;
      printer_.value(std::uint64_t{*from});
      printer_.value(std::uint64_t{*to});
      printer_.value(std::uint64_t{hop.expensive});
      tell(hopNotes_, {name, place++}, repository_.findHopNote(hop));
    }
  }

  void writeTold(const char* field, const std::vector<Told>& told) {
    printer_.arrayField(field, [&] {
      for (const Told& each : told) {
        printer_.array([&] {
          for (const std::uint64_t number : each.place) printer_.value(number);
          printer_.value(each.text);
        });
      }
    });
  }

  void writeQuestions() {
    printer_.arrayField("questions", [&] {
      for (const ExplorerAnswer& each : answers_.answers) {
        printer_.object([&] {
          writeSide("from", each.question ? &each.question->from : nullptr);
          writeSide("to", each.question ? &each.question->to : nullptr);
          printer_.key("answer");
          writeAnswer(each.answer);
        });
      }
    });
  }

  /// An answer is JSON already, and ends its line.
  void writeAnswer(std::string_view answer) {
    if (answer.ends_with('\n')) answer.remove_suffix(1);
    printer_.json(answer);
  }

  void writeSide(const char* side, const Selection* selection) {
    printer_.key(side);
    const auto entries = selection == nullptr ? std::nullopt : placesOf(*selection);
    if (!entries) return printer_.null();
    printer_.array([&] {
      for (const auto& entry : *entries) {
        printer_.array([&] {
          printer_.value(entry.first);
          printer_.value(entry.second);
        });
      }
    });
  }

  /// The versions that are meant, by ascending name; none when one of them is unknown.
  std::optional<std::map<std::uint64_t, std::uint64_t>> placesOf(const Selection& selection) {
    std::map<std::uint64_t, std::uint64_t> places;
    for (const auto& [name, version] : selection) {
      const auto metamodel = repository_.getMetamodel(name, version);
      if (!metamodel) return std::nullopt;
      const std::size_t number = numbers_.at(name);
      places.emplace(number, metamodels_[number].find(metamodel->version).value());
    }
    return places;
  }

  BrowsableRepository& repository_;
  const std::string& catalogue_;
  const ExplorerAnswers& answers_;
  JsonPrinter printer_;

  std::vector<NumberedVersions> metamodels_;
  std::unordered_map<std::u16string, std::size_t> numbers_;
  std::vector<Range> ranges_;
  std::map<std::pair<std::size_t, std::string>, std::size_t> rangeNumbers_;
  std::vector<Told> equivalents_;
  std::vector<Told> versionNotes_;
  std::vector<Told> unlinked_;
  std::vector<Told> needNotes_;
  std::vector<Told> hopNotes_;
};

}  // namespace

void writeExplorerRows(BrowsableRepository& repository, const std::string& catalogue,
                       const ExplorerAnswers& answers, std::ostream& out) {
  out << escapeForScript(written(
      [&](std::ostream& rows) { RowsWriter(repository, catalogue, answers, rows).write(); }));
}

}  // namespace tarn::evolution::catalogue
