#include "condition_options.hpp"

#include <map>
#include <optional>
#include <stdexcept>

#include "catalogue/conditions/condition_texts.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/visible.hpp"
#include "catalogue/version_text.hpp"
#include "known_versions.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;
using tarn::evolution::pathfinder::VersionId;
using tarn::evolution::pathfinder::VersionRepository;

namespace {

/// Reads an argument NAME or NAME=WHAT and hands both to `add`. What that throws names option and
/// argument.
template <class Add>
void readArgument(const std::string& option, const std::string& argument, const Add& add) {
  try {
    const std::size_t separator = argument.find('=');
    const std::u16string name = parseName(argument.substr(0, separator));
    if (separator == argument.npos) {
      add(name, std::optional<std::string>());
    } else {
      add(name, std::optional(argument.substr(separator + 1)));
    }
  } catch (const std::invalid_argument& error) {
    throw std::invalid_argument(visible(option + " " + argument + ": ") + error.what());
  }
}

const std::string& expected(const std::optional<std::string>& what, const char* form) {
  if (!what) throw std::invalid_argument(form);
  return *what;
}

/// Several versions of one name, if that is what the text of a target means.
std::optional<PathGoal> findWideGoal(BrowsableRepository& repository, const std::u16string& name,
                                     const VersionId& version) {
  if (repository.getMetamodel(name, version)) return std::nullopt;
  const std::string text = textOf(version);
  if (text == "newest") return PathGoal{name, newestFirst(repository, name), true};
  try {
    return PathGoal{name, versionsMeant(repository, name, text)};
  } catch (const std::invalid_argument&) {
    return std::nullopt;
  }
}

const std::map<std::string, VersionRepository::Direction> directions{
    {"any", VersionRepository::Unknown},
    {"forward", VersionRepository::Forward},
    {"backward", VersionRepository::Backward}};

}  // namespace

void ConditionOptions::addTo(CLI::App& command) {
  command.add_option("--avoid", avoided, "Versions that the path must not pass; repeatable")
      ->type_name("NAME=RANGE");
  command
      .add_option("--pin", pinned,
                  "A metamodel that must not move, or a version that must not be left once it is "
                  "reached; repeatable")
      ->type_name("NAME[=VERSION]");
  command.add_option("--via", via, "A version that the path must pass; repeatable")
      ->type_name("NAME=VERSION");
  command
      .add_option("--direction", direction,
                  "Which hops may be taken; otherwise those that go as the question goes")
      ->type_name("DIRECTION")
      ->check(CLI::IsMember({"any", "forward", "backward"}));
  command
      .add_option("--alternatives", alternatives,
                  "Find up to so many paths, each of which does without a version of every one "
                  "before")
      ->type_name("NUMBER")
      ->check(CLI::Range(std::size_t{1}, std::size_t{1000}));
}

std::optional<ConditionalQuestion> ConditionOptions::resolve(BrowsableRepository& repository,
                                                             const Question& question) const {
  ConditionalQuestion result{question.from, {}, {}};
  bool isConditional = alternatives > 1;
  Question plain{question.from, {}};
  for (const auto& [name, version] : std::map(question.to.begin(), question.to.end())) {
    auto goal = findWideGoal(repository, name, version);
    const bool isWide = goal && !goal->versions.empty();
    isConditional = isConditional || isWide;
    if (!isWide) plain.to.emplace(name, version);
    result.goals.push_back(isWide ? *std::move(goal) : PathGoal{name, {version}});
  }
  expectKnown(repository, plain);
  PathConditions& conditions = result.conditions;
  for (const std::string& each : avoided) {
    readArgument("--avoid", each, [&](const auto& name, const auto& range) {
      addAvoided(repository, name, expected(range, "must be NAME=RANGE"), conditions);
    });
  }
  for (const std::string& each : pinned) {
    readArgument("--pin", each, [&](const auto& name, const auto& version) {
      addPinned(repository, name, version, conditions);
    });
  }
  for (const std::string& each : via) {
    readArgument("--via", each, [&](const auto& name, const auto& version) {
      addVia(repository, name, expected(version, "must be NAME=VERSION"), conditions);
    });
  }
  if (!direction.empty()) conditions.direction = directions.at(direction);
  if (!isConditional && conditions.areNone()) return std::nullopt;
  return result;
}

}  // namespace evopath
