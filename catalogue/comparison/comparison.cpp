#include "catalogue/comparison/comparison.hpp"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
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
      for (const auto metamodel : catalogue->metamodels()) {
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
    const auto ofName = catalogue.index().metamodelsOf(name);
    metamodels.insert(metamodels.end(), ofName.begin(), ofName.end());
    const auto hopsOfName = catalogue.index().hopsOf(name);
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

/// Compares the answers to one question after the other, with what is linked for one kept for the
/// next. Any number of threads may do so, each with parts of its own.
class Comparer {
 public:
  Comparer(const Catalogue& former, const Catalogue& present, const ComparisonLimits& limits)
      : former_(former), present_(present), limits_(limits), needed_(former, present) {
    content_ = differenceBetween(former.content(), present.content());
    for (const auto& each : content_.versions) touched_.insert(each.any().descriptor.name);
    for (const auto& each : content_.hops) touched_.insert(each.any().name);
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

  /// None where both answer the same. Throws SearchStopped where the stop is requested.
  std::optional<AnswerDifference> compare(const Question& question,
                                          std::optional<Parts>& parts) const {
    const Names names = needed_.closureOf(question);
    const bool isTouched = std::any_of(names.begin(), names.end(), [&](const std::u16string& name) {
      return touched_.contains(name);
    });
    if (!isTouched && !isUnknown(question)) return std::nullopt;
    if (!parts || parts->names != names) parts.emplace(names, former_, present_);
    return compareAnswers(question, *parts);
  }

  /// All that differs beside the answers; links are left out where the comparison was ended.
  Comparison compareContent(bool isEnded) {
    if (!isEnded && !content_.isNone()) compareLinks();
    result_.content = std::move(content_);
    return std::move(result_);
  }

 private:
  pathfinder::SearchLimits limitsFromNow() const {
    pathfinder::SearchLimits search;
    search.stop = limits_.stop;
    search.memory = limits_.memory;
    search.deadline = limits_.deadline;
    if (!limits_.time) return search;
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::duration_cast<std::chrono::steady_clock::duration>(*limits_.time);
    search.deadline = std::min(search.deadline.value_or(end), end);
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

  std::optional<AnswerDifference> compareAnswers(const Question& question, Parts& parts) const {
    const AnswerWithPath before = parts.former.ask(question, limitsFromNow());
    const AnswerWithPath after = parts.present.ask(question, limitsFromNow());
    if (before.answer.kind == AskedAnswer::Kind::Unknown &&
        after.answer.kind == AskedAnswer::Kind::Unknown) {
      CatalogueRepository repository(present_);
      throw std::invalid_argument(describe(findUnknown(repository, question)));
    }
    const auto change = changeBetween(before.answer, after.answer);
    if (!change) return std::nullopt;
    const CatalogueContent former = parts.former.content();
    const CatalogueContent present = parts.present.content();
    AnswerDifference difference{question, *change, before.answer, after.answer, {}};
    CauseLimits cause = limits_.cause;
    cause.search.stop = limits_.stop;
    cause.search.memory = limits_.memory;
    cause.search.deadline = limits_.deadline;
    if (*change == AnswerChange::Lost || *change == AnswerChange::Dearer) {
      difference.cause =
          findCause(present, former, question, before.path, before.answer.weight, cause);
      difference.cause.through = reversed(std::move(difference.cause.through));
    } else if (*change != AnswerChange::Open) {
      difference.cause =
          findCause(former, present, question, after.path, after.answer.weight, cause);
    }
    return difference;
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
      const CatalogueMetamodel metamodel = former_.metamodels()[i];
      const auto found = present.find(keyOf(metamodel));
      if (found == present.end()) {
        if (before[i] == Linkability::Linkable && needsMissing(metamodel)) {
          result_.unlinkable.push_back(versionOf(metamodel));
        }
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

  const Catalogue& former_;
  const Catalogue& present_;
  const ComparisonLimits& limits_;
  const NeededNames needed_;
  ContentDifference content_;
  std::unordered_set<std::u16string> touched_;  // names of which something differs
  Comparison result_;
};

/// Hands questions out to threads, and puts the answers in their order.
class Questioning {
 public:
  Questioning(const Comparer& comparer, const std::vector<Question>& questions,
              const ComparisonLimits& limits)
      : comparer_(comparer), questions_(questions), limits_(limits), answers_(questions.size()) {}

  void run() {
    {
      std::vector<std::jthread> others;
      for (unsigned i = 1; i < limits_.threads; ++i) others.emplace_back([this] { work(); });
      work();
    }
    if (failure_) std::rethrow_exception(failure_);
  }

  std::size_t compared() const { return compared_; }

  std::vector<AnswerDifference> takeAnswers() {
    std::vector<AnswerDifference> result;
    for (auto& answer : answers_) {
      if (answer) result.push_back(*std::move(answer));
    }
    return result;
  }

 private:
  bool isOver() const {
    return limits_.stop.stop_requested() ||
           (limits_.deadline && std::chrono::steady_clock::now() >= *limits_.deadline);
  }

  void work() noexcept {
    std::optional<Comparer::Parts> parts;
    for (std::size_t number = next_++; number < questions_.size() && !isOver(); number = next_++) {
      try {
        auto answer = comparer_.compare(questions_[number], parts);
        const std::lock_guard lock(mutex_);
        answers_[number] = std::move(answer);
        ++compared_;
        if (limits_.progress) limits_.progress(compared_);
      } catch (const pathfinder::SearchStopped&) {
        return;
      } catch (...) {
        const std::lock_guard lock(mutex_);
        if (number < failed_) failure_ = std::current_exception();
        failed_ = std::min(failed_, number);
        next_ = questions_.size();
      }
    }
  }

  const Comparer& comparer_;
  const std::vector<Question>& questions_;
  const ComparisonLimits& limits_;
  std::atomic<std::size_t> next_ = 0;

  std::mutex mutex_;  // guards all below
  std::vector<std::optional<AnswerDifference>> answers_;
  std::size_t compared_ = 0;
  std::exception_ptr failure_;  // of the first question that has one
  std::size_t failed_ = std::numeric_limits<std::size_t>::max();
};

}  // namespace

Comparison compare(const Catalogue& former, const Catalogue& present,
                   const std::vector<Question>& questions, const ComparisonLimits& limits) {
  Comparer comparer(former, present, limits);
  Questioning questioning(comparer, questions, limits);
  questioning.run();
  const std::size_t unasked = questions.size() - questioning.compared();
  Comparison result = comparer.compareContent(unasked > 0);
  result.questions = questioning.compared();
  result.unasked = unasked;
  result.answers = questioning.takeAnswers();
  return result;
}

}  // namespace tarn::evolution::catalogue
