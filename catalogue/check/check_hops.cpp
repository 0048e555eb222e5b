#include <map>
#include <tuple>

#include "catalogue/check/checks.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

namespace {

class HopCheck {
 public:
  HopCheck(const DraftIndex& index, Findings& findings) : index_(index), findings_(findings) {}

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
      find(FindingCode::UnknownHopMetamodel, row, "name", unknownMetamodel(*row.name));
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
      find(FindingCode::UnknownHopVersion, row, field, unknownVersion(*row.name, *version));
    }
    return false;
  }

  void checkOffered(const HopRow& row, NameNumber name) {
    if (!row.from->isSemVer()) return;
    const SlotInterval denoted = index_.versionsAt(name, *row.from);
    for (Slot slot = denoted.begin; slot < denoted.end; ++slot) {
      if (index_.version(slot).isSemVer()) return;
    }
    find(FindingCode::UnofferedHop, row, "from",
         "only " + index_.describe(denoted.begin) + " stands for " + textOf(*row.from) +
             "; hops from there must name the text version");
  }

  void checkBetween(const HopRow& row, NameNumber name) {
    const Slot to = index_.denotedBy(name, *row.to);
    const std::string hop = "the hop of " + quotedName(*row.name) + " from " + textOf(*row.from);
    if (index_.denotedBy(name, *row.from) == to) {
      find(FindingCode::SelfHop, row, "to", hop + " leads to where it starts");
      return;
    }
    const Slot from = index_.versionsAt(name, *row.from).begin;
    const auto [first, isNew] = hops_.try_emplace({from, row.from->isSemVer(), to}, &row);
    if (isNew) return;
    const Place before = index_.draft().placeOf(*first->second);
    find(FindingCode::DuplicateHop, row, "",
         standsAlready(hop + " to " + textOf(*row.to), "at " + before.text), {before});
  }

  void find(FindingCode code, const HopRow& row, const std::string& field,
            const std::string& message, const std::vector<Place>& related = {}) {
    findings_.add(code, index_.draft().placeOf(row, field), message, related);
  }

  const DraftIndex& index_;
  Findings& findings_;
  std::map<Key, const HopRow*> hops_;  // the first of each
};

}  // namespace

void checkHops(const DraftIndex& index, Findings& findings) {
  HopCheck(index, findings).run();
}

}  // namespace tarn::evolution::catalogue
