#include <algorithm>
#include <map>
#include <ostream>

#include "catalogue/comparison/comparison_output.hpp"
#include "catalogue/comparison/comparison_words.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/plain_numbers.hpp"
#include "catalogue/text/visible.hpp"

namespace tarn::evolution::catalogue {

namespace {

template <class Difference>
std::string countsOf(const std::vector<Difference>& differences) {
  std::string text;
  for (const std::string kind : differenceKinds) {
    text += (text.empty() ? "" : ", ") + std::to_string(countOf(differences, kind)) + " " + kind;
  }
  return text;
}

void writeContent(const ContentDifference& content, ContentList list, std::ostream& out) {
  if (content.isNone()) {
    out << "The catalogues hold the same.\n";
    return;
  }
  out << "Versions: " << countsOf(content.versions) << "; hops: " << countsOf(content.hops)
      << ".\n";
  if (list == ContentList::Counted) return;
  for (const auto& each : content.versions) out << "  " << describe(each) << "\n";
  for (const auto& each : content.hops) out << "  " << describe(each) << "\n";
}

std::string textOf(const Selection& selection) {
  std::map<std::u16string, std::string> ordered;
  for (const auto& [name, version] : selection) ordered.emplace(name, visible(version));
  std::string text;
  for (const auto& [name, version] : ordered) {
    text += (text.empty() ? "" : ", ") + visible(name) + " " + version;
  }
  return text.empty() ? "nothing" : text;
}

std::string textOf(const AskedAnswer& answer) {
  switch (answer.kind) {
    case AskedAnswer::Kind::Found:
      return "weight " + std::to_string(answer.weight);
    case AskedAnswer::Kind::Absent:
      return "no path";
    case AskedAnswer::Kind::Unknown:
      return "no path, for " + toVisible(answer.reason);
    case AskedAnswer::Kind::Open:
      break;
  }
  return "open, for a limit was reached";
}

void writeCause(const ChangeCause& cause, std::ostream& out) {
  const auto& [through, proof] = cause;
  const std::size_t count = through.versions.size() + through.hops.size();
  if (proof == CauseProof::None) {
    out << "  through some of " << countedText(count, "difference")
        << ": which, was not found within the limits\n";
    return;
  }
  const bool isOne = count == 1;
  if (!isOne) {
    out << "  through " << count << " differences together"
        << (proof == CauseProof::Smallest ? "" : ", if no fewer do, which is not proven") << ":\n";
  }
  for (const auto& each : through.versions) {
    out << (isOne ? "  through " : "    ") << describe(each) << "\n";
  }
  for (const auto& each : through.hops) {
    out << (isOne ? "  through " : "    ") << describe(each) << "\n";
  }
}

void writeAnswer(const AnswerDifference& answer, Colouring colouring, std::ostream& out) {
  std::string change = wordOf(answer.change);
  change[0] = static_cast<char>(change[0] - 'a' + 'A');
  out << emphasise(change, colouring) << ": " << textOf(answer.question.from) << " -> "
      << textOf(answer.question.to) << "\n  before " << textOf(answer.former) << ", now "
      << textOf(answer.present) << "\n";
  if (answer.change != AnswerChange::Open) writeCause(answer.cause, out);
}

void writeLinks(const Comparison& comparison, std::ostream& out) {
  if (!comparison.unlinkable.empty()) out << "Can no longer be linked:\n";
  for (const auto& [name, version] : comparison.unlinkable) {
    out << "  " << visible(name) << " " << visible(version) << "\n";
  }
  if (comparison.undecided > 0) {
    out << "Of " << countedText(comparison.undecided, "version")
        << " it takes too much work to decide whether they can be linked.\n";
  }
}

void writeCounts(const Comparison& comparison, std::ostream& out) {
  std::vector<std::string> parts;
  for (const AnswerChange change : {AnswerChange::Lost, AnswerChange::Dearer, AnswerChange::Gained,
                                    AnswerChange::Cheaper, AnswerChange::Open}) {
    const auto count =
        std::count_if(comparison.answers.begin(), comparison.answers.end(),
                      [&](const AnswerDifference& each) { return each.change == change; });
    if (count > 0) parts.push_back(std::to_string(count) + " " + wordOf(change));
  }
  out << countedText(comparison.questions, "question") << ": "
      << (parts.empty() ? "all answered as before" : listed(parts)) << ".\n";
  if (comparison.unasked > 0) {
    out << "Ended early: " << countedText(comparison.unasked, "question") << " not asked.\n";
  }
}

}  // namespace

void writeComparisonText(const Comparison& comparison, ContentList content, Colouring colouring,
                         std::ostream& out) {
  const PlainNumbers plain(out);
  writeContent(comparison.content, content, out);
  for (const AnswerDifference& answer : comparison.answers) writeAnswer(answer, colouring, out);
  writeLinks(comparison, out);
  writeCounts(comparison, out);
}

}  // namespace tarn::evolution::catalogue
