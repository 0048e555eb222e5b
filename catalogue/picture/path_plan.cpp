#include "catalogue/picture/path_plan.hpp"

#include <algorithm>
#include <ostream>

#include "catalogue/model/conflicting_dependencies.hpp"
#include "catalogue/model/question_json.hpp"
#include "catalogue/picture/baseline_output.hpp"
#include "catalogue/picture/plan_json.hpp"
#include "catalogue/picture/step_json.hpp"
#include "catalogue/text/dependency_json.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

using fl::i18n::ustring_to_utf8;
using pathfinder::BaselineHop;
using pathfinder::VersionBaseline;

namespace {

/// The baselines of a selection; none if its versions cannot be linked, or if these are too many.
std::vector<VersionBaseline> baselinesOf(pathfinder::VersionRepository& repository,
                                         const Selection& selection) {
  try {
    return repository.tryCombine(selection).value_or(std::vector<VersionBaseline>());
  } catch (const ConflictingDependencies&) {
    return {};
  }
}

/// The first source that includes a target, which a path without steps stands for; nothing if none
/// is found. A path between equal selections has no steps whether these stand for anything or not.
VersionBaseline findArrived(pathfinder::VersionRepository& repository, const Question& question) {
  const auto sources = baselinesOf(repository, question.from);
  const auto targets = baselinesOf(repository, question.to);
  const auto arrived =
      std::find_if(sources.begin(), sources.end(), [&](const VersionBaseline& source) {
        return std::any_of(targets.begin(), targets.end(),
                           [&](const VersionBaseline& target) { return source.includes(target); });
      });
  return arrived == sources.end() ? VersionBaseline() : *arrived;
}

void writeTie(JsonPrinter& printer, const StepTie& tie) {
  printer.object([&] {
    printer.field("mover", ustring_to_utf8(tie.mover));
    printer.field("companion", ustring_to_utf8(tie.companion));
    printer.objectField("dependent", [&] {
      printer.field("name", ustring_to_utf8(tie.dependent.name));
      printer.field("version", textOf(tie.dependent.version));
    });
    printer.key("needs");
    writeDependency(printer, tie.requirement());
    printer.key("refused");
    if (tie.refused) {
      printer.value(textOf(*tie.refused));
    } else {
      printer.null();
    }
  });
}

void writeBundles(JsonPrinter& printer, const BaselineHop& step, const std::vector<StepTie>& ties) {
  printer.arrayField("bundles", [&] {
    for (const auto& bundle : bundlesOf(step, ties)) {
      printer.array([&] {
        for (const std::u16string& name : bundle) printer.value(ustring_to_utf8(name));
      });
    }
  });
}

}  // namespace

PathPlan makePlan(pathfinder::VersionRepository& repository, BrowsableRepository& content,
                  const Question& question, const std::vector<BaselineHop>& path) {
  PathPlan plan{question, {}, {}, path, {}, {}};
  for (const BaselineHop& step : path) plan.ties.push_back(tiesOf(repository, step));
  plan.start = path.empty() ? findArrived(repository, question) : path.front().from;
  plan.end = path.empty() ? plan.start : path.back().to;
  plan.picture = drawPath(weightsOf(repository), plan.start, path);
  addTies(path, plan.ties, plan.picture);
  addNotes(content, plan.picture);
  return plan;
}

void writeQuestionField(JsonPrinter& printer, const Question& question) {
  printer.objectField("question", [&] { writeSides(printer, question); });
}

void writeAnswerHead(JsonPrinter& printer, bool isFound, const Question& question) {
  printer.field("form", planForm);
  printer.field("found", isFound);
  writeQuestionField(printer, question);
}

void writePlanFields(JsonPrinter& printer, const PathPlan& plan) {
  writeAnswerHead(printer, true, plan.question);
  printer.field("weight", std::uint64_t{plan.picture.weight});
  if (plan.picture.leastProven)
    printer.field("leastProven", std::uint64_t{*plan.picture.leastProven});
  printer.key("start");
  writeMembers(printer, plan.start.metamodels);
  printer.key("end");
  writeMembers(printer, plan.end.metamodels);
  printer.arrayField("steps", [&] {
    for (std::size_t i = 0; i < plan.steps.size(); ++i) {
      printer.object([&] {
        writeStepFields(printer, plan.picture, plan.picture.steps[i]);
        printer.arrayField("ties", [&] {
          for (const StepTie& tie : plan.ties[i]) writeTie(printer, tie);
        });
        writeBundles(printer, plan.steps[i], plan.ties[i]);
      });
    }
  });
}

void writePlanJson(const PathPlan& plan, std::ostream& out) {
  writeDocument(out, JsonPrinter::Layout::Indented,
                [&](JsonPrinter& printer) { writePlanFields(printer, plan); });
}

}  // namespace tarn::evolution::catalogue
