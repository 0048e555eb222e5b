#include "catalogue/picture/path_svg.hpp"

#include <algorithm>
#include <ostream>
#include <string>

#include "catalogue/picture/markup.hpp"
#include "catalogue/picture/move_marks.hpp"
#include "catalogue/picture/swim_lanes.hpp"
#include "catalogue/text/display_text.hpp"
#include "catalogue/text/plain_numbers.hpp"

namespace tarn::evolution::catalogue {

namespace {

/// The colours of a picture, by what they are for.
struct Palette {
  const char* paper;
  const char* ink;
  const char* quiet;
  const char* line;
  const char* stripe;
  const char* band;
  const char* move;
  const char* dear;
  const char* enter;
};

constexpr Palette light{"#fff",    "#1b2530", "#5c6873", "#b4bec7", "#f5f7f9",
                        "#e3eef7", "#0068a3", "#a83e00", "#00664d"};
constexpr Palette dark{"#14191f", "#e8edf2", "#9fabb6", "#4a5661", "#1a2027",
                       "#1d3346", "#6cb8ee", "#f5a45d", "#52cfa9"};

constexpr const char* shapes = R"(
  text { font: 13px system-ui, "Segoe UI", "Noto Sans", "DejaVu Sans", sans-serif;
         unicode-bidi: isolate; white-space: pre; }
  .heading { font-weight: 600; }
  .weight { font-size: 11px; }
  .summary { font-size: 16px; font-weight: 600; }
  .key { font-size: 11px; }
  .held { stroke-width: 1.5; }
  .box { stroke-width: 1.25; }
  .move .box { stroke-width: 1.75; }
  .dear .box { stroke-width: 2.5; }
  .enter .box { stroke-width: 1.75; stroke-dasharray: 4 3; }
  .way { fill: none; stroke-width: 2.5; }
  .dear .way { stroke-width: 2; }
  .enter .way { stroke-dasharray: 4 3; }
  .tie { stroke-width: 2.5; }
  .loose { stroke-width: 1.5; stroke-dasharray: 1 4; }
  .mark { fill: none; stroke-width: 1.75; stroke-linecap: round; }
)";

/// Colours are written out for each palette, for many programs that draw SVG know no variables.
void writeColours(const Palette& colours, std::ostream& out) {
  const auto rule = [&out](const char* selectors, const char* property, const char* colour) {
    out << "  " << selectors << " { " << property << ": " << colour << "; }\n";
  };
  rule("text", "fill", colours.ink);
  rule(".weight, .key, .quiet", "fill", colours.quiet);
  rule(".paper, .box", "fill", colours.paper);
  rule(".stripe", "fill", colours.stripe);
  rule(".band", "fill", colours.band);
  rule(".held, .box", "stroke", colours.line);
  rule(".move .box, .way, .tie, .loose", "stroke", colours.move);
  rule(".dear .box, .dear .way", "stroke", colours.dear);
  rule(".enter .box, .enter .way", "stroke", colours.enter);
  rule(".tip", "fill", colours.move);
  rule(".dear .tip, .dear .badge", "fill", colours.dear);
  rule(".enter .tip, .enter .badge", "fill", colours.enter);
  rule(".mark", "stroke", colours.paper);
}

void writeStyle(std::ostream& out) {
  out << "<style>\n";
  writeColours(light, out);
  out << "  @media (prefers-color-scheme: dark) {\n";
  writeColours(dark, out);
  out << "  }" << shapes << "</style>\n";
}

class SvgWriter {
 public:
  SvgWriter(const PathPicture& picture, std::ostream& out)
      : picture_(picture), cells_(layOutCells(picture)), lanes_(picture, cells_), out_(out) {}

  void write() const {
    open();
    for (std::size_t column = 1; column <= picture_.steps.size(); ++column) writeBand(column);
    for (std::size_t lane = 0; lane < picture_.lanes.size(); ++lane) writeLane(lane);
    for (std::size_t column = 0; column <= picture_.steps.size(); ++column) writeHeading(column);
    for (std::size_t column = 1; column <= picture_.steps.size(); ++column) writeTie(column);
    for (std::size_t lane = 0; lane < picture_.lanes.size(); ++lane) {
      for (std::size_t column = 0; column <= picture_.steps.size(); ++column) {
        writeBox(lane, column);
      }
    }
    writeKey();
    writeNotes();
    out_ << "</svg>\n";
  }

 private:
  static constexpr int keyHeight = 48;
  static constexpr int noteHeight = 20;
  static constexpr int narrowest = 740;  // the key needs as much

  int width() const { return std::max(lanes_.lanesRight() + SwimLanes::margin, narrowest); }

  /// Calls `use` with each move that has notes and the step that it is in, counted from 1.
  template <class Use>
  void forNoted(const Use& use) const {
    for (std::size_t i = 0; i < picture_.steps.size(); ++i) {
      for (const PathPicture::Move& move : picture_.steps[i].moves) {
        if (!move.notes.empty()) use(i + 1, move);
      }
    }
  }

  void open() const {
    int height = lanes_.lanesBottom() + keyHeight + SwimLanes::margin;
    forNoted([&](std::size_t, const PathPicture::Move&) { height += noteHeight; });
    out_ << R"(<svg xmlns="http://www.w3.org/2000/svg" width=")" << width() << "\" height=\""
         << height << "\" viewBox=\"0 0 " << width() << " " << height
         << "\" role=\"img\" aria-labelledby=\"title desc\">\n<title id=\"title\">Evolution path: "
         << summarise(picture_) << "</title>\n<desc id=\"desc\">";
    for (std::size_t i = 0; i < picture_.steps.size(); ++i) {
      out_ << "Step " << i + 1 << ": ";
      const char* separator = "";
      for (const PathPicture::Move& move : picture_.steps[i].moves) {
        out_ << separator << escapeXml(describe(picture_, move));
        separator = "; ";
      }
      for (const PathPicture::Tie& tie : picture_.steps[i].ties) {
        out_ << "; " << escapeXml(tie.reason);
      }
      out_ << ".\n";
    }
    out_ << "</desc>\n";
    writeStyle(out_);
    out_ << rectangle("paper", 0, 0, width(), height);
    for (std::size_t lane = 0; lane < picture_.lanes.size(); lane += 2) {
      out_ << rectangle("stripe", SwimLanes::margin / 2, SwimLanes::top(lane),
                        lanes_.lanesRight() - SwimLanes::margin / 2, SwimLanes::laneHeight);
    }
    out_ << text("summary", SwimLanes::margin, 36, summarise(picture_));
  }

  void writeHeading(std::size_t column) const {
    const int left = lanes_.boxLeft(column);
    if (column == 0) {
      out_ << text("heading", left, SwimLanes::firstLaneTop - 28, "Start");
      return;
    }
    out_ << text("heading", left, SwimLanes::firstLaneTop - 28, "Step " + std::to_string(column))
         << text("weight", left, SwimLanes::firstLaneTop - 10,
                 "weight " + weightText(picture_.steps[column - 1].weight));
  }

  void writeLane(std::size_t lane) const {
    const PathPicture::Lane& shown = picture_.lanes[lane];
    const int baseline = SwimLanes::middle(lane) + 5;
    out_ << "<g><title>" << escapeXml(shown.name) << "</title>"
         << text(shown.isMoved ? "name" : "name quiet", SwimLanes::margin, baseline,
                 SwimLanes::shortName(shown.name))
         << "</g>\n";
    const auto& row = cells_[lane];
    const auto isHeld = [](const PathCell& cell) { return cell.kind != PathCell::Kind::Absent; };
    const auto first = std::find_if(row.begin(), row.end(), isHeld);
    if (first == row.end()) return;
    out_ << line("held", lanes_.boxLeft(static_cast<std::size_t>(first - row.begin())),
                 SwimLanes::middle(lane), lanes_.lanesRight(), SwimLanes::middle(lane));
  }

  /// The lanes that a step's moves span, the last one included.
  std::pair<std::size_t, std::size_t> spanOf(std::size_t column) const {
    std::size_t first = picture_.lanes.size();
    std::size_t last = 0;
    for (const PathPicture::Move& move : picture_.steps[column - 1].moves) {
      first = std::min(first, move.lane);
      last = std::max(last, move.lane);
    }
    return {first, last};
  }

  void writeBand(std::size_t column) const {
    const auto [first, last] = spanOf(column);
    const int top = SwimLanes::top(first) + 1;
    out_ << rectangle("band", lanes_.left(column) + 3, top, lanes_.width(column) - 6,
                      SwimLanes::top(last + 1) - 1 - top, 8);
  }

  void writeTie(std::size_t column) const {
    const int x = lanes_.left(column) + SwimLanes::tieOffset;
    out_ << "<g><title>" << tieTooltip(column) << "</title>\n";
    for (std::size_t lane = 0; lane + 1 < cells_.size(); ++lane) {
      const PathCell& cell = cells_[lane][column];
      if (!cell.isTiedDownward && !cell.isLooseDownward) continue;
      out_ << line(cell.isTiedDownward ? "tie" : "loose", x, SwimLanes::middle(lane), x,
                   SwimLanes::middle(lane + 1));
    }
    out_ << "</g>\n";
  }

  std::string tieTooltip(std::size_t column) const {
    return escapeXml(whyTogether(picture_.steps[column - 1]));
  }

  void writeBox(std::size_t lane, std::size_t column) const {
    const PathCell& cell = cells_[lane][column];
    if (cell.kind != PathCell::Kind::Start && cell.kind != PathCell::Kind::Move) return;
    const char* kind = cell.move == nullptr ? "start" : styleClassOf(cell.move->kind);
    out_ << "<g class=\"" << kind << "\"><title>"
         << escapeXml(tooltipOf(picture_, picture_.lanes[lane], cell)) << "</title>";
    const int middle = SwimLanes::middle(lane);
    const int left = lanes_.boxLeft(column);
    if (cell.move != nullptr) writeArrow(cell.move->kind, column, middle);
    out_ << rectangle("box", left, middle - SwimLanes::boxHeight / 2, lanes_.boxWidth(cell),
                      SwimLanes::boxHeight, 5)
         << text(picture_.lanes[lane].isMoved ? "version" : "version quiet",
                 left + SwimLanes::boxPadding, middle + 5, SwimLanes::shortVersion(cell.version));
    if (SwimLanes::hasBadge(cell)) {
      writeBadge(cell.move->kind, left + lanes_.boxWidth(cell) - SwimLanes::badgeWidth + 4, middle);
    }
    out_ << "</g>\n";
  }

  void writeArrow(PathPicture::MoveKind kind, std::size_t column, int y) const {
    const bool enters = kind == PathPicture::MoveKind::Entering;
    const bool isDear = kind == PathPicture::MoveKind::Expensive;
    const int from = lanes_.left(column) + (enters ? SwimLanes::tieOffset : 0);
    writeArrow(from, lanes_.boxLeft(column), y, isDear);
    out_ << R"(<circle class="tip" cx=")" << lanes_.left(column) + SwimLanes::tieOffset
         << "\" cy=\"" << y << R"(" r="4"/>)";
  }

  void writeArrow(int from, int to, int y, bool isDouble) const {
    if (isDouble) {
      out_ << line("way", from, y - 3, to - 7, y - 3) << line("way", from, y + 3, to - 7, y + 3);
    } else {
      out_ << line("way", from, y, to - 7, y);
    }
    out_ << R"(<path class="tip" d="M)" << to - 1 << " " << y << "l-10 -6v12z\"/>";
  }

  void writeBadge(PathPicture::MoveKind kind, int left, int y) const {
    out_ << R"(<circle class="badge" cx=")" << left + 5 << "\" cy=\"" << y << R"(" r="7"/>)"
         << R"(<path class="mark" d="M)" << left + 5 << " ";
    if (kind == PathPicture::MoveKind::Expensive) {
      out_ << y - 4 << "v4.5m0 3v.2\"/>";
    } else {
      out_ << y - 4 << "v8m-4 -4h8\"/>";
    }
  }

  void writeKey() const {
    const int y = lanes_.lanesBottom() + 28;
    int x = SwimLanes::margin;
    const auto sample = [&](PathPicture::MoveKind kind, const char* label) {
      out_ << "<g class=\"" << styleClassOf(kind) << "\">";
      writeArrow(x, x + 30, y, kind == PathPicture::MoveKind::Expensive);
      x += 34;
      if (kind != PathPicture::MoveKind::Ordinary) {
        writeBadge(kind, x + 2, y);
        x += 20;
      }
      out_ << "</g>" << text("key", x + 2, y + 4, label);
      x += estimatePixels(label, SwimLanes::smallFontSize) + 24;
    };
    sample(PathPicture::MoveKind::Ordinary, "move");
    sample(PathPicture::MoveKind::Expensive, "expensive move");
    sample(PathPicture::MoveKind::Entering, "brought in by a link");
    out_ << line("tie", x + 4, y - 9, x + 4, y + 9)
         << text("key", x + 14, y + 4, "must move together");
    x += estimatePixels("must move together", SwimLanes::smallFontSize) + 36;
    out_ << line("loose", x + 4, y - 9, x + 4, y + 9)
         << text("key", x + 14, y + 4, "together as that weighs less");
  }

  /// What is told of moves, a line for each, cut where the picture ends.
  void writeNotes() const {
    int y = lanes_.lanesBottom() + keyHeight + 12;
    const double most = (width() - 2.0 * SwimLanes::margin) / SwimLanes::smallFontSize;
    forNoted([&](std::size_t step, const PathPicture::Move& move) {
      const std::string told = "Step " + std::to_string(step) + ": " + describe(picture_, move);
      out_ << "<g><title>" << escapeXml(told) << "</title>"
           << text("key", SwimLanes::margin, y, shortenTo(most, toVisible(told))) << "</g>\n";
      y += noteHeight;
    });
  }

  static std::string attribute(const char* name, int value) {
    return std::string(" ") + name + "=\"" + std::to_string(value) + "\"";
  }

  static std::string rectangle(const char* kind, int x, int y, int width, int height,
                               int radius = 0) {
    return std::string("<rect class=\"") + kind + "\"" + attribute("x", x) + attribute("y", y) +
           attribute("width", width) + attribute("height", height) +
           (radius == 0 ? "" : attribute("rx", radius)) + "/>\n";
  }

  static std::string line(const char* kind, int x1, int y1, int x2, int y2) {
    return std::string("<line class=\"") + kind + "\"" + attribute("x1", x1) + attribute("y1", y1) +
           attribute("x2", x2) + attribute("y2", y2) + "/>\n";
  }

  static std::string text(const char* kind, int x, int y, const std::string& content) {
    return std::string("<text class=\"") + kind + "\"" + attribute("x", x) + attribute("y", y) +
           ">" + escapeXml(content) + "</text>\n";
  }

  const PathPicture& picture_;
  const std::vector<std::vector<PathCell>> cells_;
  const SwimLanes lanes_;
  std::ostream& out_;
};

}  // namespace

void writePathSvg(const PathPicture& picture, std::ostream& out) {
  const PlainNumbers plain(out);
  SvgWriter(picture, out).write();
}

}  // namespace tarn::evolution::catalogue
