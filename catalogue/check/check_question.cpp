#include "catalogue/check/draft_checks.hpp"
#include "catalogue/check/finding_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

class SelectionCheck {
 public:
  SelectionCheck(const DraftIndex& index, LinkAnalysis& links, std::vector<Finding>& findings)
      : index_(index), links_(links), findings_(findings) {}

  void run(const SelectionDraft& selection) {
    if (selection.rows.empty() && selection.isComplete) {
      find(FindingCode::EmptyQuestion, selection.place, "no version is selected");
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
      find(FindingCode::UnknownQuestionMetamodel, row.place,
           "there is no metamodel " + quotedName(row.name));
      return nothing;
    }
    const Slot slot = index_.denotedBy(name, row.version);
    if (slot == nothing && index_.names()[name].isComplete) {
      find(FindingCode::UnknownQuestionVersion, row.place,
           "there is no version " + textOf(row.version) + " of metamodel " + quotedName(row.name));
    }
    return slot;
  }

  void checkTogether(const SelectionDraft& selection, const std::vector<Slot>& slots) {
    for (const Slot slot : slots) {
      using State = LinkAnalysis::State;
      const State state = links_.state(slot);
      if (state == State::Linkable || state == State::Undecided) continue;
      find(FindingCode::InconsistentQuestion, selection.place,
           "the selection cannot be made: " + index_.describe(slot) + " cannot be linked");
      return;
    }
    LinkAnalysis::Reason reason;
    const LinkSolver::Outcome outcome = links_.combine(slots, reason);
    if (outcome == LinkSolver::Outcome::Clashing) {
      find(FindingCode::InconsistentQuestion, selection.place,
           "the versions cannot stand together: " + explained(index_, reason));
    } else if (outcome == LinkSolver::Outcome::Undecided) {
      find(FindingCode::UndecidedLinks, selection.place,
           "deciding whether the versions can stand together takes too many combinations");
    }
  }

  void find(FindingCode code, const Place& place, const std::string& message) {
    findings_.push_back({code, place, message, {}});
  }

  const DraftIndex& index_;
  LinkAnalysis& links_;
  std::vector<Finding>& findings_;
};

}  // namespace

void checkQuestion(const DraftIndex& index, LinkAnalysis& links, std::vector<Finding>& findings) {
  for (const auto* selection : {&index.draft().questionFrom, &index.draft().questionTo}) {
    if (*selection) SelectionCheck(index, links, findings).run(**selection);
  }
}

}  // namespace tarn::evolution::catalogue
