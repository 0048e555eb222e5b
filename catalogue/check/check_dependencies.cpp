#include <algorithm>

#include "catalogue/check/checks.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"

namespace tarn::evolution::catalogue {

namespace {

using Slots = std::vector<SlotInterval>;

bool share(const Slots& left, const Slots& right) {
  return std::any_of(left.begin(), left.end(), [&](SlotInterval one) {
    return std::any_of(right.begin(), right.end(), [&](SlotInterval other) {
      return std::max(one.begin, other.begin) < std::min(one.end, other.end);
    });
  });
}

class DependencyCheck {
 public:
  DependencyCheck(const DraftIndex& index, Findings& findings)
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
      if (dependency.isOptional) return;
      findings_.add(FindingCode::UnknownDependency, place(row, dependency, "name"),
                    unknownMetamodel(*dependency.name));
    } else if (dependency.range) {
      checkRange(row, dependency, name);
      if (!dependency.isOptional) checkRepeated(row, dependency, name);
    }
  }

  void checkRange(const MetamodelRow& row, const DependencyRow& dependency, NameNumber name) {
    const std::string wanted = quotedName(*dependency.name) + " " + rangeText(*dependency.range);
    if (admitsNothing(*dependency.range)) {
      findings_.add(
          FindingCode::EmptyRange, place(row, dependency, "range"),
          subject(row) + " depends on " + wanted + ", a range that no version can lie in");
    } else if (index_.names()[name].isComplete &&
               index_.versionsIn(name, *dependency.range).empty()) {
      findings_.add(
          FindingCode::UnsatisfiedDependency, place(row, dependency, "range"),
          subject(row) + " depends on " + wanted + ", which no version in the catalogue satisfies");
    }
  }

  void checkRepeated(const MetamodelRow& row, const DependencyRow& dependency, NameNumber name) {
    First& first = firstOf_[name];
    if (first.row != &row) {
      first = {&row, &dependency};
      return;
    }
    const Slots before = index_.versionsIn(name, *first.dependency->range);
    const Slots here = index_.versionsIn(name, *dependency.range);
    const bool isContradictory = !before.empty() && !here.empty() && !share(before, here);
    std::string message = subject(row) + " depends on " + quotedName(*dependency.name) +
                          " twice, " + rangeText(*first.dependency->range) + " and " +
                          rangeText(*dependency.range);
    if (isContradictory) message += ", which share no version";
    message += "; versions are chosen by the first only";
    findings_.add(
        isContradictory ? FindingCode::ContradictoryDependency : FindingCode::RepeatedDependency,
        place(row, dependency), message, {place(row, *first.dependency)});
  }

  std::string subject(const MetamodelRow& row) const {
    const auto position = static_cast<std::size_t>(&row - index_.draft().metamodels.data());
    const Slot slot = index_.slots().slotOf(position);
    return slot == nothing ? "this version" : index_.describe(slot);
  }

  Place place(const MetamodelRow& row, const DependencyRow& dependency,
              const std::string& field = {}) const {
    return index_.draft().placeOf(row, dependency, field);
  }

  const DraftIndex& index_;
  Findings& findings_;
  std::vector<First> firstOf_;  // by name
};

}  // namespace

void checkDependencies(const DraftIndex& index, Findings& findings) {
  DependencyCheck(index, findings).run();
}

}  // namespace tarn::evolution::catalogue
