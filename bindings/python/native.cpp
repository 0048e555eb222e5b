// The part of the Python package that calls the library: texts, tuples and dictionaries in and out.
// What it hands out is made into typed objects by the package's Python code.
#include <pybind11/functional.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <map>
#include <memory>
#include <sstream>

#include "arguments.hpp"
#include "catalogue/catalogue_repository.hpp"
#include "catalogue/check/check.hpp"
#include "catalogue/check/findings_json.hpp"
#include "catalogue/check/open_draft.hpp"
#include "catalogue/conditions/conditional_path.hpp"
#include "catalogue/explanation/explanation_json.hpp"
#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/picture/step_listing.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/printed_text.hpp"
#include "errors.hpp"
#include "interruption.hpp"
#include "path.hpp"
#include "pathfinder/version.hpp"
#include "platform/text.hpp"
#include "python_repository.hpp"

namespace tarn::evolution::catalogue::python {

using fl::i18n::ustring_to_utf8;
using pathfinder::SearchLimits;
using pathfinder::VersionRepository;

namespace {

std::string directionName(VersionRepository::Direction direction) {
  if (direction == VersionRepository::Forward) return "forward";
  return direction == VersionRepository::Backward ? "backward" : "mixed";
}

/// What can be asked.
class Repository {
  using Steps = std::vector<pathfinder::BaselineHop>;

 public:
  explicit Repository(std::unique_ptr<BrowsableRepository> repository)
      : repository_(std::move(repository)) {}

  std::optional<Path> findPath(const py::dict& source, const py::dict& target,
                               const LimitOptions& options, const ConditionOptions& conditions) {
    Question question{.from = readSelection(source, "source"),
                      .to = readSelection(target, "target")};
    SearchLimits within = options.read();
    if (!options.betterPath.is_none()) {
      within.betterPath = [&](const Steps& better) {
        const py::gil_scoped_acquire held;
        options.betterPath(Path(repository_, question, better));
      };
    }
    auto steps = interruptible(std::move(within), [&](const SearchLimits& limits) {
      return conditions.areNone()
                 ? repository_->findPath(question.from, question.to, limits)
                 : findConditionalPath(question.from, question.to, conditions, limits);
    });
    if (!steps) return std::nullopt;
    return Path(repository_, std::move(question), *std::move(steps));
  }

  /// "forward", "backward" or "mixed"; None where a selection is not consistent.
  std::optional<std::string> findDirection(const py::dict& source, const py::dict& target,
                                           const LimitOptions& options) {
    const Selection from = readSelection(source, "source");
    const Selection to = readSelection(target, "target");
    const auto direction = interruptible(options.read(), [&](const SearchLimits& limits) {
      return repository_->findDirection(from, to, limits);
    });
    if (!direction) return std::nullopt;
    return directionName(*direction);
  }

  /// The explanation as JSON and as text.
  std::pair<std::string, std::string> explain(const py::dict& source, const py::dict& target,
                                              std::uint64_t budget, const LimitOptions& options) {
    const Question question{.from = readSelection(source, "source"),
                            .to = readSelection(target, "target")};
    return interruptible(options.read(), [&](const SearchLimits& limits) {
      const Explanation found =
          tarn::evolution::catalogue::explain(*repository_, question, budget, limits);
      std::ostringstream json;
      std::ostringstream text;
      writeExplanationJson(found, weightsOf(*repository_), json);
      writeExplanationText(found, weightsOf(*repository_), text);
      return std::pair(json.str(), text.str());
    });
  }

  /// [(baseline, [(direction, steps)])], baselines being [(name, version)].
  py::list steps(const py::dict& at, const std::string& direction, std::uint64_t limit) {
    const Selection selection = readSelection(at, "at");
    const auto asked = direction == "forward"    ? VersionRepository::Forward
                       : direction == "backward" ? VersionRepository::Backward
                                                 : VersionRepository::Unknown;
    std::vector<StepListing> listings;
    {
      const py::gil_scoped_release released;
      listings = listSteps(*repository_, selection, asked, limit);
    }
    py::list result;
    for (const StepListing& listing : listings) {
      py::list baseline;
      for (const auto& [name, linked] : listing.baseline.metamodels) {
        baseline.append(py::make_tuple(ustring_to_utf8(name), textOf(linked->version)));
      }
      py::list groups;
      for (const StepListing::Group& group : listing.groups) {
        groups.append(py::make_tuple(directionName(group.direction), Path::stepsOf(group.picture)));
      }
      result.append(py::make_tuple(baseline, groups));
    }
    return result;
  }

  /// The question that the catalogue comes with, as two lists of names and versions; or None.
  py::object question() {
    std::optional<Question> found;
    {
      const py::gil_scoped_release released;
      found = repository_->getQuestion();
    }
    if (!found) return py::none();
    return py::make_tuple(textsOf(found->from), textsOf(found->to));
  }

  void forgetPaths() {
    const py::gil_scoped_release released;
    repository_->invalidatePathfindingCache();
  }

 private:
  static std::vector<std::pair<std::string, std::string>> textsOf(const Selection& selection) {
    std::vector<std::pair<std::string, std::string>> result;
    for (const auto& [name, version] : selection) {
      result.emplace_back(ustring_to_utf8(name), textOf(version));
    }
    std::sort(result.begin(), result.end());
    return result;
  }

  std::optional<Steps> findConditionalPath(const Selection& from, const Selection& to,
                                           const ConditionOptions& conditions,
                                           const SearchLimits& limits) {
    const PathConditions read = conditions.read(*repository_);
    std::vector<PathGoal> goals;
    for (const auto& [name, version] : std::map(to.begin(), to.end())) {
      const bool isKnown = repository_->getMetamodel(name, version).has_value();
      if (!isKnown) repository_->combine({{name, version}});  // which says so
      goals.push_back({name, {version}});
    }
    return catalogue::findConditionalPath(*repository_, from, goals, read, limits);
  }

  const std::shared_ptr<BrowsableRepository> repository_;
};

std::unique_ptr<Repository> load(const std::string& file) {
  const py::gil_scoped_release released;
  return std::make_unique<Repository>(openCatalogue(file));
}

std::unique_ptr<Repository> fromRows(const std::vector<MetamodelTuple>& metamodels,
                                     const std::vector<HopTuple>& hops) {
  const py::gil_scoped_release released;
  CatalogueContent content{.metamodels = readMetamodels(metamodels, "metamodels"),
                           .hops = readHops(hops, "hops"),
                           .question = std::nullopt};
  return std::make_unique<Repository>(
      std::make_unique<CatalogueRepository>(Catalogue(std::move(content))));
}

std::string checkFile(const std::string& file, const std::string& least) {
  const py::gil_scoped_release released;
  const Severity severity = least == "error"     ? Severity::Error
                            : least == "warning" ? Severity::Warning
                                                 : Severity::Note;
  std::ostringstream out;
  writeFindingsJson(file, check(readDraft(file)), severity, out);
  return out.str();
}

}  // namespace

PYBIND11_MODULE(_native, module) {
  py::register_exception_translator(translate);
  module.attr("version") = TARN_EVOLUTION_PATHFINDER_VERSION_TEXT;

  py::class_<Path>(module, "Path")
      .def_property_readonly("weight", &Path::weight)
      .def("steps", &Path::steps)
      .def("render", &Path::render, py::arg("format"))
      .def(py::pickle([](Path& path) { return path.state(); }, &Path::ofState));

  py::class_<LimitOptions>(module, "Limits")
      .def(py::init([](std::optional<double> timeout, std::optional<std::uint64_t> memory,
                       py::object progress, py::object betterPath) {
             return LimitOptions{timeout, memory, std::move(progress), std::move(betterPath)};
           }),
           py::arg("timeout"), py::arg("memory"), py::arg("progress"), py::arg("better_path"));

  py::class_<ConditionOptions>(module, "Conditions")
      .def(py::init([](decltype(ConditionOptions::avoided) avoided,
                       decltype(ConditionOptions::pinned) pinned) {
             return ConditionOptions{std::move(avoided), std::move(pinned)};
           }),
           py::arg("avoided"), py::arg("pinned"));

  py::class_<Repository>(module, "Repository")
      .def("find_path", &Repository::findPath, py::arg("source"), py::arg("target"),
           py::arg("limits"), py::arg("conditions"))
      .def("find_direction", &Repository::findDirection, py::arg("source"), py::arg("target"),
           py::arg("limits"))
      .def("explain", &Repository::explain, py::arg("source"), py::arg("target"), py::arg("budget"),
           py::arg("limits"))
      .def("steps", &Repository::steps, py::arg("at"), py::arg("direction"), py::arg("limit"))
      .def("question", &Repository::question)
      .def("forget_paths", &Repository::forgetPaths);

  module.def("load", &load, py::arg("file"));
  module.def("from_rows", &fromRows, py::arg("metamodels"), py::arg("hops"));
  module.def(
      "from_functions",
      [](py::function findMetamodels, py::function findHops, py::function listNames,
         py::object findRequirements) {
        return std::make_unique<Repository>(
            std::make_unique<PythonRepository>(std::move(findMetamodels), std::move(findHops),
                                               std::move(listNames), std::move(findRequirements)));
      },
      py::arg("find_metamodels"), py::arg("find_hops"), py::arg("list_names"),
      py::arg("find_requirements"));
  module.def("check", &checkFile, py::arg("file"), py::arg("least"));
}

}  // namespace tarn::evolution::catalogue::python
