#include "path.hpp"

#include <pybind11/stl.h>

#include <concepts>
#include <initializer_list>
#include <sstream>
#include <stdexcept>
#include <tuple>

#include "arguments.hpp"
#include "catalogue/picture/path_dot.hpp"
#include "catalogue/picture/path_html.hpp"
#include "catalogue/picture/path_mermaid.hpp"
#include "catalogue/picture/path_svg.hpp"
#include "catalogue/picture/path_text.hpp"
#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::catalogue::python {

using MoveKind = PathPicture::MoveKind;

namespace {

// A picture as tuples.
using LaneTuple = std::tuple<std::string, std::string, bool>;
using MoveTuple = std::tuple<std::size_t, std::string, std::string, int, std::vector<std::string>>;
using TieTuple = std::tuple<std::size_t, std::size_t, std::string>;
using StepTuple = std::tuple<std::uint64_t, std::vector<MoveTuple>, std::vector<TieTuple>,
                             std::vector<std::vector<std::size_t>>>;

void (*writerOf(const std::string& format))(const PathPicture&, std::ostream&) {
  if (format == "text") {
    return [](const PathPicture& picture, std::ostream& out) {
      writePathText(picture, Colouring::Plain, out);
    };
  }
  if (format == "svg") return writePathSvg;
  if (format == "html") return writePathHtml;
  if (format == "dot") return writePathDot;
  if (format == "mermaid") return writePathMermaid;
  throw std::invalid_argument("format: \"" + format + "\" is none");
}

/// Makes values of a class of the package. They are set as `object.__setattr__` does, since they
/// refuse to be set otherwise; their own constructors do the same and take five times as long.
class ValueMaker {
 public:
  ValueMaker(const char* type, std::initializer_list<const char*> fields)
      : type_(py::module_::import("evopath._model").attr(type)) {
    for (const char* field : fields) fields_.emplace_back(field);
  }

  /// A value for each field.
  template <class... Values>
  py::object operator()(const Values&... values) const {
    auto* const type = reinterpret_cast<PyTypeObject*>(type_.ptr());
    auto made = py::reinterpret_steal<py::object>(type->tp_alloc(type, 0));
    if (!made) throw py::error_already_set();
    auto field = fields_.begin();
    (set(made, *field++, objectOf(values)), ...);
    return made;
  }

 private:
  static const py::object& objectOf(const py::object& value) { return value; }

  template <class Value>
  static py::object objectOf(const Value& value) requires(!std::derived_from<Value, py::object>) {
    return py::cast(value);
  }

  static void set(const py::object& made, const py::str& field, const py::object& value) {
    if (PyObject_GenericSetAttr(made.ptr(), field.ptr(), value.ptr()) != 0) {
      throw py::error_already_set();
    }
  }

  py::object type_;
  std::vector<py::str> fields_;
};

void refuseUnless(bool isOfPath) {
  if (!isOfPath) throw std::invalid_argument("the state is none of a path");
}

PathPicture::Move readMove(const MoveTuple& tuple, std::size_t lanes) {
  const auto& [lane, from, to, kind, notes] = tuple;
  refuseUnless(lane < lanes && kind >= 0 && kind <= static_cast<int>(MoveKind::Entering));
  return {lane, from, to, static_cast<MoveKind>(kind), notes};
}

PathPicture::Step readStep(const StepTuple& tuple, std::size_t lanes) {
  const auto& [weight, moves, ties, bundles] = tuple;
  PathPicture::Step step{.moves = {}, .weight = weight};
  for (const MoveTuple& move : moves) step.moves.push_back(readMove(move, lanes));
  for (const auto& [mover, companion, reason] : ties) {
    refuseUnless(mover < lanes && companion < lanes);
    step.ties.push_back({mover, companion, reason});
  }
  for (const auto& bundle : bundles) {
    for (const std::size_t lane : bundle) refuseUnless(lane < lanes);
    step.bundles.push_back(bundle);
  }
  return step;
}

}  // namespace

Path::Path(std::shared_ptr<BrowsableRepository> repository, Question question,
           std::vector<pathfinder::BaselineHop> steps)
    : weight_(0) {
  for (const auto& step : steps) weight_ += repository->getWeight(step.hops);
  content_ = std::make_shared<const Unplanned>(
      Unplanned{std::move(repository), std::move(question), std::move(steps)});
}

Path::Path(Shown shown) : weight_(shown.picture.weight), content_(std::move(shown)) {}

std::shared_ptr<const Path::Unplanned> Path::unplanned() const {
  const auto* content = std::get_if<std::shared_ptr<const Unplanned>>(&content_);
  return content == nullptr ? nullptr : *content;
}

const Path::Shown& Path::shown() {
  if (const auto kept = unplanned()) {
    const auto& [repository, question, steps] = *kept;
    PathPlan plan = makePlan(*repository, *repository, question, steps);
    std::ostringstream json;
    writePlanJson(plan, json);
    if (unplanned()) content_ = Shown{std::move(plan.picture), std::move(json).str()};
  }
  return std::get<Shown>(content_);
}

std::string Path::render(const py::object& format) {
  const std::string asked = readText(format, "format");
  if (asked == "json") return shown().json;
  const auto write = writerOf(asked);
  std::ostringstream out;
  write(shown().picture, out);
  return std::move(out).str();
}

py::tuple Path::stepsOf(const PathPicture& picture) {
  const ValueMaker makeHop("Hop", {"name", "source", "target", "expensive"});
  const ValueMaker makeNamedVersion("NamedVersion", {"name", "version"});
  const ValueMaker makeStep("Step", {"weight", "hops", "brought_in"});
  std::vector<py::str> names;
  for (const PathPicture::Lane& lane : picture.lanes) names.emplace_back(lane.name);
  py::list steps;
  for (const PathPicture::Step& step : picture.steps) {
    py::list hops;
    py::list broughtIn;
    for (const auto& [lane, from, to, kind, notes] : step.moves) {
      if (kind == MoveKind::Entering) {
        broughtIn.append(makeNamedVersion(names[lane], to));
      } else {
        hops.append(makeHop(names[lane], from, to, kind == MoveKind::Expensive));
      }
    }
    steps.append(makeStep(step.weight, py::tuple(hops), py::tuple(broughtIn)));
  }
  return py::tuple(steps);
}

py::tuple Path::steps() {
  const auto kept = unplanned();
  return stepsOf(kept == nullptr ? shown().picture
                                 : drawPath(weightsOf(*kept->repository), kept->steps));
}

py::tuple Path::state() {
  const auto& [picture, json] = shown();
  std::vector<LaneTuple> lanes;
  for (const auto& [name, start, isMoved] : picture.lanes) lanes.emplace_back(name, start, isMoved);
  std::vector<StepTuple> steps;
  for (const auto& [moves, weight, ties, bundles] : picture.steps) {
    auto& [weightToo, moveTuples, tieTuples, bundlesToo] = steps.emplace_back();
    weightToo = weight;
    for (const auto& [lane, from, to, kind, notes] : moves) {
      moveTuples.emplace_back(lane, from, to, static_cast<int>(kind), notes);
    }
    for (const auto& [mover, companion, reason] : ties) {
      tieTuples.emplace_back(mover, companion, reason);
    }
    bundlesToo = bundles;
  }
  return py::make_tuple(lanes, steps, json);
}

Path Path::ofState(const py::tuple& state) {
  const auto [lanes, steps, json] =
      state.cast<std::tuple<std::vector<LaneTuple>, std::vector<StepTuple>, std::string>>();
  Shown shown{{}, json};
  for (const auto& [name, start, isMoved] : lanes) {
    shown.picture.lanes.push_back({name, start, isMoved});
  }
  for (const StepTuple& step : steps) {
    shown.picture.steps.push_back(readStep(step, lanes.size()));
    shown.picture.weight += shown.picture.steps.back().weight;
  }
  return Path(std::move(shown));
}

}  // namespace tarn::evolution::catalogue::python
