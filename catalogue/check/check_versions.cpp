#include "catalogue/check/checks.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// Checks the versions of one metamodel.
class VersionCheck {
 public:
  VersionCheck(const DraftIndex& index, NameNumber name, Findings& findings)
      : index_(index),
        name_(name),
        all_(index.slots().all(name)),
        ordered_(index.slots().ordered(name)),
        findings_(findings) {}

  void run() {
    for (Slot slot = ordered_.begin; slot < ordered_.end;) {
      const SlotInterval same = index_.slots().at(name_, *index_.slots().at(slot).precedence);
      checkSame(same);
      slot = same.end;
    }
    for (Slot slot = all_.begin; slot < all_.end; ++slot) checkText(slot);
    checkMissing();
  }

 private:
  bool isText(Slot slot) const { return !index_.version(slot).isSemVer(); }

  Place equivalentPlace(Slot slot) const {
    return index_.draft().placeOf(index_.row(slot), "semver");
  }

  /// Versions of one precedence.
  void checkSame(SlotInterval same) {
    Slot carrier = nothing;
    Slot holder = nothing;
    for (Slot slot = same.begin; slot < same.end; ++slot) {
      if (!index_.slots().at(slot).isSemantic) break;
      Slot& first = isText(slot) ? holder : carrier;
      if (first == nothing) {
        first = slot;
      } else if (!isText(slot)) {
        findDuplicate(slot, first);
      } else {
        findings_.add(FindingCode::DuplicateEquivalent, equivalentPlace(slot),
                      sharedEquivalent(*index_.row(slot).equivalent, index_.describe(first),
                                       "at " + index_.placeOf(first).text),
                      {index_.placeOf(first)});
      }
    }
    if (carrier == nothing || holder == nothing) return;
    findings_.add(FindingCode::AmbiguousEquivalent, equivalentPlace(holder),
                  index_.describe(holder) + " stands for " + textOf(index_.version(carrier)) +
                      ", which is a version of its own; ranges admit both or neither",
                  {index_.placeOf(carrier)});
  }

  void checkText(Slot slot) {
    if (!isText(slot)) return;
    const Slot first = index_.versionsAt(name_, index_.version(slot)).begin;
    if (first != slot) findDuplicate(slot, first);
  }

  void findDuplicate(Slot slot, Slot first) {
    findings_.add(FindingCode::DuplicateVersion, index_.placeOf(slot),
                  standsAlready(index_.describe(slot), "at " + index_.placeOf(first).text),
                  {index_.placeOf(first)});
  }

  void checkMissing() {
    if (ordered_.empty() || ordered_.end == all_.end) return;
    std::vector<Slot> texts;
    for (Slot slot = ordered_.end; slot < all_.end; ++slot) texts.push_back(slot);
    texts = inFileOrder(index_, texts);
    findings_.add(FindingCode::MissingEquivalent, texts,
                  "no range of semantic versions admits " + quotedName(index_.names()[name_].text) +
                      " " + listed(versionsOf(index_, texts)));
  }

  const DraftIndex& index_;
  const NameNumber name_;
  const SlotInterval all_;
  const SlotInterval ordered_;
  Findings& findings_;
};

}  // namespace

void checkVersions(const DraftIndex& index, Findings& findings) {
  for (NameNumber name = 0; name < index.names().size(); ++name) {
    VersionCheck(index, name, findings).run();
  }
}

}  // namespace tarn::evolution::catalogue
