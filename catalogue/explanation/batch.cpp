#include "catalogue/explanation/batch.hpp"

#include <condition_variable>
#include <exception>
#include <istream>
#include <map>
#include <mutex>
#include <new>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/explanation/linkable_repository.hpp"
#include "catalogue/explanation/selection_lookup.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"
#include "catalogue/picture/plan_json.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/visible.hpp"
#include "pathfinder/search_limits.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::SearchLimits;
using pathfinder::SearchStopped;

namespace {

/// One thread's way of asking, with linked metamodels and found paths of its own: those that others
/// have found must not answer.
class BatchAsker {
 public:
  BatchAsker(BrowsableRepository& content, const BatchLimits& limits)
      : content_(content), limits_(limits) {}

  /// The answer's line; none when the batch was stopped meanwhile.
  std::optional<std::string> answer(const BatchQuestion& asked, BatchCounts& counts) {
    try {
      return answerTo(asked, counts);
    } catch (const std::bad_alloc&) {
      return errorOf(asked, "out of memory", counts);
    } catch (const std::exception& error) {
      return errorOf(asked, error.what(), counts);
    }
  }

 private:
  static constexpr std::size_t questionsOfOne = 256;  // before what it has linked is dropped

  /// An object with the line and what `writeFields` writes.
  template <class WriteFields>
  static std::string lineOf(const BatchQuestion& asked, const WriteFields& writeFields) {
    return written([&](std::ostream& out) {
      writeDocument(out, JsonPrinter::Layout::Line, [&](JsonPrinter& printer) {
        printer.field("line", asked.line);
        writeFields(printer);
      });
    });
  }

  static std::string errorOf(const BatchQuestion& asked, const std::string& reason,
                             BatchCounts& counts) {
    ++counts.failed;
    if (!counts.firstFailure) counts.firstFailure = {asked.line, reason};
    return lineOf(asked, [&](JsonPrinter& printer) {
      printer.field("form", planForm);
      printer.key("error");
      printer.anyText(reason);
    });
  }

  SearchLimits limitsFromNow() const {
    SearchLimits result;
    result.stop = limits_.stop;
    result.memory = limits_.memory;
    if (limits_.time) {
      result.deadline =
          std::chrono::steady_clock::now() +
          std::chrono::duration_cast<std::chrono::steady_clock::duration>(*limits_.time);
    }
    return result;
  }

  LinkableRepository& freshRepository() {
    if (!repository_ || asked_ == questionsOfOne) {
      repository_.emplace(content_);
      asked_ = 0;
    }
    ++asked_;
    repository_->invalidatePathfindingCache();
    return *repository_;
  }

  std::optional<std::string> answerTo(const BatchQuestion& asked, BatchCounts& counts) {
    const Question question = readQuestion(asked);
    const UnknownEntries unknown = findUnknown(content_, question);
    if (!unknown.entries.empty()) throw std::invalid_argument(describe(unknown));
    LinkableRepository& repository = freshRepository();
    try {
      const auto path = repository.findPath(question.from, question.to, limitsFromNow());
      const std::string line = path ? planOf(asked, makePlan(repository, content_, question, *path))
                                    : lineOf(asked, [&](JsonPrinter& printer) {
                                        writeAnswerHead(printer, false, question);
                                      });
      ++(path ? counts.found : counts.absent);
      return line;
    } catch (const SearchStopped& stopped) {
      if (stopped.reason() == SearchStopped::Reason::StopRequested) return std::nullopt;
      ++counts.open;
      return openOf(asked, question, stopped);
    } catch (const ConflictingDependencies&) {
      return errorOf(asked, describeUnlinkable(question), counts);
    }
  }

  /// Names what the path finder has stumbled over.
  std::string describeUnlinkable(const Question& question) {
    LinkableRepository repository(content_);
    for (const Selection* side : {&question.from, &question.to}) {
      for (const auto& [name, version] : std::map(side->begin(), side->end())) {
        const auto selected = repository.getMetamodel(name, version);
        if (selected && repository.tryLink(*selected) == nullptr) {
          return visible(name) + " " + visible(version) + " cannot be linked";
        }
      }
    }
    repository.hideUnlinkable();
    try {
      repository.findPath(question.from, question.to, limitsFromNow());
    } catch (const SearchStopped&) {  // after what it has met
    }
    std::vector<std::string> hidden;
    for (const auto& metamodel : repository.hidden()) {
      hidden.push_back(visible(metamodel.name) + " " + visible(metamodel.version));
    }
    if (hidden.empty()) return "hops lead to a version that cannot be linked";
    return "hops lead to " + listed(hidden) + ", which cannot be linked";
  }

  std::string planOf(const BatchQuestion& asked, const PathPlan& plan) const {
    return lineOf(asked, [&](JsonPrinter& printer) { writePlanFields(printer, plan); });
  }

  static std::string openOf(const BatchQuestion& asked, const Question& question,
                            const SearchStopped& stopped) {
    return lineOf(asked, [&](JsonPrinter& printer) {
      const bool isTime = stopped.reason() == SearchStopped::Reason::DeadlinePassed;
      printer.field("form", planForm);
      printer.field("open", isTime ? "time" : "memory");
      writeQuestionField(printer, question);
      printer.field("leastProven", stopped.progress().leastProven);
    });
  }

  BrowsableRepository& content_;
  const BatchLimits& limits_;
  std::optional<LinkableRepository> repository_;
  std::size_t asked_ = 0;
};

/// Hands questions out, and their answers on in order.
class Batch {
 public:
  Batch(BrowsableRepository& repository, const std::function<std::optional<BatchQuestion>()>& next,
        const std::function<void(const std::string& line)>& write, const BatchLimits& limits)
      : repository_(repository), next_(next), write_(write), limits_(limits) {}

  BatchCounts run() {
    {
      std::vector<std::jthread> others;
      for (unsigned i = 1; i < limits_.threads; ++i) others.emplace_back([this] { work(); });
      work();
    }
    if (failure_) std::rethrow_exception(failure_);
    return counts_;
  }

 private:
  static constexpr std::uint64_t mostWaiting = 256;  // answers for each thread

  void work() noexcept {
    BatchCounts counts;
    try {
      BatchAsker asker(repository_, limits_);
      while (const auto taken = take()) {
        const auto answer = asker.answer(taken->second, counts);
        if (!answer) break;
        give(taken->first, *answer);
      }
    } catch (...) {
      const std::lock_guard lock(mutex_);
      if (!failure_) failure_ = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    isOver_ = true;  // there are no more questions, or nobody wants them
    hasRoom_.notify_all();
    counts_.found += counts.found;
    counts_.absent += counts.absent;
    counts_.open += counts.open;
    counts_.failed += counts.failed;
    auto& first = counts_.firstFailure;
    const auto& other = counts.firstFailure;
    if (other && (!first || other->line < first->line)) first = other;
  }

  std::optional<std::pair<std::uint64_t, BatchQuestion>> take() {
    std::unique_lock lock(mutex_);
    hasRoom_.wait(lock,
                  [&] { return isOver_ || taken_ - written_ < mostWaiting * limits_.threads; });
    if (isOver_ || limits_.stop.stop_requested()) return std::nullopt;
    auto question = next_();
    if (!question) {
      isOver_ = true;
      return std::nullopt;
    }
    return std::pair(taken_++, *std::move(question));
  }

  void give(std::uint64_t number, const std::string& answer) {
    const std::lock_guard lock(mutex_);
    waiting_.emplace(number, answer);
    for (; !waiting_.empty() && waiting_.begin()->first == written_; ++written_) {
      write_(waiting_.begin()->second);
      waiting_.erase(waiting_.begin());
    }
    hasRoom_.notify_all();
  }

  BrowsableRepository& repository_;
  const std::function<std::optional<BatchQuestion>()>& next_;
  const std::function<void(const std::string& line)>& write_;
  const BatchLimits& limits_;

  std::mutex mutex_;  // guards all below
  std::condition_variable hasRoom_;
  std::uint64_t taken_ = 0;
  std::uint64_t written_ = 0;
  std::map<std::uint64_t, std::string> waiting_;  // for answers before them
  BatchCounts counts_;
  std::exception_ptr failure_;
  bool isOver_ = false;
};

}  // namespace

std::optional<BatchQuestion> BatchQuestions::next() {
  for (std::string text; std::getline(in_, text);) {
    ++line_;
    if (text.find_first_not_of(" \t\r") == std::string::npos) continue;
    if (questions_++ % parts_ + 1 == part_) return BatchQuestion{line_, std::move(text)};
  }
  return std::nullopt;
}

BatchCounts answerBatch(BrowsableRepository& repository,
                        const std::function<std::optional<BatchQuestion>()>& next,
                        const std::function<void(const std::string& line)>& write,
                        const BatchLimits& limits) {
  return Batch(repository, next, write, limits).run();
}

}  // namespace tarn::evolution::catalogue
