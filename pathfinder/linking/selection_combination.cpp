#include "pathfinder/linking/selection_combination.hpp"

#include <algorithm>
#include <numeric>
#include <utility>

#include "messages/report_exception.hpp"
#include "pathfinder/linking/baseline_combination.hpp"
#include "pathfinder/values/error_text.hpp"

namespace tarn::evolution::pathfinder {

namespace {

resource_core::MessageArgument versionArgument(const VersionId& version) {
  if (!version.isSemVer()) return version.getText();
  return plainText(version.getSemVer());
}

}  // namespace

std::vector<VersionBaseline> SelectionCombination::combine(
    const std::unordered_map<std::u16string, VersionId>& selection) {
  Answers answers;
  answers.reserve(selection.size());
  std::size_t place = 0;
  for (const auto& [name, version] : selection) {
    const KnownMetamodel* known = find(name, version, place++);
    answers.push_back(known != nullptr ? known : &ask(name, version));
  }
  sortByName(answers);
  std::vector<Alternatives> alternatives;
  alternatives.reserve(answers.size());
  for (const std::size_t i : nameOrder_) {
    alternatives.push_back({answers[i]->name, answers[i]->linked});
  }
  last_ = std::move(answers);
  std::vector<VersionBaseline> result = combineInOrder(alternatives, Links::Closed);
  keepThoseThatMeet(Requirements::OfWhatIsHeld, lookup_, result);
  return result;
}

/// The answer for that version, if the last selection held it. Selections of one question mostly
/// have their names in the same places.
const KnownMetamodel* SelectionCombination::find(const std::u16string& name,
                                                 const VersionId& version,
                                                 std::size_t place) const {
  const KnownMetamodel* answer = nullptr;
  if (place < last_.size() && *last_[place]->name == name) {
    answer = last_[place];
  } else {
    const auto found = std::lower_bound(
        nameOrder_.begin(), nameOrder_.end(), name,
        [&](std::size_t i, const std::u16string& wanted) { return *last_[i]->name < wanted; });
    if (found == nameOrder_.end() || *last_[*found]->name != name) return nullptr;
    answer = last_[*found];
  }
  return *answer->version == version ? answer : nullptr;
}

void SelectionCombination::sortByName(const Answers& answers) {
  const bool isInPlace = std::equal(answers.begin(), answers.end(), last_.begin(), last_.end(),
                                    [](const KnownMetamodel* left, const KnownMetamodel* right) {
                                      return *left->name == *right->name;
                                    });
  if (isInPlace) return;
  nameOrder_.resize(answers.size());
  std::iota(nameOrder_.begin(), nameOrder_.end(), std::size_t{0});
  std::sort(nameOrder_.begin(), nameOrder_.end(), [&](std::size_t left, std::size_t right) {
    return *answers[left]->name < *answers[right]->name;
  });
}

const KnownMetamodel& SelectionCombination::ask(const std::u16string& name,
                                                const VersionId& version) {
  std::optional<Metamodel> metamodel = lookup_.getMetamodel(name, version);
  if (!metamodel) reportUnknownVersion(name, version);
  const auto& linked = lookup_.getLinkedMetamodels(*metamodel);
  answers_.push_back({&name, &version, *std::move(metamodel), &linked});
  return answers_.back();
}

void reportUnknownVersion(const std::u16string& name, const VersionId& version) {
  tarn::reportException(tarn_evo::messages::InvalidFamilyVersion(versionArgument(version), name));
}

std::vector<VersionBaseline> combineMetamodels(VersionLookup& lookup,
                                               const std::vector<SelectedMetamodel>& selection,
                                               Requirements asked) {
  std::vector<Alternatives> alternatives;
  alternatives.reserve(selection.size());
  for (const auto& [name, metamodel] : selection) {
    alternatives.push_back({name, &lookup.getLinkedMetamodels(*metamodel)});
  }
  std::sort(
      alternatives.begin(), alternatives.end(),
      [](const Alternatives& left, const Alternatives& right) { return *left.name < *right.name; });
  std::vector<VersionBaseline> result = combineInOrder(alternatives, Links::Closed);
  keepThoseThatMeet(asked, lookup, result);
  return result;
}

}  // namespace tarn::evolution::pathfinder
