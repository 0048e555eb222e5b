#include "catalogue/check/draft_checks.hpp"
#include "catalogue/check/finding_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

namespace {

/// Checks the versions of one metamodel.
class VersionCheck {
 public:
  VersionCheck(const DraftIndex& index, NameNumber name, std::vector<Finding>& findings)
      : index_(index), name_(index.names()[name]), number_(name), findings_(findings) {}

  void run() {
    for (Slot slot = name_.all.begin; slot < name_.semanticEnd;) {
      const SlotInterval same = index_.versionsAt(number_, index_.semanticVersion(slot));
      checkSame(same);
      slot = same.end;
    }
    for (Slot slot = name_.all.begin; slot < name_.all.end; ++slot) checkText(slot);
    checkMissing();
  }

 private:
  const VersionId& version(Slot slot) const { return *index_.row(slot).version; }
  Place place(Slot slot) const { return index_.draft().placeOf(index_.row(slot)); }

  /// Versions whose semantic versions or equivalents are the same.
  void checkSame(SlotInterval same) {
    Slot carrier = nothing;
    Slot holder = nothing;
    for (Slot slot = same.begin; slot < same.end; ++slot) {
      const bool isCarrier = version(slot).isSemVer();
      Slot& first = isCarrier ? carrier : holder;
      if (first == nothing) {
        first = slot;
      } else if (isCarrier) {
        findDuplicate(slot, first);
      } else {
        findings_.push_back({FindingCode::DuplicateEquivalent,
                             index_.draft().placeOf(index_.row(slot), "semver"),
                             textOf(index_.semanticVersion(slot)) +
                                 " is already the equivalent of " + index_.describe(first) +
                                 " at " + place(first).text,
                             {place(first)}});
      }
    }
    if (carrier == nothing || holder == nothing) return;
    findings_.push_back({FindingCode::AmbiguousEquivalent,
                         index_.draft().placeOf(index_.row(holder), "semver"),
                         index_.describe(holder) + " stands for " + textOf(version(carrier)) +
                             ", which is a version of its own; asking for either gives " +
                             index_.describe(same.begin),
                         {place(carrier)}});
  }

  void checkText(Slot slot) {
    if (version(slot).isSemVer()) return;
    const Slot first = index_.versionsAt(number_, version(slot)).begin;
    if (first != slot) findDuplicate(slot, first);
  }

  void findDuplicate(Slot slot, Slot first) {
    findings_.push_back({FindingCode::DuplicateVersion,
                         place(slot),
                         index_.describe(slot) + " stands already at " + place(first).text,
                         {place(first)}});
  }

  void checkMissing() {
    if (name_.semanticEnd == name_.all.begin || name_.semanticEnd == name_.all.end) return;
    std::vector<Slot> texts;
    for (Slot slot = name_.semanticEnd; slot < name_.all.end; ++slot) texts.push_back(slot);
    texts = inFileOrder(index_, texts);
    findings_.push_back(findingAt(index_, FindingCode::MissingEquivalent, texts,
                                  "no range of semantic versions admits " + quotedName(name_.text) +
                                      " " + listed(versionsOf(index_, texts))));
  }

  const DraftIndex& index_;
  const DraftIndex::Name& name_;
  NameNumber number_;
  std::vector<Finding>& findings_;
};

}  // namespace

void checkVersions(const DraftIndex& index, std::vector<Finding>& findings) {
  for (NameNumber name = 0; name < index.names().size(); ++name) {
    VersionCheck(index, name, findings).run();
  }
}

}  // namespace tarn::evolution::catalogue
