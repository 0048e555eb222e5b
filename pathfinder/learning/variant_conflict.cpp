// A formula: a literal for each name and variant that it may hold, and for a name that is absent
// one more; at most one of these for each name; what a variant links is held beside it; and, as an
// assumption for each name, that it holds a variant of the selection's version. The assumptions
// that a refutation needs are a conflict, which is made irreducible by leaving out one after the
// other.

#include "pathfinder/learning/variant_conflict.hpp"

#include "pathfinder/learning/irreducible_assumptions.hpp"

namespace tarn::evolution::pathfinder {

VariantConflict::VariantConflict(const SearchSpace& space, SelectionView selection)
    : space_(space), isHeld_(space.names.size()) {
  for (NameIndex name = 0; name < selection.size(); ++name) addVersion(name, selection[name]);
}

/// The literal that a name holds a variant; made, with what follows from it, when it is met first.
Literal VariantConflict::isHeld(NameIndex name, VariantIndex variant) {
  const auto [known, isNew] = isHeld_[name].try_emplace(variant, 0);
  if (!isNew) return known->second;
  const Literal held = known->second = solver_.newVariable();
  for (const auto& [other, literal] : isHeld_[name]) {
    if (other != variant) solver_.addClause({-literal, -held});
  }
  if (variant == SearchSpace::none) return held;
  for (const SearchSpace::Link& link : space_.variants[variant].closure) {
    if (link.name == name) continue;
    const Literal linked = isHeld(link.name, link.variant);
    solver_.addClause({-held, linked});
  }
  return held;
}

void VariantConflict::addVersion(NameIndex name, VersionIndex version) {
  const Literal wanted = wanted_.emplace_back(solver_.newVariable());
  std::vector<Literal> clause{-wanted};
  const SearchSpace::Version& held = space_.versions[version];
  for (VariantIndex i = 0; i < held.variantCount; ++i) {
    clause.push_back(isHeld(name, held.firstVariant + i));
  }
  if (space_.isAbsent(version)) clause.push_back(isHeld(name, SearchSpace::none));
  solver_.addClause(clause);
}

std::optional<std::vector<NameIndex>> VariantConflict::find() {
  return findUnder({});
}

std::optional<std::vector<NameIndex>> VariantConflict::findBeside(const VersionBaseline& target) {
  std::vector<Literal> fixed;
  for (NameIndex name = 0; name < space_.names.size(); ++name) {
    const auto held = target.metamodels.find(space_.names[name].text);
    if (held == target.metamodels.end()) continue;
    const VariantIndex variant = held->second ? variantOf(name, *held->second) : SearchSpace::none;
    const bool mayBe = held->second ? variant != SearchSpace::none
                                    : space_.names[name].absent != SearchSpace::none;
    if (!mayBe) return std::vector<NameIndex>();
    fixed.push_back(isHeld(name, variant));
  }
  return findUnder(fixed);
}

/// The variant that a linked metamodel is; none when it is not in the space.
VariantIndex VariantConflict::variantOf(NameIndex name, const LinkedMetamodel& linked) const {
  for (VersionIndex index = space_.names[name].first; index < space_.names[name].end; ++index) {
    const SearchSpace::Version& version = space_.versions[index];
    for (VariantIndex i = 0; version.linked != nullptr && i < version.variantCount; ++i) {
      if ((*version.linked)[i].get() == &linked) return version.firstVariant + i;
    }
  }
  return SearchSpace::none;
}

std::optional<std::vector<NameIndex>> VariantConflict::findUnder(
    const std::vector<Literal>& fixed) {
  const auto places = findIrreducible(solver_, fixed, wanted_);
  if (!places) return std::nullopt;
  return std::vector<NameIndex>(places->begin(), places->end());
}

}  // namespace tarn::evolution::pathfinder
