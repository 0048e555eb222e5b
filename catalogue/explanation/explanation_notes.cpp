#include "catalogue/explanation/explanation_notes.hpp"

#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "catalogue/model/numbered_versions.hpp"
#include "catalogue/model/row_key.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::BaselineHop;
using pathfinder::Hop;
using pathfinder::VersionId;

namespace {

class NoteCollection {
 public:
  explicit NoteCollection(BrowsableRepository& content) : content_(content) {}

  std::vector<ExplanationNote> collect(const Explanation& explanation) {
    std::visit([&](const auto& reason) { add(reason); }, explanation.reason);
    add(explanation.unlinkable);
    add(explanation.withoutOrder);
    if (explanation.nearest) add(*explanation.nearest);
    std::multimap<Place, ExplanationNote> ordered;
    for (auto& [key, note] : notes_) {
      if (!note.note.empty()) ordered.emplace(placeOf(note), std::move(note));
    }
    std::vector<ExplanationNote> notes;
    for (auto& [place, note] : ordered) notes.push_back(std::move(note));
    return notes;
  }

 private:
  /// By name, then by the number of the version; the version itself before its hops, and these
  /// before what it needs.
  using Place = std::tuple<std::u16string, std::optional<std::size_t>,
                           std::optional<std::u16string>, std::optional<std::size_t>>;

  Place placeOf(const ExplanationNote& note) {
    const NumberedVersions& versions = versionsOf(note.subject.name);
    return {note.subject.name, versions.findMeant(note.subject.version), note.dependency,
            note.to ? versions.findMeant(*note.to) : std::nullopt};
  }

  const NumberedVersions& versionsOf(const std::u16string& name) {
    return versions_.try_emplace(name, content_, name).first->second;
  }

  void add(const PathExists& reason) { add(reason.path); }
  void add(const UnknownEntries& /*reason*/) {}
  void add(const InconsistentSelection& reason) {
    add(reason.unlinkable);
    add(reason.clash);
  }
  void add(const MissingChains& reason) {
    for (const MissingChain& chain : reason.chains) {
      add(chain.target);
      add(chain.chainInAnyDirection);
    }
  }
  void add(const AgainstDirection& reason) { add(reason.path); }
  void add(const NeverTogether& reason) {
    for (const BlockedHop& blocked : reason.blocked) {
      add(blocked.hop);
      add(std::optional(blocked.clash));
    }
    for (const Clash& clash : reason.otherClashes) add(std::optional(clash));
  }
  void add(const PathBesideUnlinkable& reason) { add(reason.path); }

  void add(const NearestBaseline& nearest) {
    add(nearest.path);
    for (const Unfinished& rest : nearest.unfinished) add(rest.target);
  }

  void add(const Unlinkable& unlinkable) {
    addChain(unlinkable.chain);
    if (unlinkable.unmet) addDependency(unlinkable.chain.back(), unlinkable.unmet->name);
    add(unlinkable.clash);
  }

  void add(const std::optional<Clash>& clash) {
    if (!clash) return;
    for (const Requirement& requirement : clash->requirements) {
      addChain(requirement.chain);
      if (requirement.range) addDependency(requirement.chain.back(), requirement.name);
    }
  }

  /// Each of which needs the next one.
  void addChain(const std::vector<NamedVersion>& chain) {
    for (std::size_t i = 0; i < chain.size(); ++i) {
      add(chain[i]);
      if (i > 0) addDependency(chain[i - 1], chain[i].name);
    }
  }

  void add(const BaselineHop& step) {
    for (const auto& [name, hop] : step.hops) add(hop);
  }

  void add(const Hop& hop) {
    const auto [place, isNew] = notes_.try_emplace(keyOf(hop.name, hop.from) + keyOf({}, hop.to));
    if (isNew) place->second = {{hop.name, hop.from}, hop.to, {}, content_.findHopNote(hop)};
    add(NamedVersion{hop.name, hop.to});
  }

  void add(const NamedVersion& version) {
    const auto [place, isNew] = notes_.try_emplace(keyOf(version.name, version.version));
    if (isNew) {
      place->second = {version, {}, {}, content_.findVersionNote(version.name, version.version)};
    }
  }

  void addDependency(const NamedVersion& version, const std::u16string& needed) {
    const auto [place, isNew] =
        notes_.try_emplace(keyOf(version.name, version.version) + u'>' + needed);
    if (!isNew) return;
    place->second = {version, {}, needed, {}};
    const NumberedVersions& versions = versionsOf(version.name);
    if (const auto number = versions.find(version.version)) {
      addNotesOn(needed, versions[*number], place->second.note);
    }
  }

  static void addNotesOn(const std::u16string& needed, const CatalogueMetamodel& metamodel,
                         std::u16string& note) {
    for (std::size_t i = 0; i < metamodel.dependencyNotes.size(); ++i) {
      const std::u16string& more = metamodel.dependencyNotes[i];
      if (metamodel.descriptor.dependencies[i].name != needed || more.empty()) continue;
      note += (note.empty() ? u"" : u"\n") + more;
    }
    for (const auto& [required, more] : metamodel.requirements) {
      if (required.name != needed || more.empty()) continue;
      note += (note.empty() ? u"" : u"\n") + more;
    }
  }

  template <class Item>
  void add(const std::vector<Item>& items) {
    for (const Item& item : items) add(item);
  }

  BrowsableRepository& content_;
  std::map<std::u16string, NumberedVersions> versions_;
  std::map<std::u16string, ExplanationNote> notes_;
};

}  // namespace

std::vector<ExplanationNote> collectNotes(BrowsableRepository& content,
                                          const Explanation& explanation) {
  return NoteCollection(content).collect(explanation);
}

}  // namespace tarn::evolution::catalogue
