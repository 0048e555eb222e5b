#include <ostream>

#include "catalogue/comparison/comparison_output.hpp"
#include "catalogue/comparison/comparison_words.hpp"
#include "catalogue/picture/plan_json.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

using fl::i18n::ustring_to_utf8;

namespace {

template <class Difference>
void writeCounts(JsonPrinter& printer, const char* field,
                 const std::vector<Difference>& differences) {
  printer.objectField(field, [&] {
    for (const char* kind : differenceKinds) printer.field(kind, countOf(differences, kind));
  });
}

void writeDifferences(JsonPrinter& printer, const ContentDifference& content) {
  for (const VersionDifference& each : content.versions) {
    printer.object([&] {
      printer.field("kind", kindOf(each));
      printer.field("name", ustring_to_utf8(each.any().descriptor.name));
      printer.field("version", textOf(each.any().descriptor.version));
      printer.field("text", describe(each));
    });
  }
  for (const HopDifference& each : content.hops) {
    printer.object([&] {
      printer.field("kind", kindOf(each));
      printer.field("name", ustring_to_utf8(each.any().name));
      printer.field("from", textOf(each.any().from));
      printer.field("to", textOf(each.any().to));
      printer.field("text", describe(each));
    });
  }
}

void writeAnswer(JsonPrinter& printer, const char* field, const AskedAnswer& answer) {
  printer.objectField(field, [&] {
    if (answer.kind == AskedAnswer::Kind::Open) return printer.field("open", true);
    printer.field("found", answer.isFound());
    if (answer.isFound()) printer.field("weight", answer.weight);
    if (answer.kind != AskedAnswer::Kind::Unknown) return;
    printer.key("reason");
    printer.anyText(answer.reason);
  });
}

const char* wordOf(CauseProof proof) {
  constexpr const char* words[] = {"none", "sufficient", "smallest"};
  return words[static_cast<std::size_t>(proof)];
}

void writeAnswerDifference(JsonPrinter& printer, const AnswerDifference& answer) {
  printer.object([&] {
    writeQuestionField(printer, answer.question);
    printer.field("change", wordOf(answer.change));
    writeAnswer(printer, "former", answer.former);
    writeAnswer(printer, "present", answer.present);
    if (answer.change == AnswerChange::Open) return;
    printer.arrayField("through", [&] { writeDifferences(printer, answer.cause.through); });
    printer.field("proof", wordOf(answer.cause.proof));
  });
}

}  // namespace

void writeComparisonJson(const Comparison& comparison, ContentList content, std::ostream& out) {
  writeDocument(out, JsonPrinter::Layout::Indented, [&](JsonPrinter& printer) {
    printer.field("form", comparisonForm);
    printer.objectField("content", [&] {
      writeCounts(printer, "versions", comparison.content.versions);
      writeCounts(printer, "hops", comparison.content.hops);
      if (content == ContentList::Counted) return;
      printer.arrayField("differences", [&] { writeDifferences(printer, comparison.content); });
    });
    printer.field("questions", std::uint64_t{comparison.questions});
    printer.field("unasked", std::uint64_t{comparison.unasked});
    printer.arrayField("answers", [&] {
      for (const auto& answer : comparison.answers) writeAnswerDifference(printer, answer);
    });
    printer.arrayField("unlinkable", [&] {
      for (const NamedVersion& each : comparison.unlinkable) {
        printer.object([&] {
          printer.field("name", ustring_to_utf8(each.name));
          printer.field("version", textOf(each.version));
        });
      }
    });
    printer.field("undecided", std::uint64_t{comparison.undecided});
  });
}

}  // namespace tarn::evolution::catalogue
