#include "catalogue/check/checks.hpp"
#include "catalogue/text/messages.hpp"

namespace tarn::evolution::catalogue {

namespace {

class SelectionCheck {
 public:
  SelectionCheck(const DraftIndex& index, LinkAnalysis& links, Findings& findings)
      : index_(index), links_(links), findings_(findings) {}

  void run(const SelectionDraft& selection) {
    if (selection.rows.empty() && selection.isComplete) {
      findings_.add(FindingCode::EmptyQuestion, selection.place, "no version is selected");
      return;
    }
    std::vector<Slot> slots;
    for (const SelectionRow& row : selection.rows) {
      const Slot slot = denoted(row);
      if (slot != nothing) slots.push_back(slot);
    }
    if (selection.isComplete && slots.size() == selection.rows.size()) {
      checkTogether(selection, slots);
    }
  }

 private:
  Slot denoted(const SelectionRow& row) {
    const NameNumber name = index_.find(row.name);
    if (name == nothing) {
      findings_.add(FindingCode::UnknownQuestionMetamodel, row.place, unknownMetamodel(row.name));
      return nothing;
    }
    const Slot slot = index_.denotedBy(name, row.version);
    if (slot == nothing && index_.names()[name].isComplete) {
      findings_.add(FindingCode::UnknownQuestionVersion, row.place,
                    unknownVersion(row.name, row.version));
    }
    return slot;
  }

  void checkTogether(const SelectionDraft& selection, const std::vector<Slot>& slots) {
    for (const Slot slot : slots) {
      using State = LinkAnalysis::State;
      const State state = links_.state(slot);
      if (state == State::Linkable || state == State::Undecided) continue;
      findings_.add(FindingCode::InconsistentQuestion, selection.place,
                    "the selection cannot be made: " + index_.describe(slot) + " cannot be linked");
      return;
    }
    LinkAnalysis::Reason reason;
    const LinkSolver::Outcome outcome = links_.combine(slots, reason);
    if (outcome == LinkSolver::Outcome::Clashing) {
      findings_.add(FindingCode::InconsistentQuestion, selection.place,
                    "the versions cannot stand together: " + explained(index_, reason));
    } else if (outcome == LinkSolver::Outcome::Undecided) {
      findings_.add(FindingCode::UndecidedLinks, selection.place,
                    "deciding whether the versions can stand together takes too many combinations");
    }
  }

  const DraftIndex& index_;
  LinkAnalysis& links_;
  Findings& findings_;
};

}  // namespace

void checkQuestion(const DraftIndex& index, LinkAnalysis& links, Findings& findings) {
  for (const auto* selection : {&index.draft().questionFrom, &index.draft().questionTo}) {
    if (*selection) SelectionCheck(index, links, findings).run(**selection);
  }
}

}  // namespace tarn::evolution::catalogue
