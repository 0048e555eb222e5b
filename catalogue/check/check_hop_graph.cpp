#include <algorithm>

#include "catalogue/check/checks.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/printed_text.hpp"

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
  HopGraphCheck(const DraftIndex& index, Findings& findings)
      : index_(index), findings_(findings), ends_(index.slots().size()) {}

  void run() {
    for (const HopRow& row : index_.draft().hops) {
      if (row.name && row.from && row.to) enter(row);
    }
    for (NameNumber name = 0; name < index_.names().size(); ++name) {
      if (index_.names()[name].isComplete && all(name).size() > 1) checkName(name);
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

  /// A text version without precedence counts as older than all others but its like.
  bool isNewer(Slot left, Slot right) const {
    return index_.slots().at(right).precedence < index_.slots().at(left).precedence;
  }

  SlotInterval all(NameNumber name) const { return index_.slots().all(name); }
  std::string quoted(NameNumber name) const { return quotedName(index_.names()[name].text); }

  void checkName(NameNumber name) {
    const std::vector<Slot> stranded =
        versionsThat(name, [](const Ends& ends) { return ends.isStranded(); });
    if (stranded.size() == all(name).size()) {
      findings_.add(FindingCode::NoHops, std::vector{stranded.front()},
                    "none of the " + std::to_string(stranded.size()) + " versions of " +
                        quoted(name) + " has a hop");
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

  std::vector<Slot> unreached(NameNumber name) const {
    std::vector<Slot> result =
        versionsThat(name, [](const Ends& ends) { return ends.isLeft && !ends.isEnteredForward; });
    const Slot oldest = oldestWithHops(name);
    result.erase(std::remove(result.begin(), result.end(), oldest), result.end());
    return result;
  }

  /// Of several text versions without precedence, the first in the file.
  Slot oldestWithHops(NameNumber name) const {
    Slot oldest = nothing;
    for (const Slot slot :
         versionsThat(name, [](const Ends& ends) { return !ends.isStranded(); })) {
      if (oldest == nothing || isNewer(oldest, slot)) oldest = slot;
    }
    return oldest;
  }

  template <class Holds>
  std::vector<Slot> versionsThat(NameNumber name, const Holds& holds) const {
    std::vector<Slot> result;
    for (Slot slot = all(name).begin; slot < all(name).end; ++slot) {
      if (holds(ends_[slot])) result.push_back(slot);
    }
    return inFileOrder(index_, result);
  }

  void find(FindingCode code, NameNumber name, const std::string& beginning,
            const std::vector<Slot>& slots) {
    if (slots.empty()) return;
    findings_.add(code, slots, beginning + quoted(name) + " " + listed(versionsOf(index_, slots)));
  }

  const DraftIndex& index_;
  Findings& findings_;
  std::vector<Ends> ends_;  // by slot
};

}  // namespace

void checkHopGraph(const DraftIndex& index, Findings& findings) {
  HopGraphCheck(index, findings).run();
}

}  // namespace tarn::evolution::catalogue
