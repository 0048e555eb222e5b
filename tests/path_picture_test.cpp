#include "catalogue/picture/path_picture.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/picture/graphviz.hpp"
#include "catalogue/picture/metamodel_details.hpp"
#include "catalogue/picture/path_dot.hpp"
#include "catalogue/picture/path_html.hpp"
#include "catalogue/picture/path_mermaid.hpp"
#include "catalogue/picture/path_script.hpp"
#include "catalogue/picture/path_svg.hpp"
#include "catalogue/picture/path_text.hpp"
#include "catalogue/picture/step_listing.hpp"
#include "catalogue/text/display_text.hpp"
#include "support/store_folder.hpp"
#include "support/test_folder.hpp"
#include "support/test_repository.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;
using MoveKind = PathPicture::MoveKind;

PathPicture draw(const std::string& catalogue, const std::string& from, const std::string& to) {
  TestRepository repository(catalogue);
  const auto source = repository.baseline(from);
  return drawPath(repository, source,
                  repository.findPath({source}, repository.baselines(to), forward).value());
}

/// The cells of each lane: the version where there is a box, "-" where one is held, blank where
/// not. A bar before or after it stands for the line that ties moves.
std::string describe(const PathPicture& picture) {
  std::string text;
  const auto cells = layOutCells(picture);
  for (std::size_t lane = 0; lane < cells.size(); ++lane) {
    text += picture.lanes[lane].name + ":";
    for (const PathCell& cell : cells[lane]) {
      text += cell.isTiedUpward ? " ^" : " ";
      if (cell.kind == PathCell::Kind::Start) text += cell.version.substr(0, 1);
      if (cell.kind == PathCell::Kind::Unmoved) text += "-";
      if (cell.kind == PathCell::Kind::Absent) text += ".";
      if (cell.move != nullptr) {
        text += cell.move->kind == MoveKind::Entering ? "+" : ">";
        text += cell.version.substr(0, 1) + (cell.move->kind == MoveKind::Expensive ? "!" : "");
      }
      text += cell.isTiedDownward ? "v" : "";
    }
    text += "\n";
  }
  return text;
}

/// A path in which A and D move together across B, C enters, and E never moves.
const char* const lockstep = "A1 A2:D2 A3:D2+C1 A1>2 A2>3! B1 C1 D1..2 E1";

TEST(PathPicture, LaysOutLanesAndTiesLockstepMoves) {
  const PathPicture picture = draw(lockstep, "A1 B1 D1 E1", "A3");
  EXPECT_EQ(describe(picture),
            "A: 1 >2v >3!v\n"
            "B: 1 ^-v ^-v\n"
            "C: . ^.v ^+1\n"
            "D: 1 ^>2 -\n"
            "E: 1 - -\n");
  EXPECT_EQ(summarise(picture), "2 steps, weight 1 expensive, 3");
  EXPECT_FALSE(picture.lanes[1].isMoved);
  EXPECT_TRUE(picture.lanes[2].isMoved);
}

TEST(PathPicture, OfNothingToDoIsTheSource) {
  const PathPicture picture = draw("A1 B1", "A1 B1", "A1");
  EXPECT_EQ(describe(picture), "A: 1\nB: 1\n");
}

/// A picture whose texts try to get out of every language.
PathPicture makeHostile() {
  PathPicture picture = draw(lockstep, "A1 B1 D1 E1", "A3");
  // NOLINTNEXTLINE(misc-misleading-bidirectional): one of the tries
  const std::string hostile = "]]>--><x y=\"z\">&amp;\\n\\\"}\n\x1b[0m\u202E\x01 図👩\u200D🔧 `|#;";
  for (PathPicture::Lane& lane : picture.lanes) lane.name += hostile;
  for (PathPicture::Step& step : picture.steps) {
    for (PathPicture::Move& move : step.moves) move.to += hostile;
  }
  return picture;
}

template <class Writer>
std::string written(const Writer& write, const PathPicture& picture) {
  std::ostringstream out;
  write(picture, out);
  return out.str();
}

std::size_t countOf(const std::string& part, const std::string& text) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(PathPicture, IsWellFormedInEveryFormWhateverTheNames) {
  const TestFolder folder;
  for (const PathPicture& picture : {makeHostile(), draw("A1", "A1", "A1"), PathPicture{}}) {
    folder.write("path.svg", written(writePathSvg, picture));
    EXPECT_EQ(folder.runShell("xmllint --noout --nonet path.svg 2>&1"),
              std::pair(0, std::string()));
    std::size_t boxes = 0;
    for (const auto& row : layOutCells(picture)) {
      boxes +=
          static_cast<std::size_t>(std::count_if(row.begin(), row.end(), [](const PathCell& cell) {
            return cell.kind == PathCell::Kind::Start || cell.move != nullptr;
          }));
    }
    EXPECT_EQ(countOf("class=\"box\"", folder.read("path.svg")), boxes);
    EXPECT_EQ(countOf("<span class=\"box\"", written(writePathHtml, picture)), boxes);
    EXPECT_EQ(countOf("<g id=\"node", drawWithGraphviz(written(writePathDot, picture))), boxes);
    EXPECT_EQ(countOf("s0[\"", written(writePathMermaid, picture)) +
                  countOf("s1[\"", written(writePathMermaid, picture)) +
                  countOf("s2[\"", written(writePathMermaid, picture)),
              boxes);
  }
}

/// Browsers know more than other programs that draw SVG.
TEST(PathPicture, HasItsColoursOutsideOfBrowsers) {
  const TestFolder folder;
  folder.write("path.svg", written(writePathSvg, draw("A1..2 B1..3 B2>3!", "A1 B1", "A2 B3")));
  const auto [status, drawn] = folder.runShell("rsvg-convert --format svg path.svg");
  ASSERT_EQ(status, 0);
  for (const char* colour : {"fill:rgb(100%,100%,100%)", "stroke:rgb(0%,40.784314%,63.921571%)",
                             "stroke:rgb(65.882355%,24.313726%,0%)"}) {
    EXPECT_GT(countOf(colour, drawn), 0U) << colour;
  }
}

TEST(PathPicture, TellsWhatMustMoveTogetherFromWhatOnlyDoes) {
  TestRepository repository("A1..2 B1:A1 B2:A2 B1>2 C1..2 D1");
  const auto source = repository.baseline("A1 B1 C1 D1");
  const auto path =
      repository.findPath({source}, repository.baselines("A2 B2 C2"), forward).value();
  PathPicture picture = drawPath(repository, source, path);
  addTies(repository, path, picture);
  const auto cells = layOutCells(picture);
  EXPECT_TRUE(cells[0][1].isTiedDownward && cells[1][1].isTiedUpward);
  EXPECT_TRUE(cells[1][1].isLooseDownward && cells[2][1].isLooseUpward);
  EXPECT_FALSE(cells[0][1].isLooseDownward || cells[1][1].isTiedDownward);
  const std::string text = written(
      [](const auto& drawn, auto& out) { writePathText(drawn, Colouring::Plain, out); }, picture);
  EXPECT_EQ(text,
            "Step 1, weight 4\n  A  1.0.0 -> 2.0.0\n  B  1.0.0 -> 2.0.0\n  C  1.0.0 -> 2.0.0\n"
            "    B 1.0.0 needs A 1.0.0, not 2.0.0\n    B 2.0.0 needs A 2.0.0, not 1.0.0\n"
            "    together because that weighs less: C; A with B\n1 step, weight 4\n");
  EXPECT_EQ(countOf("class=\"loose\"", written(writePathSvg, picture)), 2U);
  EXPECT_EQ(countOf("<i class=\"tie loose", written(writePathHtml, picture)), 2U);
}

TEST(PathPicture, WeightsAreReadable) {
  EXPECT_EQ(weightText(411), "411");
  EXPECT_EQ(weightText(78'000'000'411), "78 expensive, 411");
  EXPECT_EQ(weightText(2'000'000'000), "2 expensive");
  const std::string script =
      written([](const auto& drawn, auto& out) { writePathScript(drawn, "{to}", out); },
              draw(lockstep, "A1 B1 D1 E1", "A3"));
  EXPECT_EQ(countOf("\n# Step 2, weight 1 expensive\n", script), 1U);
}

TEST(PathPicture, WeightsFitTheirColumns) {
  PathPicture picture = draw("A1..5", "A1", "A5");
  for (PathPicture::Step& step : picture.steps) step.weight = 78'123'456'789;
  const std::string drawn = written(writePathSvg, picture);
  const std::regex weight(R"rx(<text class="weight" x="(\d+)" y="\d+">([^<]+)</text>)rx");
  double right = 0;
  std::size_t count = 0;
  for (std::sregex_iterator found(drawn.begin(), drawn.end(), weight), end; found != end; ++found) {
    const double left = std::stod((*found)[1]);
    EXPECT_GE(left, right);
    right = left + 11 * estimateWidth((*found)[2].str());
    ++count;
  }
  EXPECT_EQ(count, picture.steps.size());
}

TEST(PathPicture, NullEntriesOfBaselinesMoveNowhere) {
  CatalogueRepository repository{Catalogue(contentOf(TestRepository("A1 A2:B1 A1>2 B1..2")))};
  BaselineHop step{repository.combine(selection("A1")).at(0),
                   repository.combine(selection("A2")).at(0),
                   LockstepHop{{u"A", Hop(u"A", v(1), v(2), false)}}};
  const auto answers = [&] {
    std::ostringstream out;
    out << countHopCombinations(repository, step.from, anyDirection) << "\n";
    writePathText(drawPath(repository, step.from, {step}), Colouring::Plain, out);
    writeStepsText({makeListing(repository, step.from, {step})}, Colouring::Plain, out);
    return out.str();
  };
  const std::string expected = answers();
  step.from.metamodels[u"Nothing"];
  step.to.metamodels[u"Nothing"];
  step.to.metamodels[u"Nothing else"];
  EXPECT_EQ(answers(), expected);
}

TEST(PathPicture, MermaidSaysWhereItsLimitsArePassed) {
  const auto chart = [](const std::string& versions) {
    return written(writePathMermaid, draw("A1.." + versions, "A1", "A" + versions));
  };
  EXPECT_EQ(chart("200").find("flowchart LR\n"), 0U);
  EXPECT_EQ(chart("300").find("%% 597 edges and "), 0U);
}

TEST(Graphviz, FailureIsToldToHostsThatIgnoreTheEndOfChildrenToo) {
  for (const auto handler : {SIG_DFL, SIG_IGN}) {
    const auto before = std::signal(SIGCHLD, handler);
    std::string drawn;
    std::string fault;
    try {
      drawn = drawWithGraphviz("digraph { a -> b }");
      drawWithGraphviz("digraph { a -> ");
    } catch (const std::runtime_error& error) {
      fault = error.what();
    }
    EXPECT_EQ(std::signal(SIGCHLD, before), handler);
    EXPECT_EQ(countOf("</svg>", drawn), 1U);
    EXPECT_NE(fault.find("syntax error"), std::string::npos) << fault;
  }
}

TEST(PathPicture, MermaidIsMadeOfKnownLines) {
  const std::string line =
      R"rx((flowchart LR|  subgraph step\d+\["[^"\n]*"\]|    direction TB|  end)rx"
      R"rx(|    m\d+s\d+\["[^"<>\\`\n]*"\](:::(unmoved|entering))?)rx"
      R"rx(|  m\d+s\d+ (-->|==>\|expensive\||~~~) m\d+s\d+|  classDef \w+ [-\w:,#]+))rx";
  const TestFolder folder;
  folder.write("path.mermaid", written(writePathMermaid, makeHostile()));
  folder.write("lines", line);
  EXPECT_EQ(folder.runShell("grep -vxPf lines path.mermaid").second, "");
}

TEST(PathPicture, TextIsAlignedByWhatTheTerminalShows) {
  PathPicture picture = draw(lockstep, "A1 B1 D1 E1", "A3");
  picture.lanes[0].name = "図形";
  picture.lanes[3].name = "e\u0301\x1b";
  const auto text = [&](Colouring colouring) {
    std::ostringstream out;
    writePathText(picture, colouring, out);
    return out.str();
  };
  EXPECT_EQ(text(Colouring::Plain),
            "Step 1, weight 3\n"
            "  図形     1.0.0 -> 2.0.0\n"
            "  e\u0301\\u{1b}  1.0.0 -> 2.0.0\n"
            "Step 2, weight 1 expensive\n"
            "  図形     2.0.0 -> 3.0.0  expensive\n"
            "  C               + 1.0.0\n"
            "2 steps, weight 1 expensive, 3\n");
  std::string coloured = text(Colouring::Terminal);
  EXPECT_NE(coloured.find("\x1b[1mStep 1, weight 3\x1b[0m\n"), std::string::npos);
  for (const char* sequence : {"\x1b[1m", "\x1b[0m", "\x1b[1;33m", "\x1b[36m"}) {
    for (auto at = coloured.find(sequence); at != std::string::npos; at = coloured.find(sequence)) {
      coloured.erase(at, std::string(sequence).size());
    }
  }
  EXPECT_EQ(coloured, text(Colouring::Plain));
}

TEST(BaselineLists, PassOverEntriesThatHoldNothing) {
  TestRepository repository("A1");
  VersionBaseline baseline = repository.baseline("A1");
  baseline.metamodels[u"Long"];  // a null entry, as look-ups of hosts make them
  std::ostringstream out;
  writeBaselinesText({baseline}, {}, Colouring::Plain, out);
  writeBaselinesJson({baseline}, out);
  writeStepsText({{baseline, {}}, {baseline, {}}}, Colouring::Plain, out);
  EXPECT_EQ(out.str(),
            "Baseline 1 of 1\n+ A  1.0.0\n"
            "{\n  \"baselines\": [\n    {\n      \"A\": \"1.0.0\"\n    }\n  ]\n}\n"
            "Baseline 1 of 2: A 1.0.0\nNo step leads out of it.\n\n"
            "Baseline 2 of 2: A 1.0.0\nNo step leads out of it.\n");
}

}  // namespace
}  // namespace test
