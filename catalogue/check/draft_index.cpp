#include "catalogue/check/draft_index.hpp"

#include <algorithm>
#include <utility>

#include "catalogue/text/printed_text.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;
using pathfinder::VersionRange;

bool ResolvedDependency::admits(Slot slot) const {
  return candidates.contains(slot) &&
         (pieces.empty() || std::any_of(pieces.begin(), pieces.end(), [slot](SlotInterval piece) {
            return piece.contains(slot);
          }));
}

DraftIndex::DraftIndex(const CatalogueDraft& draft, Needs needs)
    : draft_(draft), needs_(needs), slots_(placeVersions()) {
  resolveDependencies();
}

NameNumber DraftIndex::find(const std::u16string& name) const {
  const auto found = numbers_.find(name);
  return found == numbers_.end() ? nothing : found->second;
}

void DraftIndex::numberNames() {
  for (const MetamodelRow& row : draft_.metamodels) {
    if (row.name && numbers_.try_emplace(*row.name, nothing).second) names_.push_back({*row.name});
  }
  std::sort(names_.begin(), names_.end(),
            [](const Name& left, const Name& right) { return left.text < right.text; });
  for (NameNumber number = 0; number < names_.size(); ++number) {
    numbers_[names_[number].text] = number;
  }
}

VersionSlots DraftIndex::placeVersions() {
  numberNames();
  std::vector<VersionSlots::Version> versions;
  for (std::uint32_t position = 0; position < draft_.metamodels.size(); ++position) {
    const MetamodelRow& row = draft_.metamodels[position];
    if (!row.name) continue;
    const NameNumber name = numbers_.at(*row.name);
    if (!row.version) {
      names_[name].isComplete = false;
    } else if (row.version->isSemVer()) {
      versions.push_back({name, position, row.version->getSemVer(), true});
    } else {
      versions.push_back({name, position,
                          row.equivalent ? *row.equivalent : Precedence::of(*row.version),
                          row.equivalent.has_value()});
      texts_.try_emplace({name, row.version->getText()}, position);
    }
  }
  return {std::move(versions), names_.size(), draft_.metamodels.size()};
}

void DraftIndex::resolveDependencies() {
  std::vector<Slot> seenIn(names_.size(), nothing);  // the last slot with a dependency on the name
  dependencyStart_.reserve(slots_.size() + std::size_t{1});
  for (Slot slot = 0; slot < slots_.size(); ++slot) {
    dependencyStart_.push_back(dependencies_.size());
    const auto& rows = row(slot).dependencies;
    for (std::uint32_t i = 0; i < rows.size(); ++i) {
      if (!rows[i].name || !rows[i].range) continue;
      if (rows[i].isOptional && needs_ == Needs::Linked) continue;
      const NameNumber name = find(*rows[i].name);
      if (name == nothing) continue;
      const bool isFirst = rows[i].isOptional || std::exchange(seenIn[name], slot) != slot;
      dependencies_.push_back(resolved(name, *rows[i].range, i, isFirst));
      dependencies_.back().isOptional = rows[i].isOptional;
    }
  }
  dependencyStart_.push_back(dependencies_.size());
}

ResolvedDependency DraftIndex::resolved(NameNumber name, const VersionRange& range,
                                        std::uint32_t row, bool isFirstOfName) const {
  ResolvedDependency result{name, {}, row, isFirstOfName};
  slots_.forAdmitted(name, range, textFinder(name), [&result](SlotInterval piece) {
    if (result.candidates.empty()) {
      result.candidates = piece;
      return;
    }
    if (result.pieces.empty()) result.pieces.push_back(result.candidates);
    result.pieces.push_back(piece);
    result.candidates.end = piece.end;
  });
  return result;
}

std::vector<SlotInterval> DraftIndex::versionsIn(NameNumber name, const VersionRange& range) const {
  std::vector<SlotInterval> result;
  slots_.forAdmitted(name, range, textFinder(name),
                     [&result](SlotInterval interval) { result.push_back(interval); });
  return result;
}

SlotInterval DraftIndex::versionsAt(NameNumber name, const VersionId& version) const {
  return slots_.denotedBy(name, version, textFinder(name));
}

Slot DraftIndex::denotedBy(NameNumber name, const VersionId& version) const {
  const SlotInterval found = versionsAt(name, version);
  if (found.empty()) return nothing;
  for (Slot slot = found.begin; slot < found.end; ++slot) {
    if (this->version(slot) == version) return slot;
  }
  return found.begin;
}

std::string DraftIndex::describe(Slot slot) const {
  return fl::i18n::ustring_to_utf8(*row(slot).name) + "@" + textOf(version(slot));
}

}  // namespace tarn::evolution::catalogue
