#include "catalogue/explanation/batch.hpp"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <istream>
#include <map>
#include <mutex>
#include <new>
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

/// An answer as it is handed on, and how it counts then.
struct AnswerLine {
  std::string text;
  std::uint64_t BatchCounts::*kind;
  std::optional<BatchFailure> failure = std::nullopt;
};

/// One thread's way of asking, with linked metamodels and found paths of its own: those that others
/// have found must not answer.
class BatchAsker {
 public:
  BatchAsker(BrowsableRepository& content, const BatchLimits& limits)
      : content_(content), limits_(limits) {}

  /// No answer when the batch was stopped meanwhile.
  std::optional<AnswerLine> answer(const BatchQuestion& asked) {
    try {
      return answerTo(asked);
    } catch (const std::bad_alloc&) {
      return errorOf(asked, "out of memory");
    } catch (const std::exception& error) {
      return errorOf(asked, error.what());
    }
  }

 private:
  static constexpr std::size_t questionsOfOne = 256;  // before what it has linked is dropped

  /// The text is an object with the line and what `writeFields` writes.
  template <class WriteFields>
  static AnswerLine makeAnswer(const BatchQuestion& asked, std::uint64_t BatchCounts::*kind,
                               const WriteFields& writeFields) {
    return {written([&](std::ostream& out) {
              writeDocument(out, JsonPrinter::Layout::Line, [&](JsonPrinter& printer) {
                printer.field("line", asked.line);
                writeFields(printer);
              });
            }),
            kind};
  }

  static AnswerLine errorOf(const BatchQuestion& asked, const std::string& reason) {
    AnswerLine answer = makeAnswer(asked, &BatchCounts::failed, [&](JsonPrinter& printer) {
      printer.field("form", planForm);
      printer.key("error");
      printer.anyText(reason);
    });
    answer.failure = BatchFailure{asked.line, reason};
    return answer;
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

  std::optional<AnswerLine> answerTo(const BatchQuestion& asked) {
    const Question question = readQuestion(asked);
    const UnknownEntries unknown = findUnknown(content_, question);
    if (!unknown.entries.empty()) throw std::invalid_argument(describe(unknown));
    LinkableRepository& repository = freshRepository();
    try {
      const auto path = repository.findPath(question.from, question.to, limitsFromNow());
      if (path) return planOf(asked, makePlan(repository, content_, question, *path));
      return absentOf(asked, question);
    } catch (const SearchStopped& stopped) {
      if (stopped.reason() == SearchStopped::Reason::StopRequested) return std::nullopt;
      return openOf(asked, question, stopped);
    } catch (const ConflictingDependencies&) {
      return errorOf(asked, describeUnlinkable(question));
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

  static AnswerLine planOf(const BatchQuestion& asked, const PathPlan& plan) {
    return makeAnswer(asked, &BatchCounts::found,
                      [&](JsonPrinter& printer) { writePlanFields(printer, plan); });
  }

  static AnswerLine absentOf(const BatchQuestion& asked, const Question& question) {
    return makeAnswer(asked, &BatchCounts::absent,
                      [&](JsonPrinter& printer) { writeAnswerHead(printer, false, question); });
  }

  static AnswerLine openOf(const BatchQuestion& asked, const Question& question,
                           const SearchStopped& stopped) {
    return makeAnswer(asked, &BatchCounts::open, [&](JsonPrinter& printer) {
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
    try {
      BatchAsker asker(repository_, limits_);
      while (const auto taken = take()) {
        auto answer = asker.answer(taken->second);
        if (!answer) break;
        give(taken->first, *std::move(answer));
      }
    } catch (...) {
      const std::lock_guard lock(mutex_);
      if (!failure_) failure_ = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    isOver_ = true;  // there are no more questions, or nobody wants them
    hasRoom_.notify_all();
  }

  std::optional<std::pair<std::uint64_t, BatchQuestion>> take() {
    std::unique_lock lock(mutex_);
    hasRoom_.wait(lock, [&] {
      return isOver_ || taken_ - written_ < mostWaiting * std::max(1U, limits_.threads);
    });
    if (isOver_ || limits_.stop.stop_requested()) return std::nullopt;
    auto question = next_();
    if (!question) {
      isOver_ = true;
      return std::nullopt;
    }
    return std::pair(taken_++, *std::move(question));
  }

  void give(std::uint64_t number, AnswerLine answer) {
    const std::lock_guard lock(mutex_);
    waiting_.emplace(number, std::move(answer));
    for (; !waiting_.empty() && waiting_.begin()->first == written_; ++written_) {
      write_(waiting_.begin()->second.text);
      count(waiting_.begin()->second);
      waiting_.erase(waiting_.begin());
    }
    hasRoom_.notify_all();
  }

  void count(const AnswerLine& answer) {
    ++(counts_.*answer.kind);
    auto& first = counts_.firstFailure;
    if (answer.failure && (!first || answer.failure->line < first->line)) first = answer.failure;
  }

  BrowsableRepository& repository_;
  const std::function<std::optional<BatchQuestion>()>& next_;
  const std::function<void(const std::string& line)>& write_;
  const BatchLimits& limits_;

  std::mutex mutex_;  // guards all below
  std::condition_variable hasRoom_;
  std::uint64_t taken_ = 0;
  std::uint64_t written_ = 0;
  std::map<std::uint64_t, AnswerLine> waiting_;  // for answers before them
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
