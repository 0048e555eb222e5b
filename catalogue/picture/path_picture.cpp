#include "catalogue/picture/path_picture.hpp"

#include <algorithm>
#include <map>

#include "catalogue/picture/step_ties.hpp"
#include "catalogue/text/note_lines.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/utf16.hpp"
#include "catalogue/version_text.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::BaselineHop;
using pathfinder::VersionBaseline;

namespace {

using LaneNumbers = std::map<std::u16string, std::size_t>;

/// What the baseline holds under the name; null when it holds nothing.
const pathfinder::LinkedMetamodel* heldIn(const VersionBaseline& baseline,
                                          const std::u16string& name) {
  const auto held = baseline.metamodels.find(name);
  return held == baseline.metamodels.end() ? nullptr : held->second.get();
}

/// A lane for each metamodel that the source or a step's end holds.
LaneNumbers addLanes(const VersionBaseline& source, const std::vector<BaselineHop>& path,
                     std::vector<PathPicture::Lane>& lanes) {
  LaneNumbers numbers;
  for (const auto& [name, linked] : source.metamodels) numbers.emplace(name, 0);
  for (const BaselineHop& step : path) {
    for (const auto& [name, linked] : step.to.metamodels) numbers.emplace(name, 0);
  }
  for (auto& [name, number] : numbers) {
    number = lanes.size();
    const auto* held = heldIn(source, name);
    lanes.push_back(
        {fl::i18n::ustring_to_utf8(name), held == nullptr ? "" : textOf(held->version), false});
  }
  return numbers;
}

std::vector<PathPicture::Move> listMoves(const BaselineHop& step, const LaneNumbers& lanes) {
  std::vector<PathPicture::Move> moves;
  for (const auto& [name, hop] : step.hops) {
    moves.push_back(
        {lanes.at(name), textOf(hop.from), textOf(hop.to),
         hop.expensive ? PathPicture::MoveKind::Expensive : PathPicture::MoveKind::Ordinary});
  }
  for (const auto& [name, linked] : step.to.metamodels) {
    if (linked == nullptr || heldIn(step.from, name) != nullptr) continue;
    moves.push_back({lanes.at(name), "", textOf(linked->version), PathPicture::MoveKind::Entering});
  }
  std::sort(moves.begin(), moves.end(),
            [](const PathPicture::Move& left, const PathPicture::Move& right) {
              const bool entersLeft = left.kind == PathPicture::MoveKind::Entering;
              const bool entersRight = right.kind == PathPicture::MoveKind::Entering;
              return entersLeft != entersRight ? entersRight : left.lane < right.lane;
            });
  return moves;
}

/// Marks the places between a step's first and last moved lane: as tied between those of one
/// bundle, otherwise as loose. Where nothing is known of bundles, all moves are of one.
void tieMoves(const PathPicture::Step& step, std::size_t column,
              std::vector<std::vector<PathCell>>& cells) {
  if (step.moves.empty()) return;
  const auto [first, last] = std::minmax_element(
      step.moves.begin(), step.moves.end(),
      [](const auto& left, const auto& right) { return left.lane < right.lane; });
  for (std::size_t lane = first->lane; lane < last->lane; ++lane) {
    const bool isTied =
        step.bundles.empty() ||
        std::any_of(step.bundles.begin(), step.bundles.end(), [lane](const auto& bundle) {
          return bundle.front() <= lane && lane < bundle.back();
        });
    PathCell& upper = cells[lane][column];
    PathCell& lower = cells[lane + 1][column];
    (isTied ? upper.isTiedDownward : upper.isLooseDownward) = true;
    (isTied ? lower.isTiedUpward : lower.isLooseUpward) = true;
  }
}

}  // namespace

PathPicture drawPath(const StepWeights& weights, const VersionBaseline& source,
                     const std::vector<BaselineHop>& path) {
  PathPicture picture;
  const LaneNumbers numbers = addLanes(source, path, picture.lanes);
  for (const BaselineHop& step : path) {
    picture.steps.push_back({listMoves(step, numbers), weights(step.hops)});
    picture.weight += picture.steps.back().weight;
    for (const auto& move : picture.steps.back().moves) picture.lanes[move.lane].isMoved = true;
  }
  return picture;
}

PathPicture drawPath(const StepWeights& weights, const std::vector<BaselineHop>& path) {
  return drawPath(weights, path.empty() ? VersionBaseline() : path.front().from, path);
}

PathPicture drawPath(const pathfinder::VersionRepository& repository, const VersionBaseline& source,
                     const std::vector<BaselineHop>& path) {
  return drawPath(weightsOf(repository), source, path);
}

PathPicture drawSelection(const Selection& selection) {
  const std::map<std::u16string, pathfinder::VersionId> byName(selection.begin(), selection.end());
  PathPicture picture;
  for (const auto& [name, version] : byName) {
    picture.lanes.push_back({fl::i18n::ustring_to_utf8(name), textOf(version), false});
  }
  return picture;
}

void addTies(pathfinder::VersionRepository& repository, const std::vector<BaselineHop>& path,
             PathPicture& picture) {
  std::vector<std::vector<StepTie>> ties;
  ties.reserve(path.size());
  for (const BaselineHop& step : path) ties.push_back(tiesOf(repository, step));
  addTies(path, ties, picture);
}

void addTies(const std::vector<BaselineHop>& path, const std::vector<std::vector<StepTie>>& ties,
             PathPicture& picture) {
  LaneNumbers numbers;
  for (std::size_t lane = 0; lane < picture.lanes.size(); ++lane) {
    numbers.emplace(toUtf16(picture.lanes[lane].name), lane);
  }
  for (std::size_t i = 0; i < path.size(); ++i) {
    PathPicture::Step& step = picture.steps[i];
    for (const StepTie& tie : ties[i]) {
      step.ties.push_back({numbers.at(tie.mover), numbers.at(tie.companion), describe(tie)});
    }
    for (const auto& names : bundlesOf(path[i], ties[i])) {
      std::vector<std::size_t>& bundle = step.bundles.emplace_back();
      for (const std::u16string& name : names) bundle.push_back(numbers.at(name));
    }
  }
}

void addNotes(BrowsableRepository& repository, PathPicture& picture) {
  const auto add = [](const std::u16string& note, PathPicture::Move& move) {
    std::string text = fl::i18n::ustring_to_utf8(note);
    const bool isThere = std::find(move.notes.begin(), move.notes.end(), text) != move.notes.end();
    if (!text.empty() && !isThere) move.notes.push_back(std::move(text));
  };
  for (PathPicture::Step& step : picture.steps) {
    for (PathPicture::Move& move : step.moves) {
      const std::u16string name = toUtf16(picture.lanes[move.lane].name);
      const pathfinder::VersionId to = parseVersion(move.to);
      if (move.kind != PathPicture::MoveKind::Entering) {
        add(repository.findHopNote({name, parseVersion(move.from), to, false}), move);
      }
      add(repository.findVersionNote(name, to), move);
    }
  }
}

std::vector<std::vector<PathCell>> layOutCells(const PathPicture& picture) {
  std::vector<std::vector<PathCell>> cells(picture.lanes.size(),
                                           std::vector<PathCell>(picture.steps.size() + 1));
  for (std::size_t lane = 0; lane < picture.lanes.size(); ++lane) {
    if (picture.lanes[lane].start.empty()) continue;
    cells[lane][0].kind = PathCell::Kind::Start;
    cells[lane][0].version = picture.lanes[lane].start;
  }
  for (std::size_t column = 1; column <= picture.steps.size(); ++column) {
    for (auto& row : cells) {
      row[column].version = row[column - 1].version;
      if (!row[column].version.empty()) row[column].kind = PathCell::Kind::Unmoved;
    }
    for (const PathPicture::Move& move : picture.steps[column - 1].moves) {
      PathCell& cell = cells[move.lane][column];
      cell.kind = PathCell::Kind::Move;
      cell.version = move.to;
      cell.move = &move;
    }
    tieMoves(picture.steps[column - 1], column, cells);
  }
  return cells;
}

std::string weightText(std::uint64_t weight) {
  constexpr std::uint64_t expensive = 1'000'000'000;
  if (weight < expensive) return std::to_string(weight);
  const std::uint64_t rest = weight % expensive;
  return std::to_string(weight / expensive) + " expensive" +
         (rest == 0 ? "" : ", " + std::to_string(rest));
}

std::string summarise(const PathPicture& picture) {
  std::string text =
      countedText(picture.steps.size(), "step") + ", weight " + weightText(picture.weight);
  if (!picture.leastProven) return text;
  if (*picture.leastProven >= picture.weight) {
    return text + "; no path weighs less, but another one of this weight may come first";
  }
  return text + ", not proven least: no path weighs less than " + weightText(*picture.leastProven);
}

std::string describe(const PathPicture& picture, const PathPicture::Move& move) {
  const std::string& name = picture.lanes[move.lane].name;
  std::string text;
  if (move.kind == PathPicture::MoveKind::Entering) {
    text = name + " enters at " + move.to + ", brought in by a link";
  } else {
    text = name + " from " + move.from + " to " + move.to +
           (move.kind == PathPicture::MoveKind::Expensive ? ", expensive" : "");
  }
  const char* separator = ": ";
  for (const std::string& note : move.notes) {
    text.append(separator).append(inOneLine(note));
    separator = "; ";
  }
  return text;
}

}  // namespace tarn::evolution::catalogue
