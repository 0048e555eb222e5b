#include "catalogue/check/draft_index.hpp"

#include <algorithm>
#include <utility>

#include "catalogue/printed_text.hpp"
#include "catalogue/range_union.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SemVer;
using pathfinder::SemVerRange;
using pathfinder::VersionId;
using pathfinder::VersionRange;

bool ResolvedDependency::admits(Slot slot) const {
  return candidates.contains(slot) &&
         (pieces.empty() || std::any_of(pieces.begin(), pieces.end(), [slot](SlotInterval piece) {
            return piece.contains(slot);
          }));
}

DraftIndex::DraftIndex(const CatalogueDraft& draft) : draft_(draft) {
  numberNames();
  placeVersions();
  resolveDependencies();
}

NameNumber DraftIndex::find(const std::u16string& name) const {
  const auto found = numbers_.find(name);
  return found == numbers_.end() ? nothing : found->second;
}

void DraftIndex::numberNames() {
  for (const MetamodelRow& row : draft_.metamodels) {
    if (row.name && numbers_.try_emplace(*row.name, nothing).second) {
      names_.push_back({*row.name, {}, 0, true});
    }
  }
  std::sort(names_.begin(), names_.end(),
            [](const Name& left, const Name& right) { return left.text < right.text; });
  for (NameNumber number = 0; number < names_.size(); ++number) {
    numbers_[names_[number].text] = number;
  }
}

/// A version that could be read.
struct DraftIndex::Entry {
  NameNumber name;
  std::uint32_t row;
  bool isText;  // without equivalent
  SemVer semantic;

  bool operator<(const Entry& other) const {
    if (name != other.name) return name < other.name;
    if (isText != other.isText) return other.isText;
    if (!(semantic == other.semantic)) return semantic < other.semantic;
    return row < other.row;
  }
};

/// All versions that could be read, in the order of their slots.
std::vector<DraftIndex::Entry> DraftIndex::entriesInOrder() {
  std::vector<Entry> entries;
  for (std::uint32_t position = 0; position < draft_.metamodels.size(); ++position) {
    const MetamodelRow& row = draft_.metamodels[position];
    if (!row.name) continue;
    const NameNumber name = numbers_.at(*row.name);
    if (!row.version) {
      names_[name].isComplete = false;
    } else if (row.version->isSemVer()) {
      entries.push_back({name, position, false, row.version->getSemVer()});
    } else {
      entries.push_back({name, position, !row.equivalent, row.equivalent.value_or(SemVer{})});
    }
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

void DraftIndex::placeVersions() {
  slotOfRow_.assign(draft_.metamodels.size(), nothing);
  for (const Entry& entry : entriesInOrder()) {
    const Slot slot = slotCount();
    Name& name = names_[entry.name];
    if (name.all.empty()) name.all = {slot, slot}, name.semanticEnd = slot;
    name.all.end = slot + 1;
    if (!entry.isText) name.semanticEnd = slot + 1;
    rows_.push_back(entry.row);
    nameOf_.push_back(entry.name);
    semantic_.push_back(entry.semantic);
    slotOfRow_[entry.row] = slot;
    const VersionId& version = *row(slot).version;
    if (version.isSemVer()) continue;
    Slot& first = texts_.try_emplace({entry.name, version.getText()}, slot).first->second;
    if (entry.row < rows_[first]) first = slot;
  }
}

void DraftIndex::resolveDependencies() {
  std::vector<Slot> seenIn(names_.size(), nothing);  // the last slot with a dependency on the name
  dependencyStart_.reserve(slotCount() + std::size_t{1});
  for (Slot slot = 0; slot < slotCount(); ++slot) {
    dependencyStart_.push_back(dependencies_.size());
    const auto& rows = row(slot).dependencies;
    for (std::uint32_t i = 0; i < rows.size(); ++i) {
      if (!rows[i].name || !rows[i].range) continue;
      const NameNumber name = find(*rows[i].name);
      if (name == nothing) continue;
      dependencies_.push_back(resolved(name, *rows[i].range, i, seenIn[name] != slot));
      seenIn[name] = slot;
    }
  }
  dependencyStart_.push_back(dependencies_.size());
}

ResolvedDependency DraftIndex::resolved(NameNumber name, const VersionRange& range,
                                        std::uint32_t row, bool isFirstOfName) const {
  ResolvedDependency result{name, {}, row, isFirstOfName};
  std::vector<SlotInterval> pieces = piecesIn(name, range);
  for (const SlotInterval piece : pieces) {
    SlotInterval& all = result.candidates;
    if (piece.empty()) continue;
    all = all.empty()
              ? piece
              : SlotInterval{std::min(all.begin, piece.begin), std::max(all.end, piece.end)};
  }
  if (pieces.size() > 1) result.pieces = std::move(pieces);
  return result;
}

Slot DraftIndex::firstAtLeast(NameNumber name, const SemVer& bound) const {
  const auto begin = semantic_.begin();
  return static_cast<Slot>(
      std::lower_bound(begin + names_[name].all.begin, begin + names_[name].semanticEnd, bound) -
      begin);
}

Slot DraftIndex::firstAbove(NameNumber name, const SemVer& bound) const {
  const auto begin = semantic_.begin();
  return static_cast<Slot>(
      std::upper_bound(begin + names_[name].all.begin, begin + names_[name].semanticEnd, bound) -
      begin);
}

std::vector<SlotInterval> DraftIndex::piecesIn(NameNumber name, const VersionRange& range) const {
  std::vector<SlotInterval> result;
  for (const VersionRange& piece : piecesOf(range)) result.push_back(versionsIn(name, piece));
  return result;
}

SlotInterval DraftIndex::versionsIn(NameNumber name, const VersionRange& range) const {
  if (!range.isSemVerRange()) return versionsAt(name, range.getText());
  const SemVerRange& bounds = range.getSemVerRange();
  if (range == VersionRange::singleVersion(bounds.lower)) return versionsAt(name, bounds.lower);
  return {firstAtLeast(name, bounds.lower), firstAtLeast(name, bounds.upper)};
}

SlotInterval DraftIndex::versionsAt(NameNumber name, const VersionId& version) const {
  if (version.isSemVer()) {
    return {firstAtLeast(name, version.getSemVer()), firstAbove(name, version.getSemVer())};
  }
  const auto found = texts_.find({name, version.getText()});
  if (found == texts_.end()) return {};
  return {found->second, found->second + 1};
}

Slot DraftIndex::denotedBy(NameNumber name, const VersionId& version) const {
  SlotInterval found = versionsAt(name, version);
  if (!found.empty() && !version.isSemVer() && isSemantic(found.begin)) {
    found = versionsAt(name, semanticVersion(found.begin));
  }
  return found.empty() ? nothing : found.begin;
}

std::string DraftIndex::describe(Slot slot) const {
  return fl::i18n::ustring_to_utf8(*row(slot).name) + "@" + textOf(*row(slot).version);
}

}  // namespace tarn::evolution::catalogue
