#include "condition_options.hpp"

#include <map>
#include <stdexcept>

#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/visible.hpp"
#include "catalogue/version_text.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;
using tarn::evolution::pathfinder::VersionId;
using tarn::evolution::pathfinder::VersionRepository;

namespace {

/// An argument NAME=WHAT, read with the repository at hand. Throws std::invalid_argument, which
/// names option and argument.
class ConditionArgument {
 public:
  ConditionArgument(BrowsableRepository& repository, const std::string& option,
                    const std::string& argument)
      : repository_(repository), place_(option + " " + argument + ": ") {
    const std::size_t separator = argument.find('=');
    hasWhat_ = separator != argument.npos;
    if (hasWhat_) what_ = argument.substr(separator + 1);
    name_ = attempt([&] { return parseName(argument.substr(0, separator)); });
    if (repository.listMetamodels(name_).empty()) fail("there is no such metamodel");
  }

  const std::u16string& name() const { return name_; }
  bool hasWhat() const { return hasWhat_; }

  std::vector<VersionId> versions() const {
    if (!hasWhat_) fail("must be NAME=RANGE");
    auto versions = attempt([&] { return versionsMeant(repository_, name_, what_); });
    if (versions.empty()) fail("there is no such version");
    return versions;
  }

  VersionId version() const {
    if (!hasWhat_) fail("must be NAME=VERSION");
    const auto found =
        repository_.getMetamodel(name_, attempt([&] { return parseVersion(what_); }));
    if (!found) fail("there is no such version");
    return found->version;
  }

 private:
  [[noreturn]] void fail(const std::string& reason) const {
    throw std::invalid_argument(visible(place_) + reason);
  }

  template <class Compute>
  auto attempt(const Compute& compute) const -> decltype(compute()) {
    try {
      return compute();
    } catch (const std::invalid_argument& error) {
      fail(error.what());
    }
  }

  BrowsableRepository& repository_;
  std::string place_;
  std::u16string name_;
  std::string what_;
  bool hasWhat_ = false;
};

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
  const UnknownEntries unknown = findUnknown(repository, plain);
  if (!unknown.entries.empty()) throw std::invalid_argument(describe(unknown));
  PathConditions& conditions = result.conditions;
  for (const std::string& each : avoided) {
    const ConditionArgument argument(repository, "--avoid", each);
    const auto versions = argument.versions();
    auto& all = conditions.avoided[argument.name()];
    all.insert(all.end(), versions.begin(), versions.end());
  }
  for (const std::string& each : pinned) {
    const ConditionArgument argument(repository, "--pin", each);
    if (argument.hasWhat()) {
      conditions.kept.insert_or_assign(argument.name(), argument.version());
    } else {
      conditions.held.insert(argument.name());
    }
  }
  for (const std::string& each : via) {
    const ConditionArgument argument(repository, "--via", each);
    conditions.via.emplace_back(argument.name(), argument.version());
  }
  if (!direction.empty()) conditions.direction = directions.at(direction);
  if (!isConditional && conditions.areNone()) return std::nullopt;
  return result;
}

}  // namespace evopath
