#include <algorithm>

#include "catalogue/check/draft_checks.hpp"
#include "catalogue/check/finding_text.hpp"
#include "catalogue/range_union.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionRange;

namespace {

bool admitsNothing(const VersionRange& range) {
  if (isUnion(range)) {
    const auto pieces = piecesOf(range);
    return std::all_of(pieces.begin(), pieces.end(), admitsNothing);
  }
  if (!range.isSemVerRange()) return false;
  const auto& [lower, upper] = range.getSemVerRange();
  return !(lower < upper) && !(range == VersionRange::singleVersion(lower));
}

using Slots = std::vector<SlotInterval>;

bool areEmpty(const Slots& slots) {
  return std::all_of(slots.begin(), slots.end(), [](SlotInterval each) { return each.empty(); });
}

bool share(const Slots& left, const Slots& right) {
  return std::any_of(left.begin(), left.end(), [&](SlotInterval one) {
    return std::any_of(right.begin(), right.end(), [&](SlotInterval other) {
      return std::max(one.begin, other.begin) < std::min(one.end, other.end);
    });
  });
}

class DependencyCheck {
 public:
  DependencyCheck(const DraftIndex& index, std::vector<Finding>& findings)
      : index_(index), findings_(findings), firstOf_(index.names().size()) {}

  void run() {
    for (const MetamodelRow& row : index_.draft().metamodels) {
      for (const DependencyRow& dependency : row.dependencies) {
        if (dependency.name) checkNamed(row, dependency);
      }
    }
  }

 private:
  /// The first dependency on a name in the row looked at last that has one.
  struct First {
    const MetamodelRow* row = nullptr;
    const DependencyRow* dependency = nullptr;
  };

  void checkNamed(const MetamodelRow& row, const DependencyRow& dependency) {
    const NameNumber name = index_.find(*dependency.name);
    if (name == nothing) {
      find(FindingCode::UnknownDependency, index_.draft().placeOf(row, dependency, "name"),
           "there is no metamodel " + quotedName(*dependency.name));
    } else if (dependency.range) {
      checkRange(row, dependency, name);
      checkRepeated(row, dependency, name);
    }
  }

  void checkRange(const MetamodelRow& row, const DependencyRow& dependency, NameNumber name) {
    const std::string wanted = quotedName(*dependency.name) + " " + rangeText(*dependency.range);
    if (admitsNothing(*dependency.range)) {
      find(FindingCode::EmptyRange, index_.draft().placeOf(row, dependency, "range"),
           subject(row) + " depends on " + wanted + ", a range that no version can lie in");
    } else if (index_.names()[name].isComplete &&
               areEmpty(index_.piecesIn(name, *dependency.range))) {
      find(
          FindingCode::UnsatisfiedDependency, index_.draft().placeOf(row, dependency, "range"),
          subject(row) + " depends on " + wanted + ", which no version in the catalogue satisfies");
    }
  }

  void checkRepeated(const MetamodelRow& row, const DependencyRow& dependency, NameNumber name) {
    First& first = firstOf_[name];
    if (first.row != &row) {
      first = {&row, &dependency};
      return;
    }
    const Slots before = index_.piecesIn(name, *first.dependency->range);
    const Slots here = index_.piecesIn(name, *dependency.range);
    const bool isContradictory = !areEmpty(before) && !areEmpty(here) && !share(before, here);
    std::string message = subject(row) + " depends on " + quotedName(*dependency.name) +
                          " twice, " + rangeText(*first.dependency->range) + " and " +
                          rangeText(*dependency.range);
    if (isContradictory) message += ", which share no version";
    message += "; versions are chosen by the first only";
    find(isContradictory ? FindingCode::ContradictoryDependency : FindingCode::RepeatedDependency,
         index_.draft().placeOf(row, dependency), message);
    findings_.back().related.push_back(index_.draft().placeOf(row, *first.dependency));
  }

  std::string subject(const MetamodelRow& row) const {
    const auto position = static_cast<std::size_t>(&row - index_.draft().metamodels.data());
    const Slot slot = index_.slotOfRow(position);
    return slot == nothing ? "this version" : index_.describe(slot);
  }

  void find(FindingCode code, const Place& place, const std::string& message) {
    findings_.push_back({code, place, message, {}});
  }

  const DraftIndex& index_;
  std::vector<Finding>& findings_;
  std::vector<First> firstOf_;  // by name
};

}  // namespace

void checkDependencies(const DraftIndex& index, std::vector<Finding>& findings) {
  DependencyCheck(index, findings).run();
}

}  // namespace tarn::evolution::catalogue
