#include <algorithm>

#include "catalogue/check/draft_checks.hpp"
#include "catalogue/check/finding_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// The hops at one version, not counting those that lead to where they start.
struct Ends {
  bool isEntered = false;
  bool isLeft = false;
  bool isEnteredForward = false;  ///< by a hop that does not come from a newer version
  bool isLeftForward = false;     ///< by a hop that does not lead to an older version

  bool isStranded() const { return !isEntered && !isLeft; }
};

class HopGraphCheck {
 public:
  HopGraphCheck(const DraftIndex& index, std::vector<Finding>& findings)
      : index_(index), findings_(findings), ends_(index.slotCount()) {}

  void run() {
    for (const HopRow& row : index_.draft().hops) {
      if (row.name && row.from && row.to) enter(row);
    }
    for (const DraftIndex::Name& name : index_.names()) {
      if (name.isComplete && name.all.end - name.all.begin > 1) checkName(name);
    }
  }

 private:
  void enter(const HopRow& row) {
    const NameNumber name = index_.find(*row.name);
    if (name == nothing) return;
    const Slot from = index_.denotedBy(name, *row.from);
    const Slot to = index_.denotedBy(name, *row.to);
    if (from == nothing || to == nothing || from == to) return;
    ends_[from].isLeft = ends_[to].isEntered = true;
    if (isNewer(from, to)) return;
    ends_[from].isLeftForward = ends_[to].isEnteredForward = true;
  }

  /// A text version without equivalent counts as older than all others but its like.
  bool isNewer(Slot left, Slot right) const {
    if (!index_.isSemantic(left)) return false;
    if (!index_.isSemantic(right)) return true;
    return index_.semanticVersion(right) < index_.semanticVersion(left);
  }

  void checkName(const DraftIndex::Name& name) {
    const std::vector<Slot> stranded =
        versionsThat(name, [](const Ends& ends) { return ends.isStranded(); });
    if (stranded.size() == name.all.end - name.all.begin) {
      findings_.push_back(findingAt(index_, FindingCode::NoHops, {stranded.front()},
                                    "none of the " + std::to_string(stranded.size()) +
                                        " versions of " + quotedName(name.text) + " has a hop"));
      return;
    }
    find(FindingCode::StrandedVersions, name, "no hop enters or leaves ", stranded);
    find(FindingCode::UnreachedVersions, name, "no hop leads from an older version to ",
         unreached(name));
    const std::vector<Slot> heads =
        versionsThat(name, [](const Ends& ends) { return ends.isEntered && !ends.isLeftForward; });
    if (heads.size() > 1) {
      find(FindingCode::SeveralHeads, name, "no hop leads on to a newer version from any of ",
           heads);
    }
  }

  std::vector<Slot> unreached(const DraftIndex::Name& name) const {
    std::vector<Slot> result =
        versionsThat(name, [](const Ends& ends) { return ends.isLeft && !ends.isEnteredForward; });
    const Slot oldest = oldestWithHops(name);
    result.erase(std::remove(result.begin(), result.end(), oldest), result.end());
    return result;
  }

  /// Of several text versions without equivalent, the first in the file.
  Slot oldestWithHops(const DraftIndex::Name& name) const {
    Slot oldest = nothing;
    for (const Slot slot :
         versionsThat(name, [](const Ends& ends) { return !ends.isStranded(); })) {
      if (oldest == nothing || isNewer(oldest, slot)) oldest = slot;
    }
    return oldest;
  }

  template <class Holds>
  std::vector<Slot> versionsThat(const DraftIndex::Name& name, const Holds& holds) const {
    std::vector<Slot> result;
    for (Slot slot = name.all.begin; slot < name.all.end; ++slot) {
      if (holds(ends_[slot])) result.push_back(slot);
    }
    return inFileOrder(index_, result);
  }

  void find(FindingCode code, const DraftIndex::Name& name, const std::string& beginning,
            const std::vector<Slot>& slots) {
    if (slots.empty()) return;
    findings_.push_back(
        findingAt(index_, code, slots,
                  beginning + quotedName(name.text) + " " + listed(versionsOf(index_, slots))));
  }

  const DraftIndex& index_;
  std::vector<Finding>& findings_;
  std::vector<Ends> ends_;  // by slot
};

}  // namespace

void checkHopGraph(const DraftIndex& index, std::vector<Finding>& findings) {
  HopGraphCheck(index, findings).run();
}

}  // namespace tarn::evolution::catalogue
