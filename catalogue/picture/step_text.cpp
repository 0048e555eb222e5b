#include "catalogue/picture/step_text.hpp"

#include <algorithm>
#include <ostream>
#include <set>

#include "catalogue/text/display_text.hpp"
#include "catalogue/text/note_lines.hpp"

namespace tarn::evolution::catalogue {

namespace {

enum class Style { Heading, Expensive, Entering };

std::string styled(const std::string& text, Style style, Colouring colouring) {
  if (colouring == Colouring::Plain) return text;
  switch (style) {
    case Style::Heading:
      return "\033[1m" + text + "\033[0m";
    case Style::Expensive:
      return "\033[1;33m" + text + "\033[0m";
    case Style::Entering:
      return "\033[36m" + text + "\033[0m";
  }
  return text;
}

}  // namespace

StepTextWriter::StepTextWriter(const PathPicture& picture, Colouring colouring, std::ostream& out)
    : picture_(picture), colouring_(colouring), out_(out) {
  for (const PathPicture::Step& step : picture.steps) {
    for (const PathPicture::Move& move : step.moves) {
      nameColumns_ = std::max(nameColumns_, countColumns(toVisible(picture.lanes[move.lane].name)));
      fromColumns_ = std::max(fromColumns_, countColumns(toVisible(move.from)));
    }
  }
}

void StepTextWriter::write(const std::string& heading, std::size_t step) const {
  out_ << emphasise(heading, colouring_) << "\n";
  for (const PathPicture::Move& move : picture_.steps[step].moves) writeMove(move);
  writeTies(picture_.steps[step]);
}

void StepTextWriter::writeTies(const PathPicture::Step& step) const {
  std::set<std::string> told;
  for (const PathPicture::Tie& tie : step.ties) {
    if (told.insert(tie.reason).second) out_ << "    " << toVisible(tie.reason) << "\n";
  }
  if (step.bundles.size() < 2) return;
  out_ << "    together because that weighs less:";
  const char* before = " ";
  for (const auto& bundle : step.bundles) {
    for (const std::size_t lane : bundle) {
      out_ << before << toVisible(picture_.lanes[lane].name);
      before = " with ";
    }
    before = "; ";
  }
  out_ << "\n";
}

void StepTextWriter::writeMove(const PathPicture::Move& move) const {
  const std::string name = toVisible(picture_.lanes[move.lane].name);
  const std::string to = toVisible(move.to);
  out_ << "  " << padTo(nameColumns_, name) << "  " << padTo(fromColumns_, toVisible(move.from));
  switch (move.kind) {
    case PathPicture::MoveKind::Ordinary:
      out_ << " -> " << to;
      break;
    case PathPicture::MoveKind::Expensive:
      out_ << " -> " << to << "  " << styled("expensive", Style::Expensive, colouring_);
      break;
    case PathPicture::MoveKind::Entering:
      out_ << "  + " << styled(to, Style::Entering, colouring_);
      break;
  }
  out_ << "\n";
  for (const std::string& note : move.notes) {
    for (const std::string& line : linesOf(note)) {
      out_ << "  " << padTo(nameColumns_ + 2, "") << toVisible(line) << "\n";
    }
  }
}

std::string emphasise(const std::string& text, Colouring colouring) {
  return styled(text, Style::Heading, colouring);
}

}  // namespace tarn::evolution::catalogue
