#include "catalogue/picture/step_json.hpp"

namespace tarn::evolution::catalogue {

namespace {

void writeNotes(JsonPrinter& printer, const PathPicture::Move& move) {
  if (move.notes.empty()) return;
  printer.arrayField("notes", [&] {
    for (const std::string& note : move.notes) printer.value(note);
  });
}

}  // namespace

void writeStepFields(JsonPrinter& printer, const PathPicture& picture,
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

void writeSteps(JsonPrinter& printer, const PathPicture& picture) {
  printer.array([&] {
    for (const PathPicture::Step& step : picture.steps) {
      printer.object([&] { writeStepFields(printer, picture, step); });
    }
  });
}

}  // namespace tarn::evolution::catalogue
