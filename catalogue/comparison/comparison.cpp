#include "catalogue/comparison/comparison.hpp"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/check/linkable_versions.hpp"
#include "catalogue/comparison/asked_catalogue.hpp"
#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/explanation/selection_lookup.hpp"
#include "catalogue/model/row_key.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

namespace {

using Names = std::set<std::u16string>;

/// The names that metamodels depend on, in either of two catalogues.
class NeededNames {
 public:
  NeededNames(const Catalogue& former, const Catalogue& present) {
    for (const Catalogue* catalogue : {&former, &present}) {
      for (const auto& metamodel : catalogue->metamodels()) {
        Names& needed = needed_[metamodel.descriptor.name];
        for (const auto& each : metamodel.descriptor.dependencies) needed.insert(each.name);
        for (const auto& each : metamodel.requirements) needed.insert(each.needed.name);
      }
    }
  }

  /// Those that a question names, and all that these need.
  Names closureOf(const Question& question) const {
    std::vector<std::u16string> left;
    for (const Selection* selection : {&question.from, &question.to}) {
      for (const auto& [name, version] : *selection) left.push_back(name);
    }
    Names met;
    while (!left.empty()) {
      const std::u16string name = left.back();
      left.pop_back();
      const auto needed = needed_.find(name);
      if (!met.insert(name).second || needed == needed_.end()) continue;
      left.insert(left.end(), needed->second.begin(), needed->second.end());
    }
    return met;
  }

 private:
  std::unordered_map<std::u16string, Names> needed_;
};

/// The part of a catalogue that is about some names, which need no others.
CatalogueContent partOf(const Catalogue& catalogue, const Names& names) {
  CatalogueIndex::Positions metamodels;
  CatalogueIndex::Positions hops;
  for (const std::u16string& name : names) {
    const auto& ofName = catalogue.index().metamodelsOf(name);
    metamodels.insert(metamodels.end(), ofName.begin(), ofName.end());
    const auto& hopsOfName = catalogue.index().hopsOf(name);
    hops.insert(hops.end(), hopsOfName.begin(), hopsOfName.end());
  }
  std::sort(metamodels.begin(), metamodels.end());
  std::sort(hops.begin(), hops.end());
  CatalogueContent part;
  for (const auto position : metamodels) {
    part.metamodels.push_back(catalogue.metamodels()[position]);
  }
  for (const auto position : hops) part.hops.push_back(catalogue.hops()[position]);
  return part;
}

std::optional<AnswerChange> changeBetween(const AskedAnswer& former, const AskedAnswer& present) {
  using Kind = AskedAnswer::Kind;
  if (former.kind == Kind::Open || present.kind == Kind::Open) return AnswerChange::Open;
  if (former.isFound() != present.isFound()) {
    return former.isFound() ? AnswerChange::Lost : AnswerChange::Gained;
  }
  if (!former.isFound() || former.weight == present.weight) return std::nullopt;
  return former.weight < present.weight ? AnswerChange::Dearer : AnswerChange::Cheaper;
}

/// Turns differences round.
ContentDifference reversed(ContentDifference difference) {
  for (auto& each : difference.versions) std::swap(each.former, each.present);
  for (auto& each : difference.hops) std::swap(each.former, each.present);
  return difference;
}

class Comparer {
 public:
  Comparer(const Catalogue& former, const Catalogue& present, const ComparisonLimits& limits)
      : former_(former), present_(present), limits_(limits), needed_(former, present) {
    result_.content = differenceBetween(former.content(), present.content());
    for (const auto& each : result_.content.versions) touched_.insert(each.any().descriptor.name);
    for (const auto& each : result_.content.hops) touched_.insert(each.any().name);
  }

  void compare(const Question& question) {
    const Names names = needed_.closureOf(question);
    const bool isTouched = std::any_of(names.begin(), names.end(), [&](const std::u16string& name) {
      return touched_.contains(name);
    });
    if (isTouched || isUnknown(question)) compareAnswers(question, names);
    ++result_.questions;
  }

  Comparison endEarly(std::size_t unasked) {
    result_.unasked = unasked;
    return std::move(result_);
  }

  Comparison finish() {
    if (!result_.content.isNone()) compareLinks();
    return std::move(result_);
  }

 private:
  pathfinder::SearchLimits limitsFromNow() const {
    pathfinder::SearchLimits search;
    search.stop = limits_.stop;
    search.memory = limits_.memory;
    if (limits_.time) {
      search.deadline =
          std::chrono::steady_clock::now() +
          std::chrono::duration_cast<std::chrono::steady_clock::duration>(*limits_.time);
    }
    return search;
  }

  bool isUnknown(const Question& question) const {
    for (const Selection* selection : {&question.from, &question.to}) {
      for (const auto& [name, version] : *selection) {
        if (!former_.index().hasMetamodel(name)) return true;
        const VersionId meant = former_.index().scale(name).meant(version);
        if (former_.index().metamodelsAt(name, meant).empty()) return true;
      }
    }
    return false;
  }

  void compareAnswers(const Question& question, const Names& names) {
    if (!parts_ || parts_->names != names) parts_.emplace(names, former_, present_);
    const AnswerWithPath before = parts_->former.ask(question, limitsFromNow());
    const AnswerWithPath after = parts_->present.ask(question, limitsFromNow());
    if (before.answer.kind == AskedAnswer::Kind::Unknown &&
        after.answer.kind == AskedAnswer::Kind::Unknown) {
      CatalogueRepository repository(present_);
      throw std::invalid_argument(describe(findUnknown(repository, question)));
    }
    const auto change = changeBetween(before.answer, after.answer);
    if (!change) return;
    const CatalogueContent& former = parts_->former.content();
    const CatalogueContent& present = parts_->present.content();
    AnswerDifference difference{question, *change, before.answer, after.answer, {}};
    CauseLimits cause = limits_.cause;
    cause.search.stop = limits_.stop;
    cause.search.memory = limits_.memory;
    if (*change == AnswerChange::Lost || *change == AnswerChange::Dearer) {
      difference.cause =
          findCause(present, former, question, before.path, before.answer.weight, cause);
      difference.cause.through = reversed(std::move(difference.cause.through));
    } else if (*change != AnswerChange::Open) {
      difference.cause =
          findCause(former, present, question, after.path, after.answer.weight, cause);
    }
    result_.answers.push_back(std::move(difference));
  }

  bool needsMissing(const CatalogueMetamodel& metamodel) const {
    const auto& dependencies = metamodel.descriptor.dependencies;
    return std::any_of(dependencies.begin(), dependencies.end(),
                       [&](const auto& each) { return !present_.index().hasMetamodel(each.name); });
  }

  static NamedVersion versionOf(const CatalogueMetamodel& metamodel) {
    return {metamodel.descriptor.name, metamodel.descriptor.version};
  }

  void compareLinks() {
    const auto before = linkabilitiesOf(former_.content());
    const auto after = linkabilitiesOf(present_.content());
    std::unordered_map<std::u16string, Linkability> present;
    for (std::size_t i = 0; i < after.size(); ++i) {
      present.emplace(keyOf(present_.metamodels()[i]), after[i]);
    }
    for (std::size_t i = 0; i < before.size(); ++i) {
      const CatalogueMetamodel& metamodel = former_.metamodels()[i];
      const auto found = present.find(keyOf(metamodel));
      if (found == present.end()) {
        if (needsMissing(metamodel)) result_.unlinkable.push_back(versionOf(metamodel));
        continue;
      }
      const bool isUndecided =
          before[i] == Linkability::Undecided || found->second == Linkability::Undecided;
      if (isUndecided) ++result_.undecided;
      if (before[i] == Linkability::Linkable && found->second == Linkability::Unlinkable) {
        result_.unlinkable.push_back(versionOf(metamodel));
      }
    }
  }

  /// What both hold of some names: questions about the same ones often follow one another.
  struct Parts {
    Parts(const Names& about, const Catalogue& formerOne, const Catalogue& presentOne)
        : names(about),
          former(Catalogue(partOf(formerOne, about))),
          present(Catalogue(partOf(presentOne, about))) {}

    const Names names;
    AskedCatalogue former;
    AskedCatalogue present;
  };

  const Catalogue& former_;
  const Catalogue& present_;
  const ComparisonLimits& limits_;
  const NeededNames needed_;
  std::unordered_set<std::u16string> touched_;  // names of which something differs
  std::optional<Parts> parts_;
  Comparison result_;
};

}  // namespace

Comparison compare(const Catalogue& former, const Catalogue& present,
                   const std::vector<Question>& questions, const ComparisonLimits& limits) {
  Comparer comparer(former, present, limits);
  for (std::size_t i = 0; i < questions.size(); ++i) {
    try {
      comparer.compare(questions[i]);
    } catch (const pathfinder::SearchStopped&) {
      return comparer.endEarly(questions.size() - i);
    }
  }
  return comparer.finish();
}

}  // namespace tarn::evolution::catalogue
