#include "preference_option.hpp"

#include <map>
#include <stdexcept>
#include <string>

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

constexpr const char* advice = "\nor give --prefer newest or --prefer oldest";

const std::map<std::string, VersionPreference> preferences{{"newest", VersionPreference::Newest},
                                                           {"oldest", VersionPreference::Oldest}};

}  // namespace

void PreferenceOption::addTo(CLI::App& command) {
  command
      .add_option_function<std::string>(
          "--prefer", [this](const std::string& word) { preference = preferences.at(word); },
          "Start with the newest or the oldest versions of all that is needed and not named")
      ->type_name("WHICH")
      ->check(CLI::IsMember(&preferences));
}

Selection PreferenceOption::apply(BrowsableRepository& repository,
                                  const Selection& selection) const {
  if (!preference) return selection;
  return completeSelection(repository, selection, *preference).value_or(selection);
}

void expectFewBaselines(BrowsableRepository& repository, const Selection& selection,
                        std::uint64_t limit) {
  const LooseEnds ends = findLooseEnds(repository, selection, limit);
  if (!ends.isCounted) {
    throw std::runtime_error("the versions leave " + describe(ends) + advice);
  }
}

std::string hintAtLooseEnds(BrowsableRepository& repository, const Question& question) {
  constexpr std::uint64_t many = 10'000;
  std::string hint;
  for (const auto& [what, selection] :
       {std::pair("start from", &question.from), {"reach", &question.to}}) {
    const LooseEnds ends = findLooseEnds(repository, *selection, many);
    if (ends.isCounted || ends.names.empty()) continue;
    hint += "the versions to " + std::string(what) + " leave " + describe(ends) + "\n";
  }
  return hint;
}

}  // namespace evopath
