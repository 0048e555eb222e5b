// Required stops: a table is a metamodel. It lists releases and those among them, or whole minor
// versions, that an upgrade must not pass by; docs/import.md shows its form.
#include <algorithm>
#include <optional>
#include <utility>

#include "catalogue/import/documents.hpp"
#include "catalogue/import/offered_hops.hpp"
#include "catalogue/import/readers.hpp"

namespace tarn::evolution::catalogue {

namespace {

using pathfinder::SemVer;

/// Versions of which one must be stopped at: from `first` on, before `end`.
struct RequiredStop {
  std::string text;
  SourcePlace place;
  SemVer first;
  SemVer end;
  bool isConditional;
  std::string note;

  bool includes(const ForeignVersion& version) const {
    return !(version.order.core < first) && version.order.core < end;
  }

  bool liesBetween(const FullVersion& from, const FullVersion& to) const {
    return from.core < first && !(to.core < end);
  }
};

class StopReader {
 public:
  StopReader(const SourceNode& table, ForeignCatalogue& catalogue, const Reading& reading)
      : table_(table), catalogue_(catalogue), reading_(reading) {}

  void read(std::string name) {
    if (table_.isArray()) {
      readStops(table_);
    } else {
      const std::string own = table_.optionalText("name");
      if (!own.empty()) name = own;
      readStops(table_.field("stops"));
    }
    if (catalogue_.contains(name)) table_.fail("there is another table of the name " + name);
    ForeignPackage& package = catalogue_[name];
    if (!table_.isArray()) readVersions(package);
    addStops(package);
    addStopNotes(package);
    addStopHops(package);
  }

 private:
  void readVersions(ForeignPackage& package) {
    for (const SourceNode& version : table_.elements("versions")) {
      reading_.log.attempt([&] {
        const std::string& text = version.asText();
        if (!parseFullVersion(text).isSemantic) version.fail("\"" + text + "\" is no version");
        package.addVersion(text, version.place());
      });
    }
  }

  void readStops(const SourceNode& stops) {
    for (const SourceNode& stop : stops.elements()) {
      reading_.log.attempt([&] { readStop(stop); });
    }
  }

  /// "15.4", or "15.4.6", or an object with such a "version", or with "major" and "minor".
  void readStop(const SourceNode& stop) {
    std::string text;
    bool isConditional = false;
    std::string note;
    if (!stop.isObject()) {
      text = stop.asText();
    } else {
      text = stop.optionalText("version");
      if (text.empty()) {
        text = std::to_string(stop.field("major").asIndex()) + "." +
               std::to_string(stop.field("minor").asIndex());
        if (const auto patch = stop.find("patch")) text += "." + std::to_string(patch->asIndex());
      }
      if (const auto is = stop.find("conditional")) isConditional = is->asBoolean();
      addNote(stop.optionalText("note"), note);
      addNote(stop.optionalText("comments"), note);
    }
    const FullVersion version = parseFullVersion(text);
    const auto numbers = std::count(text.begin(), text.end(), '.') + 1;
    if (!version.isSemantic || version.isPrerelease() || numbers < 2) {
      stop.fail("\"" + text + "\" is no stop: it must be a minor version or a release");
    }
    const SemVer last{version.core.major, version.core.minor, widestRange().upper.patch};
    stops_.push_back({text, stop.place(), version.core, nextPatch(last).value_or(last),
                      isConditional, std::move(note)});
  }

  /// A stop of which no release is listed is a release itself.
  void addStops(ForeignPackage& package) {
    for (const RequiredStop& stop : stops_) {
      const bool isListed =
          std::any_of(package.versions().begin(), package.versions().end(),
                      [&](const ForeignVersion& each) { return stop.includes(each); });
      if (!isListed) reading_.log.attempt([&] { package.addVersion(stop.text, stop.place); });
    }
  }

  /// What is told of the stops that a hop passes by.
  std::string notesBetween(const ForeignVersion& from, const ForeignVersion& to) const {
    std::string note;
    for (const RequiredStop& stop : stops_) {
      if (stop.liesBetween(from.order, to.order)) addNote(stop.note, note);
    }
    return note;
  }

  /// What is told of stops is told of their versions, too.
  void addStopNotes(ForeignPackage& package) const {
    for (ForeignVersion& version : package.versions()) {
      for (const RequiredStop& stop : stops_) {
        if (stop.includes(version) && !stop.isConditional) addNote(stop.note, version.note);
      }
    }
  }

  void addStopHops(ForeignPackage& package) const {
    const std::vector<ForeignVersion>& versions = package.versions();
    const HopOffer offer(versions, reading_.options.offeredHops);
    for (std::size_t from = 0; from < versions.size(); ++from) {
      const auto crosses = [&](std::size_t to, bool isConditional) {
        return std::any_of(stops_.begin(), stops_.end(), [&](const RequiredStop& stop) {
          return stop.isConditional == isConditional &&
                 stop.liesBetween(versions[from].order, versions[to].order);
        });
      };
      const auto isAllowed = [&](std::size_t to) { return !crosses(to, false); };
      const auto add = [&](const auto& isWanted) {
        for (const std::size_t to : offer.from(from, isWanted)) {
          package.addHop(from, to, crosses(to, true), notesBetween(versions[from], versions[to]));
        }
      };
      add(isAllowed);
      // Stops are to be reached even where a newer version of their line is offered, beyond them.
      for (const RequiredStop& stop : stops_) {
        add([&](std::size_t to) { return stop.includes(versions[to]) && isAllowed(to); });
      }
    }
  }

  const SourceNode& table_;
  ForeignCatalogue& catalogue_;
  const Reading& reading_;
  std::vector<RequiredStop> stops_;
};

}  // namespace

ForeignCatalogue readRequiredStops(const Reading& reading) {
  ForeignCatalogue catalogue;
  for (const auto& source : reading.sources) {
    for (const auto& path : filesOf(source, {".json", ".yaml", ".yml"})) {
      SourceFile file(path, reading.advance);
      readDocuments(file, [&](const SourceNode& document) {
        reading.log.attempt(
            [&] { StopReader(document, catalogue, reading).read(path.stem().string()); });
      });
    }
  }
  return catalogue;
}

}  // namespace tarn::evolution::catalogue
