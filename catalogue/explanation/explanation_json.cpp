#include "catalogue/explanation/explanation_json.hpp"

#include <ostream>

#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/picture/plan_json.hpp"
#include "catalogue/picture/step_json.hpp"
#include "catalogue/text/dependency_json.hpp"
#include "catalogue/text/json_printer.hpp"
#include "catalogue/text/printed_text.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::Hop;
using pathfinder::VersionRepository;

namespace {

/// Writes whatever explanations consist of.
class ExplanationWriter {
 public:
  ExplanationWriter(const StepWeights& weights, JsonPrinter& printer)
      : weights_(weights), printer_(printer) {}

  void write(const Explanation& explanation) {
    printer_.object([&] {
      std::visit([&](const auto& reason) { writeReason(reason); }, explanation.reason);
      writeFields("unlinkable", explanation.unlinkable, "withoutOrder", explanation.withoutOrder);
      if (explanation.nearest) writeFields("nearest", *explanation.nearest);
      if (!explanation.notes.empty()) writeFields("notes", explanation.notes);
      writeFields("questions", explanation.questions);
      if (explanation.stopped) writeFields("stopped", *explanation.stopped);
      if (explanation.hasTooManyVariants) writeFields("tooManyVariants", true);
    });
  }

 private:
  void writeReason(const PathExists& reason) { writeFields("kind", "path", "steps", reason.path); }
  void writeReason(const UnknownEntries& reason) {
    writeFields("kind", "unknown", "entries", reason.entries);
  }
  void writeReason(const InconsistentSelection& reason) {
    writeFields("kind", "inconsistent", "side", reason.side, "unlinkableSelected",
                reason.unlinkable, "clash", reason.clash, "remedies", reason.remedies);
  }
  void writeReason(const MissingChains& reason) {
    writeFields("kind", "missing-chain", "direction", reason.direction, "chains", reason.chains);
  }
  void writeReason(const AgainstDirection& reason) {
    writeFields("kind", "against-direction", "direction", reason.direction, "against",
                reason.against, "steps", reason.path);
  }
  void writeReason(const NeverTogether& reason) {
    writeFields("kind", "never-together", "names", reason.names, "minimal", reason.isMinimal,
                "smallest", reason.isSmallest, "stuckAt", reason.stuckAt, "blocked", reason.blocked,
                "otherClashes", reason.otherClashes);
  }
  void writeReason(const PathBesideUnlinkable& reason) {
    writeFields("kind", "path-beside-unlinkable", "steps", reason.path);
  }

  void writeValue(pathfinder::SearchStopped::Reason reason) {
    using Reason = pathfinder::SearchStopped::Reason;
    const bool isTime = reason == Reason::DeadlinePassed;
    printer_.value(isTime ? "time" : reason == Reason::MemoryUsedUp ? "memory" : "request");
  }
  void writeValue(const char* text) { printer_.value(text); }
  void writeValue(bool truth) { printer_.value(truth); }
  void writeValue(std::size_t number) { printer_.value(std::uint64_t{number}); }
  void writeValue(const std::u16string& name) { printer_.value(fl::i18n::ustring_to_utf8(name)); }
  void writeValue(const pathfinder::VersionId& version) { printer_.value(textOf(version)); }
  void writeValue(const pathfinder::VersionRange& range) { writeBounds(printer_, range); }
  void writeValue(QuestionSide side) { printer_.value(side == QuestionSide::From ? "from" : "to"); }
  void writeValue(VersionRepository::Direction direction) {
    printer_.value(VersionRepository::getDirectionString(direction));
  }
  void writeValue(const Hop& hop) { writeObject("name", hop.name, "from", hop.from, "to", hop.to); }
  void writeValue(const NamedVersion& named) {
    writeObject("name", named.name, "version", named.version);
  }
  void writeValue(const NamedVersions& named) {
    writeObject("name", named.name, "versions", named.versions);
  }
  void writeValue(const Requirement& requirement) {
    printer_.object([&] {
      writeFields("chain", requirement.chain, "name", requirement.name, "range", requirement.range);
      if (requirement.isOptional) writeFields("optional", true);
    });
  }
  void writeValue(const Clash& clash) {
    printer_.object([&] {
      writeFields("parties", clash.parties, "contested", clash.contested, "requirements",
                  clash.requirements);
      if (clash.isMissing) writeFields("missing", true);
    });
  }
  void writeValue(const Unlinkable& unlinkable) {
    printer_.object([&] {
      writeFields("chain", unlinkable.chain);
      printer_.key("unmet");
      if (const auto& unmet = unlinkable.unmet) {
        writeObject("name", unmet->name, "range", unmet->range, "nearest",
                    unlinkable.nearestVersions);
      } else {
        printer_.null();
      }
      writeFields("clash", unlinkable.clash);
    });
  }
  void writeValue(const UnknownEntry& unknown) {
    printer_.object([&] {
      writeFields("side", unknown.side.value_or(QuestionSide::From), "name", unknown.entry.name,
                  "version", unknown.entry.version);
      if (unknown.isNameKnown) {
        writeFields("unknown", "version", "nearest", unknown.nearestVersions);
      } else {
        writeFields("unknown", "name", "nearest", unknown.nearestNames);
      }
    });
  }
  void writeValue(const MissingChain& chain) {
    writeObject("target", chain.target, "held", chain.isHeld, "starts", chain.starts, "reached",
                chain.reached, "leading", chain.leading, "missing", chain.missingHop,
                "chainInAnyDirection", chain.chainInAnyDirection, "dependents", chain.dependents);
  }
  void writeValue(const ExplanationNote& note) {
    printer_.object([&] {
      writeFields("name", note.subject.name, "version", note.subject.version);
      if (note.to) writeFields("to", *note.to);
      if (note.dependency) writeFields("needs", *note.dependency);
      writeFields("note", note.note);
    });
  }
  void writeValue(const BlockedHop& blocked) {
    writeObject("hop", blocked.hop, "clash", blocked.clash);
  }
  void writeValue(const Unfinished& rest) {
    writeObject("target", rest.target, "held", rest.held, "hopsLeft", rest.hopsLeft);
  }
  void writeValue(const NearestBaseline& nearest) {
    writeObject("arrived", nearest.arrived, "unfinished", nearest.unfinished, "proven",
                nearest.isProven, "steps", nearest.path);
  }
  void writeValue(const std::vector<pathfinder::BaselineHop>& path) {
    writeSteps(printer_, drawPath(weights_, path));
  }

  template <class Item>
  void writeValue(const std::optional<Item>& item) {
    if (item) {
      writeValue(*item);
    } else {
      printer_.null();
    }
  }

  template <class Item>
  void writeValue(const std::vector<Item>& items) {
    printer_.array([&] {
      for (const Item& item : items) writeValue(item);
    });
  }

  template <class... Fields>
  void writeObject(const Fields&... fields) {
    printer_.object([&] { writeFields(fields...); });
  }

  /// Names and values in turn.
  template <class Value, class... Others>
  void writeFields(const char* name, const Value& value, const Others&... others) {
    printer_.key(name);
    writeValue(value);
    if constexpr (sizeof...(others) > 0) writeFields(others...);
  }

  const StepWeights& weights_;
  JsonPrinter& printer_;
};

}  // namespace

void writeExplanationJson(const Explanation& explanation, const StepWeights& weights,
                          std::ostream& out) {
  JsonPrinter printer(out, JsonPrinter::Layout::Indented);
  ExplanationWriter(weights, printer).write(explanation);
  out << "\n";
}

void writeNoPathJson(const Question& question, std::ostream& out) {
  writeDocument(out, JsonPrinter::Layout::Indented,
                [&](JsonPrinter& printer) { writeAnswerHead(printer, false, question); });
}

void writeNoPathJson(const Question& question, const Explanation& explanation,
                     const StepWeights& weights, std::ostream& out) {
  writeDocument(out, JsonPrinter::Layout::Indented, [&](JsonPrinter& printer) {
    writeAnswerHead(printer, false, question);
    printer.field("reason", headlineOf(explanation));
    printer.key("explanation");
    ExplanationWriter(weights, printer).write(explanation);
  });
}

}  // namespace tarn::evolution::catalogue
