#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <limits>
#include <optional>
#include <stop_token>
#include <string>

#include "catalogue/browsable_repository.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// Many questions about one catalogue, asked by several threads at once.
namespace tarn::evolution::catalogue {

/// A question as it stands in a line: {"from": {name: version}, "to": {name: version}}.
struct BatchQuestion {
  std::uint64_t line;  ///< counts from 1
  std::string text;
};

/// Reads it. Throws std::invalid_argument, with a reason to show, for what is none.
TARN_EVOLUTION_CATALOGUE_EXPORT Question readQuestion(const BatchQuestion& asked);

/// The line, with its break, that stands for a question.
TARN_EVOLUTION_CATALOGUE_EXPORT std::string questionLine(const Question& question);

/// The questions of a stream, a line each, of which every `parts`-th is taken, beginning with the
/// one whose number is `part`, from 1 to `parts`. Empty lines are none. Keeps a reference.
class TARN_EVOLUTION_CATALOGUE_EXPORT BatchQuestions {
 public:
  BatchQuestions(std::istream& in, std::uint64_t part, std::uint64_t parts)
      : in_(in), part_(part), parts_(parts) {}

  std::optional<BatchQuestion> next();

 private:
  std::istream& in_;
  std::uint64_t part_;
  std::uint64_t parts_;
  std::uint64_t line_ = 0;
  std::uint64_t questions_ = 0;
};

struct BatchLimits {
  unsigned threads = 1;  ///< the caller's own among them; 0 counts as 1

  /// For each question.
  std::optional<std::chrono::nanoseconds> time = std::nullopt;
  std::size_t memory = std::numeric_limits<std::size_t>::max();

  /// Ends all of it: questions not yet answered then stay so.
  std::stop_token stop = {};
};

/// A question that could not be asked.
struct BatchFailure {
  std::uint64_t line;
  std::string reason;
};

/// How many answers were handed on, and of what kind.
struct BatchCounts {
  std::uint64_t found = 0;
  std::uint64_t absent = 0;
  std::uint64_t open = 0;    ///< a limit was reached
  std::uint64_t failed = 0;  ///< a line that is no question, an unknown version and the like
  std::optional<BatchFailure> firstFailure = {};  ///< the one of the least line
};

/// Answers questions until `next` has no more, and hands on the answers, a line each, in the order
/// of the questions, as soon as they and all before them are known. None of them keeps another one
/// from being answered. Each is a JSON object, which begins with "line" and "form":
///
/// - {"line", "form", "found", ...} as `writePlanJson` and `writeNoPathJson` have it;
/// - {"line", "form", "open": "time" or "memory", "question", "leastProven"} where a limit was
///   reached: no path weighs less;
/// - {"line", "form", "error"} where the question cannot be asked, also because a version that it
///   selects, or one that hops within reach lead to, cannot be linked.
///
/// The answers do not depend on the number of threads, nor on what was asked before. `next` and
/// `write` are called by one thread at a time; what they throw ends the batch. Memory is that of
/// the searches, of what they link, and of a few hundred answers.
TARN_EVOLUTION_CATALOGUE_EXPORT BatchCounts answerBatch(
    BrowsableRepository& repository, const std::function<std::optional<BatchQuestion>()>& next,
    const std::function<void(const std::string& line)>& write, const BatchLimits& limits);

}  // namespace tarn::evolution::catalogue
