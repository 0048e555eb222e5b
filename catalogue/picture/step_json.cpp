#include "catalogue/picture/step_json.hpp"

namespace tarn::evolution::catalogue {

namespace {

void writeTieFields(JsonPrinter& printer, const PathPicture& picture,
                    const PathPicture::Step& step) {
  if (step.bundles.empty()) return;
  printer.arrayField("ties", [&] {
    for (const PathPicture::Tie& tie : step.ties) {
      printer.object([&] {
        printer.field("mover", picture.lanes[tie.mover].name);
        printer.field("companion", picture.lanes[tie.companion].name);
        printer.field("reason", tie.reason);
      });
    }
  });
  printer.arrayField("bundles", [&] {
    for (const auto& bundle : step.bundles) {
      printer.array([&] {
        for (const std::size_t lane : bundle) printer.value(picture.lanes[lane].name);
      });
    }
  });
}

void writeNotes(JsonPrinter& printer, const PathPicture::Move& move) {
  if (move.notes.empty()) return;
  printer.arrayField("notes", [&] {
    for (const std::string& note : move.notes) printer.value(note);
  });
}

}  // namespace

void writeMoveFields(JsonPrinter& printer, const PathPicture& picture,
                     const PathPicture::Step& step) {
  const auto nameOf = [&](const PathPicture::Move& move) { return picture.lanes[move.lane].name; };
  printer.field("weight", std::uint64_t{step.weight});
  printer.arrayField("hops", [&] {
    for (const PathPicture::Move& move : step.moves) {
      if (move.kind == PathPicture::MoveKind::Entering) continue;
      printer.object([&] {
        printer.field("name", nameOf(move));
        printer.field("from", move.from);
        printer.field("to", move.to);
        printer.field("expensive", move.kind == PathPicture::MoveKind::Expensive);
        writeNotes(printer, move);
      });
    }
  });
  printer.arrayField("broughtIn", [&] {
    for (const PathPicture::Move& move : step.moves) {
      if (move.kind != PathPicture::MoveKind::Entering) continue;
      printer.object([&] {
        printer.field("name", nameOf(move));
        printer.field("version", move.to);
        writeNotes(printer, move);
      });
    }
  });
}

void writeStepFields(JsonPrinter& printer, const PathPicture& picture,
                     const PathPicture::Step& step) {
  writeMoveFields(printer, picture, step);
  writeTieFields(printer, picture, step);
}

void writeSteps(JsonPrinter& printer, const PathPicture& picture) {
  printer.array([&] {
    for (const PathPicture::Step& step : picture.steps) {
      printer.object([&] { writeStepFields(printer, picture, step); });
    }
  });
}

}  // namespace tarn::evolution::catalogue
