#include "catalogue/picture/step_json.hpp"

namespace tarn::evolution::catalogue {

using Move = PathPicture::Move;
using MoveKind = PathPicture::MoveKind;

void writeStepFields(JsonPrinter& printer, const PathPicture& picture,
                     const PathPicture::Step& step) {
  const auto nameOf = [&](const Move& move) { return picture.lanes[move.lane].name; };
  printer.field("weight", std::uint64_t{step.weight});
  printer.arrayField("hops", [&] {
    for (const Move& move : step.moves) {
      if (move.kind == MoveKind::entering) continue;
      printer.object([&] {
        printer.field("name", nameOf(move));
        printer.field("from", move.from);
        printer.field("to", move.to);
        printer.field("expensive", move.kind == MoveKind::expensive);
      });
    }
  });
  printer.arrayField("broughtIn", [&] {
    for (const Move& move : step.moves) {
      if (move.kind != MoveKind::entering) continue;
      printer.object([&] {
        printer.field("name", nameOf(move));
        printer.field("version", move.to);
      });
    }
  });
}

}  // namespace tarn::evolution::catalogue
