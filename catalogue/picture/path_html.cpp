#include "catalogue/picture/path_html.hpp"

#include <algorithm>
#include <ostream>
#include <string>

#include "catalogue/picture/markup.hpp"
#include "catalogue/picture/move_marks.hpp"
#include "catalogue/picture/path_page.hpp"
#include "catalogue/text/note_lines.hpp"
#include "catalogue/text/plain_numbers.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

using MoveKind = PathPicture::MoveKind;

class PageWriter {
 public:
  PageWriter(const PathPicture& picture, std::ostream& out) : picture_(picture), out_(out) {}

  void write() const {
    out_ << pageBegin("Evolution path: " + summarise(picture_), pathPageStyle);
    writeHeader();
    out_ << "<main>\n";
    writeLanes();
    writeSteps();
    out_ << "</main>\n<script>" << pathPageScript << "</script>\n</body>\n</html>\n";
  }

 private:
  void writeHeader() const {
    const auto moved = std::count_if(picture_.lanes.begin(), picture_.lanes.end(),
                                     [](const PathPicture::Lane& lane) { return lane.isMoved; });
    out_ << "<header>\n<h1>Evolution path</h1>\n<p>" << summarise(picture_) << "; "
         << countedText(picture_.lanes.size(), "metamodel") << ", " << moved << " moved</p>\n"
         << R"(<div class="tools" role="search">
<label for="search">Search names <kbd>/</kbd></label>
<input type="search" id="search" autocomplete="off" spellcheck="false">
<label><input type="checkbox" id="moved-only"> Moved only</label>
<output id="matches" for="search moved-only" aria-live="polite"></output>
</div>
<div class="key">
<span class="move"><i class="way"></i>move</span>
<span class="dear"><i class="way"></i>expensive move (!)</span>
<span class="enter"><i class="way"></i>brought in by a link (+)</span>
<span><i class="sample-tie"></i>must move together</span>
<span><i class="sample-tie loose"></i>together as that weighs less</span>
<span class="keys"><kbd>←</kbd> <kbd>→</kbd> step &nbsp; <kbd>Esc</kbd> clear</span>
</div>
</header>
)";
  }

  void writeLanes() const {
    const auto cells = layOutCells(picture_);
    out_ << "<section id=\"picture\" tabindex=\"0\" aria-label=\"Swim lanes\">\n<table>\n"
            R"(<thead><tr><th scope="col">Metamodel</th><th scope="col">Start</th>)";
    for (std::size_t i = 0; i < picture_.steps.size(); ++i) {
      out_ << R"(<th scope="col"><button type="button" tabindex="-1">Step )" << i + 1
           << "<small>weight " << weightText(picture_.steps[i].weight) << "</small></button></th>";
    }
    out_ << "</tr></thead>\n<tbody>\n";
    for (std::size_t i = 0; i < cells.size(); ++i) writeLane(picture_.lanes[i], cells[i]);
    out_ << "</tbody>\n</table>\n</section>\n";
    if (picture_.steps.size() > stepsOnPaper) writePrintedLanes(cells);
  }

  /// The same for paper, as many columns at a time as fit beside the names.
  void writePrintedLanes(const std::vector<std::vector<PathCell>>& cells) const {
    out_ << "<section class=\"printed\" aria-hidden=\"true\">\n";
    for (std::size_t first = 0; first <= picture_.steps.size(); first += stepsOnPaper) {
      const std::size_t last = std::min(first + stepsOnPaper, picture_.steps.size() + 1);
      out_ << "<table>\n<thead><tr><th>Metamodel</th>";
      for (std::size_t column = first; column < last; ++column) {
        out_ << "<th>" << (column == 0 ? "Start" : "Step " + std::to_string(column)) << "</th>";
      }
      out_ << "</tr></thead>\n<tbody>\n";
      for (std::size_t lane = 0; lane < cells.size(); ++lane) {
        out_ << "<tr><th><bdi>" << escapeXml(picture_.lanes[lane].name) << "</bdi></th>";
        for (std::size_t column = first; column < last; ++column) {
          writePrintedCell(cells[lane][column]);
        }
        out_ << "</tr>\n";
      }
      out_ << "</tbody>\n</table>\n";
    }
    out_ << "</section>\n";
  }

  void writePrintedCell(const PathCell& cell) const {
    out_ << "<td" << (cell.move == nullptr ? "" : R"( class="moved")") << "><bdi>"
         << escapeXml(cell.version) << "</bdi>";
    if (cell.move != nullptr && cell.move->kind == MoveKind::Expensive) out_ << " !";
    if (cell.move != nullptr && cell.move->kind == MoveKind::Entering) out_ << " +";
    out_ << "</td>";
  }

  void writeLane(const PathPicture::Lane& lane, const std::vector<PathCell>& cells) const {
    const std::string name = escapeXml(lane.name);
    out_ << "<tr data-name=\"" << name << "\"" << (lane.isMoved ? "" : " class=\"unmoved\"")
         << R"(><th scope="row" title=")" << name << "\"><bdi>" << name
         << R"(</bdi><span class="now" aria-hidden="true"></span></th>)";
    bool begins = true;
    for (const PathCell& cell : cells) {
      writeCell(lane, cell, begins);
      if (cell.kind != PathCell::Kind::Absent) begins = false;
    }
    out_ << "</tr>\n";
  }

  void writeCell(const PathPicture::Lane& lane, const PathCell& cell, bool begins) const {
    std::string classes;
    if (cell.kind != PathCell::Kind::Absent) classes += begins ? " held begins" : " held";
    if (cell.move != nullptr) classes += std::string(" ") + styleClassOf(cell.move->kind);
    const bool isTied =
        cell.isTiedUpward || cell.isTiedDownward || cell.isLooseUpward || cell.isLooseDownward;
    if (cell.move != nullptr || isTied) classes += " band";
    out_ << "<td";
    if (!classes.empty()) out_ << " class=\"" << classes.substr(1) << "\"";
    if (!cell.version.empty()) {
      out_ << " title=\"" << escapeXml(tooltipOf(picture_, lane, cell)) << "\"";
    }
    out_ << ">";
    if (cell.isTiedUpward) out_ << "<i class=\"tie up\"></i>";
    if (cell.isTiedDownward) out_ << "<i class=\"tie down\"></i>";
    if (cell.isLooseUpward) out_ << "<i class=\"tie loose up\"></i>";
    if (cell.isLooseDownward) out_ << "<i class=\"tie loose down\"></i>";
    if (cell.move != nullptr) out_ << R"(<i class="way"></i><i class="dot"></i>)";
    if (cell.move != nullptr || cell.kind == PathCell::Kind::Start) writeBox(cell);
    out_ << "</td>";
  }

  void writeBox(const PathCell& cell) const {
    out_ << "<span class=\"box\"><bdi>" << escapeXml(cell.version) << "</bdi>";
    if (cell.move != nullptr && cell.move->kind != MoveKind::Ordinary) {
      const bool enters = cell.move->kind == MoveKind::Entering;
      out_ << R"(<span class="badge" aria-hidden="true">)" << (enters ? "+" : "!")
           << "</span><span class=\"unseen\">" << (enters ? "brought in" : "expensive")
           << "</span>";
    }
    out_ << "</span>";
  }

  void writeSteps() const {
    out_ << "<aside aria-label=\"Steps\">\n<h2>Steps</h2>\n<ol id=\"steps\">\n";
    for (std::size_t i = 0; i < picture_.steps.size(); ++i) {
      out_ << "<li><button type=\"button\">Step " << i + 1 << " <small>weight "
           << weightText(picture_.steps[i].weight) << "</small></button>\n<ul>\n";
      for (const PathPicture::Move& move : picture_.steps[i].moves) writeMove(move);
      out_ << "</ul>";
      if (const std::string why = whyTogether(picture_.steps[i]); !why.empty()) {
        out_ << "<p class=\"why\">" << escapeXml(why) << "</p>";
      }
      out_ << "</li>\n";
    }
    out_ << "</ol>\n</aside>\n";
  }

  void writeMove(const PathPicture::Move& move) const {
    const std::string name = escapeXml(picture_.lanes[move.lane].name);
    out_ << "<li data-name=\"" << name << "\"><bdi>" << name << "</bdi> <span class=\"versions\">";
    if (move.kind != MoveKind::Entering) {
      out_ << "<bdi>" << escapeXml(move.from) << "</bdi> → ";
    }
    out_ << "<bdi>" << escapeXml(move.to) << "</bdi></span>";
    if (move.kind == MoveKind::Expensive) out_ << " <span class=\"note\">expensive</span>";
    if (move.kind == MoveKind::Entering) out_ << " <span class=\"note link\">brought in</span>";
    for (const std::string& note : move.notes) writeNote(note);
    out_ << "</li>\n";
  }

  void writeNote(const std::string& note) const {
    out_ << "<p dir=\"auto\">";
    const char* separator = "";
    for (const std::string& line : linesOf(note)) {
      out_ << separator << escapeXml(line);
      separator = "<br>";
    }
    out_ << "</p>";
  }

  static constexpr std::size_t stepsOnPaper = 8;

  const PathPicture& picture_;
  std::ostream& out_;
};

}  // namespace

void writePathHtml(const PathPicture& picture, std::ostream& out) {
  const PlainNumbers plain(out);
  PageWriter(picture, out).write();
}

}  // namespace tarn::evolution::catalogue
