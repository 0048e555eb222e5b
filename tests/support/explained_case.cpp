#include "support/explained_case.hpp"

#include <algorithm>
#include <vector>

#include "support/random_question.hpp"
#include "support/store_folder.hpp"

namespace test {

using namespace tarn::evolution::catalogue;

std::size_t countHeld(const VersionBaseline& baseline, const Versions& versions) {
  return static_cast<std::size_t>(
      std::count_if(versions.begin(), versions.end(), [&](const auto& entry) {
        const auto held = baseline.metamodels.find(entry.first);
        return held != baseline.metamodels.end() && held->second->version == entry.second;
      }));
}

std::string questionableCase(Random& random) {
  const std::size_t names = random.upTo(3) + (random.chance(25) ? 3 : 0);
  QuestionDraft draft = QuestionDraft::either(random, names);
  std::erase_if(draft.hops, [&](const auto&) { return random.chance(5); });
  draft.from.assign(1, {});
  draft.to.assign(1, {});
  for (const auto& name : draft.names) {
    if (random.chance(90)) draft.from[0].push_back(name.letter + name.start);
    const bool isGoal = name.versions.size() == 1 || random.chance(50);
    if (!random.chance(60)) continue;
    draft.to[0].push_back(name.letter + (isGoal ? name.goal : random.oneOf(name.versions).number));
  }
  if (random.chance(50)) draft.addRequirements(random, random.chance(40) ? 15 : 50);
  return draft.text(random);
}

ExplainedCase::ExplainedCase(const QuestionText& text)
    : question{selection(text.from), selection(text.to)} {
  repository =
      std::make_unique<CatalogueRepository>(Catalogue(contentOf(TestRepository(text.catalogue))));
  for (const auto& [name, version] : question.to) {
    goals.emplace(name, repository->getMetamodel(name, version)->version);
  }
}

std::size_t ExplainedCase::hopsLeft(const VersionBaseline& baseline, const std::u16string& name,
                                    VersionRepository::Direction direction) const {
  const std::size_t unreachable = repository->listMetamodels(name).size();
  const auto held = baseline.metamodels.find(name);
  if (held == baseline.metamodels.end()) return unreachable;
  std::vector<Metamodel> met{*repository->getMetamodel(name, held->second->version)};
  for (std::size_t hops = 0, begin = 0; begin < met.size(); ++hops) {
    const std::size_t end = met.size();
    for (; begin < end; ++begin) {
      if (met[begin].version == goals.at(name)) return hops;
      for (const Hop& hop : hopsFrom(*repository, met[begin])) {
        const Metamodel to = *repository->getMetamodel(name, hop.to);
        if (VersionRepository::areDirectionsInconsistent(
                direction, repository->getDirection(met[begin], to))) {
          continue;
        }
        if (std::find(met.begin(), met.end(), to) == met.end()) met.push_back(to);
      }
    }
  }
  return unreachable;
}

std::pair<std::size_t, std::size_t> ExplainedCase::remoteness(
    const VersionBaseline& baseline, VersionRepository::Direction direction) const {
  std::size_t hops = 0;
  for (const auto& [name, version] : goals) hops += hopsLeft(baseline, name, direction);
  return {goals.size() - countHeld(baseline, goals), hops};
}

VersionBaseline ExplainedCase::someTarget() {
  const auto targets = repository->combine(question.to);
  if (!targets.empty()) return targets[0];
  VersionBaseline result;
  for (const auto& [name, version] : goals) {
    result.metamodels.emplace(name, repository->getLinkedMetamodels(name, version)[0]);
  }
  return result;
}

}  // namespace test
