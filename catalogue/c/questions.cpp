#include "catalogue/c/arguments.hpp"
#include "catalogue/c/boundary.hpp"
#include "catalogue/c/catalogue_handle.hpp"
#include "catalogue/c/steps_handle.hpp"
#include "catalogue/check/check.hpp"
#include "catalogue/check/findings_json.hpp"
#include "catalogue/check/open_draft.hpp"
#include "catalogue/explanation/explanation.hpp"
#include "catalogue/explanation/explanation_json.hpp"
#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/text/printed_text.hpp"

using namespace tarn::evolution::catalogue;
using namespace tarn::evolution::catalogue::c;
namespace pathfinder = tarn::evolution::pathfinder;
using pathfinder::VersionRepository;

namespace {

VersionRepository::Direction readDirection(int32_t direction) {
  switch (direction) {
    case TARN_EVOLUTION_FORWARD:
      return VersionRepository::Forward;
    case TARN_EVOLUTION_BACKWARD:
      return VersionRepository::Backward;
    case TARN_EVOLUTION_ANY_DIRECTION:
      return VersionRepository::Unknown;
    default:
      throw std::invalid_argument("direction: " + std::to_string(direction) + " is none");
  }
}

int32_t directionOf(VersionRepository::Direction direction) {
  if (direction == VersionRepository::Forward) return TARN_EVOLUTION_FORWARD;
  if (direction == VersionRepository::Backward) return TARN_EVOLUTION_BACKWARD;
  return TARN_EVOLUTION_ANY_DIRECTION;
}

Severity readSeverity(int32_t severity) {
  switch (severity) {
    case TARN_EVOLUTION_NOTE:
      return Severity::Note;
    case TARN_EVOLUTION_WARNING:
      return Severity::Warning;
    case TARN_EVOLUTION_ERROR:
      return Severity::Error;
    default:
      throw std::invalid_argument("least: " + std::to_string(severity) + " is no severity");
  }
}

using WriteExplanation = void (*)(const Explanation& explanation, const StepWeights& weights,
                                  std::ostream& out);

WriteExplanation writerOf(tarn_evolution_format format) {
  if (format == TARN_EVOLUTION_JSON) return writeExplanationJson;
  if (format == TARN_EVOLUTION_TEXT) return writeExplanationText;
  throw std::invalid_argument("format: " + std::to_string(format) +
                              " is none that shows explanations");
}

}  // namespace

tarn_evolution_status tarn_evolution_find_path(tarn_evolution_catalogue* catalogue,
                                               const tarn_evolution_named_version* from,
                                               size_t from_count,
                                               const tarn_evolution_named_version* to,
                                               size_t to_count, const tarn_evolution_limits* limits,
                                               tarn_evolution_steps** path, char** message) {
  return answered(path, "path", message, [&] {
    BrowsableRepository& repository = *required(catalogue, "catalogue").repository;
    const Question question{.from = readSelection(from, from_count, "from"),
                            .to = readSelection(to, to_count, "to")};
    const auto planOf = [&](const std::vector<pathfinder::BaselineHop>& steps) {
      return makePlan(repository, repository, question, steps);
    };
    pathfinder::SearchLimits within = readLimits(limits);
    if (const auto tell = readBetterPath(limits)) {
      within.betterPath = [=](const std::vector<pathfinder::BaselineHop>& better) {
        tell(tarn_evolution_steps(planOf(better)));
      };
    }
    const auto found = repository.findPath(question.from, question.to, within);
    if (!found) return TARN_EVOLUTION_NO_PATH;
    *path = new tarn_evolution_steps(planOf(*found));
    return TARN_EVOLUTION_OK;
  });
}

tarn_evolution_status tarn_evolution_find_direction(
    tarn_evolution_catalogue* catalogue, const tarn_evolution_named_version* from,
    size_t from_count, const tarn_evolution_named_version* to, size_t to_count,
    const tarn_evolution_limits* limits, int32_t* direction, char** message) {
  return answered(direction, "direction", message, [&] {
    BrowsableRepository& repository = *required(catalogue, "catalogue").repository;
    const auto found =
        repository.findDirection(readSelection(from, from_count, "from"),
                                 readSelection(to, to_count, "to"), readLimits(limits));
    if (!found) return TARN_EVOLUTION_NO_PATH;
    *direction = directionOf(*found);
    return TARN_EVOLUTION_OK;
  });
}

tarn_evolution_status tarn_evolution_find_steps(tarn_evolution_catalogue* catalogue,
                                                const tarn_evolution_named_version* at,
                                                size_t at_count, int32_t direction, uint64_t most,
                                                tarn_evolution_steps** steps, char** message) {
  return answered(steps, "steps", message, [&] {
    BrowsableRepository& repository = *required(catalogue, "catalogue").repository;
    auto listings =
        listSteps(repository, readSelection(at, at_count, "at"), readDirection(direction), most);
    if (listings.empty()) return TARN_EVOLUTION_NO_PATH;
    *steps = new tarn_evolution_steps(std::move(listings));
    return TARN_EVOLUTION_OK;
  });
}

tarn_evolution_status tarn_evolution_explain(
    tarn_evolution_catalogue* catalogue, const tarn_evolution_named_version* from,
    size_t from_count, const tarn_evolution_named_version* to, size_t to_count, uint64_t budget,
    const tarn_evolution_limits* limits, tarn_evolution_format format, char** explanation,
    char** message) {
  return answered(explanation, "explanation", message, [&] {
    BrowsableRepository& repository = *required(catalogue, "catalogue").repository;
    const auto write = writerOf(format);
    const Question question{.from = readSelection(from, from_count, "from"),
                            .to = readSelection(to, to_count, "to")};
    const Explanation found = explain(repository, question, budget, readLimits(limits));
    *explanation =
        giveText(written([&](std::ostream& out) { write(found, weightsOf(repository), out); }));
    return TARN_EVOLUTION_OK;
  });
}

tarn_evolution_status tarn_evolution_check(const char* file, int32_t least, char** findings,
                                           char** message) {
  return answered(findings, "findings", message, [&] {
    const char* const name = &required(file, "file");
    const Severity severity = readSeverity(least);
    const std::vector<Finding> found = check(readDraft(name));
    *findings = giveText(
        written([&](std::ostream& out) { writeFindingsJson(name, found, severity, out); }));
    return TARN_EVOLUTION_OK;
  });
}
