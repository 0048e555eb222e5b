#include "catalogue/explorer/explorer_answers.hpp"

#include <stdexcept>
#include <string_view>
#include <utility>

#include "catalogue/explorer/customary_questions.hpp"

namespace tarn::evolution::catalogue {

namespace {

std::optional<Question> questionIn(const BatchQuestion& asked) {
  try {
    return readQuestion(asked);
  } catch (const std::invalid_argument&) {
    return std::nullopt;  // the answer tells why
  }
}

enum class Outcome { Found, Absent, Open, Failed };

/// What the third field of an answer says; "line" and "form" come before.
Outcome outcomeOf(std::string_view answer) {
  for (int field = 0; field < 2; ++field) answer.remove_prefix(answer.find(',') + 1);
  if (answer.starts_with("\"found\":true")) return Outcome::Found;
  if (answer.starts_with("\"found\":false")) return Outcome::Absent;
  return answer.starts_with("\"open\"") ? Outcome::Open : Outcome::Failed;
}

/// A metamodel's customary question, for which answers are tried until one holds.
struct Inquired {
  CustomaryQuestion customary;
  std::optional<ExplorerAnswer> first;    // about the newest version
  std::optional<ExplorerAnswer> settled;  // a path, or a limit, beyond which no more is asked
};

Question ask(const CustomaryQuestion& customary, std::size_t target) {
  return {{{customary.name, customary.oldest}}, {{customary.name, customary.newest[target]}}};
}

ExplorerAnswers answerAll(BrowsableRepository& repository, const std::vector<Question>& questions,
                          const BatchLimits& limits) {
  std::size_t asked = 0;
  return answerForExplorer(
      repository,
      [&]() -> std::optional<BatchQuestion> {
        if (asked == questions.size()) return std::nullopt;
        const std::size_t number = asked++;
        return BatchQuestion{number + 1, questionLine(questions[number])};
      },
      limits);
}

/// Asks for the target of that number, wherever there is one and nothing has settled the matter.
/// Whether there was anything to ask.
bool askForTarget(BrowsableRepository& repository, std::size_t target,
                  std::vector<Inquired>& inquired, const BatchLimits& limits) {
  std::vector<Question> questions;
  std::vector<Inquired*> asked;
  for (Inquired& each : inquired) {
    if (each.settled || target >= each.customary.newest.size()) continue;
    questions.push_back(ask(each.customary, target));
    asked.push_back(&each);
  }
  auto answered = answerAll(repository, questions, limits);
  for (std::size_t i = 0; i < answered.answers.size(); ++i) {
    ExplorerAnswer& answer = answered.answers[i];
    const Outcome outcome = outcomeOf(answer.answer);
    const bool isSettled = outcome == Outcome::Found || outcome == Outcome::Open;
    auto& place = isSettled ? asked[i]->settled : asked[i]->first;
    if (!place) place = std::move(answer);
  }
  return !questions.empty();
}

void count(const std::string& answer, BatchCounts& counts) {
  switch (outcomeOf(answer)) {
    case Outcome::Found:
      ++counts.found;
      break;
    case Outcome::Absent:
      ++counts.absent;
      break;
    case Outcome::Open:
      ++counts.open;
      break;
    case Outcome::Failed:
      ++counts.failed;
      break;
  }
}

}  // namespace

ExplorerAnswers answerForExplorer(BrowsableRepository& repository,
                                  const std::function<std::optional<BatchQuestion>()>& next,
                                  const BatchLimits& limits) {
  ExplorerAnswers result;
  std::vector<std::optional<Question>> questions;  // `next` and `write` take turns
  const auto remember = [&] {
    auto question = next();
    if (question) questions.push_back(questionIn(*question));
    return question;
  };
  const auto keep = [&](const std::string& answer) {
    result.answers.push_back({std::move(questions[result.answers.size()]), answer});
  };
  result.counts = answerBatch(repository, remember, keep, limits);
  return result;
}

ExplorerAnswers answerCustomaryQuestions(BrowsableRepository& repository, const BatchLimits& limits,
                                         std::size_t mostBytes) {
  std::vector<Question> own;
  if (auto question = repository.getQuestion()) own.push_back(*std::move(question));
  std::vector<ExplorerAnswer> all = answerAll(repository, own, limits).answers;

  std::vector<Inquired> inquired;
  for (const std::u16string& name : repository.listNames()) {
    auto customary = findCustomaryQuestion(repository, name, mostCustomaryTargets);
    if (customary) inquired.push_back({*std::move(customary), {}, {}});
  }
  for (std::size_t target = 0; askForTarget(repository, target, inquired, limits);) ++target;
  for (Inquired& each : inquired) {
    auto& answer = each.settled ? each.settled : each.first;
    if (answer) all.push_back(*std::move(answer));  // none where the batch was stopped
  }

  ExplorerAnswers result;
  std::size_t bytes = 0;
  for (ExplorerAnswer& each : all) {
    count(each.answer, result.counts);
    if (each.answer.size() > mostBytes - bytes) {
      ++result.leftOut;
      continue;
    }
    bytes += each.answer.size();
    result.answers.push_back(std::move(each));
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
