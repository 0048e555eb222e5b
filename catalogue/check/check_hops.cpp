#include <map>
#include <tuple>

#include "catalogue/check/draft_checks.hpp"
#include "catalogue/check/finding_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

namespace {

class HopCheck {
 public:
  HopCheck(const DraftIndex& index, std::vector<Finding>& findings)
      : index_(index), findings_(findings) {}

  void run() {
    for (const HopRow& row : index_.draft().hops) {
      if (row.name) checkNamed(row);
    }
  }

 private:
  /// What makes two hops the same: where they are offered, and where they lead.
  using Key = std::tuple<Slot, bool, Slot>;

  void checkNamed(const HopRow& row) {
    const NameNumber name = index_.find(*row.name);
    if (name == nothing) {
      find(FindingCode::UnknownHopMetamodel, row, "name",
           "there is no metamodel " + quotedName(*row.name));
      return;
    }
    const bool hasFrom = checkEnd(row, name, row.from, "from");
    const bool hasTo = checkEnd(row, name, row.to, "to");
    if (hasFrom) checkOffered(row, name);
    if (hasFrom && hasTo) checkBetween(row, name);
  }

  /// Whether the version at one end is there.
  bool checkEnd(const HopRow& row, NameNumber name, const std::optional<VersionId>& version,
                const char* field) {
    if (!version) return false;
    if (!index_.versionsAt(name, *version).empty()) return true;
    if (index_.names()[name].isComplete) {
      find(FindingCode::UnknownHopVersion, row, field,
           "there is no version " + textOf(*version) + " of metamodel " + quotedName(*row.name));
    }
    return false;
  }

  void checkOffered(const HopRow& row, NameNumber name) {
    if (!row.from->isSemVer()) return;
    const SlotInterval denoted = index_.versionsAt(name, *row.from);
    for (Slot slot = denoted.begin; slot < denoted.end; ++slot) {
      if (index_.row(slot).version->isSemVer()) return;
    }
    find(FindingCode::UnofferedHop, row, "from",
         "only " + index_.describe(denoted.begin) + " stands for " + textOf(*row.from) +
             "; hops from there must name the text version");
  }

  void checkBetween(const HopRow& row, NameNumber name) {
    const Slot to = index_.denotedBy(name, *row.to);
    if (index_.denotedBy(name, *row.from) == to) {
      find(FindingCode::SelfHop, row, "to",
           "the hop of " + quotedName(*row.name) + " from " + textOf(*row.from) +
               " leads to where it starts");
      return;
    }
    const Slot from = index_.versionsAt(name, *row.from).begin;
    const auto [first, isNew] = hops_.try_emplace({from, row.from->isSemVer(), to}, &row);
    if (isNew) return;
    const Place before = index_.draft().placeOf(*first->second);
    find(FindingCode::DuplicateHop, row, "",
         "the hop of " + quotedName(*row.name) + " from " + textOf(*row.from) + " to " +
             textOf(*row.to) + " stands already at " + before.text);
    findings_.back().related.push_back(before);
  }

  void find(FindingCode code, const HopRow& row, const std::string& field,
            const std::string& message) {
    findings_.push_back({code, index_.draft().placeOf(row, field), message, {}});
  }

  const DraftIndex& index_;
  std::vector<Finding>& findings_;
  std::map<Key, const HopRow*> hops_;  // the first of each
};

}  // namespace

void checkHops(const DraftIndex& index, std::vector<Finding>& findings) {
  HopCheck(index, findings).run();
}

}  // namespace tarn::evolution::catalogue
