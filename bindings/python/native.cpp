// The part of the Python package that calls the library: texts, tuples and dictionaries in and out.
// What it hands out is made into typed objects by the package's Python code.
#include <pybind11/functional.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <sstream>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/catalogue_repository.hpp"
#include "catalogue/check/check.hpp"
#include "catalogue/check/findings_json.hpp"
#include "catalogue/check/open_draft.hpp"
#include "catalogue/explanation/explanation_json.hpp"
#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"
#include "catalogue/model/row_repository.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/picture/path_dot.hpp"
#include "catalogue/picture/path_html.hpp"
#include "catalogue/picture/path_json.hpp"
#include "catalogue/picture/path_mermaid.hpp"
#include "catalogue/picture/path_svg.hpp"
#include "catalogue/picture/path_text.hpp"
#include "catalogue/picture/step_listing.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "catalogue/version_text.hpp"
#include "interruption.hpp"
#include "pathfinder/version.hpp"
#include "platform/text.hpp"

namespace py = pybind11;
using namespace tarn::evolution::catalogue;
using namespace tarn::evolution::pathfinder;
using fl::i18n::ustring_to_utf8;

namespace {

// Rows as Python code writes them: versions are texts, and None where there is nothing.
using OptionalText = std::optional<std::string>;
using DependencyTuple = std::tuple<std::string, std::string, OptionalText>;  // name, lower, upper
using MetamodelTuple =
    std::tuple<std::string, std::string, OptionalText, std::vector<DependencyTuple>>;
using HopTuple = std::tuple<std::string, std::string, std::string, bool>;
using SelectionTexts = std::vector<std::pair<std::string, std::string>>;

VersionRange readRange(const std::string& lower, const OptionalText& upper) {
  return upper ? parseRange(lower, *upper) : VersionRange::singleVersion(parseVersion(lower));
}

CatalogueMetamodel readMetamodel(const MetamodelTuple& tuple) {
  const auto& [name, version, semver, dependencies] = tuple;
  CatalogueMetamodel result{.descriptor = {parseName(name), parseVersion(version), {}},
                            .equivalent = std::nullopt};
  for (const auto& [needed, lower, upper] : dependencies) {
    result.descriptor.dependencies.emplace_back(parseName(needed), readRange(lower, upper));
  }
  if (!semver) return result;
  if (result.descriptor.version.isSemVer()) {
    throw std::invalid_argument("the version " + version + " has no need of a semver");
  }
  result.equivalent = parseSemVer(*semver);
  return result;
}

Hop readHop(const HopTuple& tuple) {
  const auto& [name, source, target, expensive] = tuple;
  return {parseName(name), parseVersion(source), parseVersion(target), expensive};
}

template <class Tuple, class Read>
auto readAll(const std::vector<Tuple>& tuples, const char* list, const Read& read) {
  std::vector<decltype(read(tuples.front()))> result;
  for (const Tuple& tuple : tuples) {
    try {
      result.push_back(read(tuple));
    } catch (const std::invalid_argument& error) {
      throw std::invalid_argument(std::string(list) + "[" + std::to_string(result.size()) +
                                  "]: " + error.what());
    }
  }
  return result;
}

Selection readSelection(const SelectionTexts& texts, const std::string& side) {
  Selection result;
  for (const auto& [name, version] : texts) {
    try {
      result.emplace(parseName(name), parseVersion(version));
    } catch (const std::invalid_argument& error) {
      throw std::invalid_argument(side + "[\"" + name + "\"]: " + error.what());
    }
  }
  return result;
}

/// What Python code answers, on whichever thread asks.
class PythonRepository : public RowRepository {
 public:
  PythonRepository(py::function findMetamodels, py::function findHops, py::function listNames)
      : findMetamodels_(std::move(findMetamodels)),
        findHops_(std::move(findHops)),
        listNames_(std::move(listNames)) {}
  PythonRepository(const PythonRepository&) = delete;
  PythonRepository& operator=(const PythonRepository&) = delete;

  std::vector<std::u16string> listNames() override {
    const py::gil_scoped_acquire held;
    return readAll(listNames_().cast<std::vector<std::string>>(), "list_names", parseName);
  }

  /// Rows of Python code have none.
  std::u16string findVersionNote(const std::u16string& /*name*/,
                                 const VersionId& /*version*/) override {
    return {};
  }

 protected:
  std::vector<CatalogueMetamodel> rowsOf(const std::u16string& name,
                                         const VersionRange* range) override {
    OptionalText lower;
    OptionalText upper;
    if (range != nullptr) {
      const auto version = findSingleVersion(*range);
      lower = version ? textOf(*version) : textOf(range->getSemVerRange().lower);
      if (!version) upper = textOf(range->getSemVerRange().upper);
    }
    const py::gil_scoped_acquire held;
    const py::object rows = findMetamodels_(ustring_to_utf8(name), lower, upper);
    return readAll(rows.cast<std::vector<MetamodelTuple>>(), "find_metamodels", readMetamodel);
  }

  std::vector<Hop> hopsOf(const std::u16string& name, const VersionId* from) override {
    OptionalText source;
    if (from != nullptr) source = textOf(*from);
    const py::gil_scoped_acquire held;
    const py::object rows = findHops_(ustring_to_utf8(name), source);
    return readAll(rows.cast<std::vector<HopTuple>>(), "find_hops", readHop);
  }

 private:
  const py::function findMetamodels_;
  const py::function findHops_;
  const py::function listNames_;
};

/// A picture that can be written in several forms.
class Picture {
 public:
  explicit Picture(PathPicture picture) : picture_(std::move(picture)) {}

  std::string render(const std::string& format) const {
    std::ostringstream out;
    if (format == "text") {
      writePathText(picture_, Colouring::Plain, out);
    } else {
      writerOf(format)(picture_, out);
    }
    return out.str();
  }

  py::list steps() const { return stepsOf(picture_); }

  /// [(weight, [(name, from, to, expensive)], [(name, version)])]
  static py::list stepsOf(const PathPicture& picture) {
    py::list steps;
    for (const PathPicture::Step& step : picture.steps) {
      py::list hops;
      py::list broughtIn;
      for (const PathPicture::Move& move : step.moves) {
        const std::string& name = picture.lanes[move.lane].name;
        if (move.kind == PathPicture::MoveKind::Entering) {
          broughtIn.append(py::make_tuple(name, move.to));
        } else {
          hops.append(py::make_tuple(name, move.from, move.to,
                                     move.kind == PathPicture::MoveKind::Expensive));
        }
      }
      steps.append(py::make_tuple(step.weight, hops, broughtIn));
    }
    return steps;
  }

 private:
  static void (*writerOf(const std::string& format))(const PathPicture&, std::ostream&) {
    if (format == "json") return writePathJson;
    if (format == "svg") return writePathSvg;
    if (format == "html") return writePathHtml;
    if (format == "dot") return writePathDot;
    if (format == "mermaid") return writePathMermaid;
    throw std::invalid_argument("format: \"" + format + "\" is none");
  }

  PathPicture picture_;
};

/// Limits as Python code gives them.
struct LimitOptions {
  std::optional<double> timeout;  ///< seconds
  std::optional<std::uint64_t> memory;
  py::object progress;  ///< called with stage, least proven and least found; or None

  SearchLimits read() const {
    SearchLimits limits;
    if (timeout) {
      using Seconds = std::chrono::duration<double>;
      const auto now = std::chrono::steady_clock::now();
      const double most = Seconds(std::chrono::steady_clock::time_point::max() - now).count() / 2;
      if (*timeout < most) {
        const Seconds left(std::max(*timeout, 0.0));
        limits.deadline =
            now + std::chrono::duration_cast<std::chrono::steady_clock::duration>(left);
      }
    }
    if (memory) limits.memory = *memory;
    if (!progress.is_none()) {
      limits.progress = [this](const SearchProgress& now) {
        const py::gil_scoped_acquire held;
        progress(static_cast<int>(now.stage), now.leastProven, now.leastFound);
      };
    }
    return limits;
  }
};

std::string directionName(VersionRepository::Direction direction) {
  if (direction == VersionRepository::Forward) return "forward";
  return direction == VersionRepository::Backward ? "backward" : "mixed";
}

/// What can be asked.
class Repository {
 public:
  explicit Repository(std::unique_ptr<BrowsableRepository> repository)
      : repository_(std::move(repository)) {}

  std::optional<Picture> findPath(const SelectionTexts& source, const SelectionTexts& target,
                                  const LimitOptions& options) {
    const Selection from = readSelection(source, "source");
    const Selection to = readSelection(target, "target");
    return interruptible(options.read(), [&](const SearchLimits& limits) -> std::optional<Picture> {
      const auto path = repository_->findPath(from, to, limits);
      if (!path) return std::nullopt;
      PathPicture picture =
          path->empty() ? drawSource(from) : drawPath(weightsOf(*repository_), *path);
      addNotes(*repository_, picture);
      return Picture(std::move(picture));
    });
  }

  /// The explanation as JSON and as text.
  std::pair<std::string, std::string> explain(const SelectionTexts& source,
                                              const SelectionTexts& target, std::uint64_t budget,
                                              const LimitOptions& options) {
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

  /// [(baseline, direction, steps)], baselines being {name: version}.
  py::list steps(const SelectionTexts& at, const std::string& direction, std::uint64_t limit) {
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
        groups.append(
            py::make_tuple(directionName(group.direction), Picture::stepsOf(group.picture)));
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
  static SelectionTexts textsOf(const Selection& selection) {
    SelectionTexts result;
    for (const auto& [name, version] : selection) {
      result.emplace_back(ustring_to_utf8(name), textOf(version));
    }
    std::sort(result.begin(), result.end());
    return result;
  }

  /// Where there is nothing to do, the picture shows what is there.
  PathPicture drawSource(const Selection& selection) {
    try {
      const auto sources = repository_->combine(selection);
      if (!sources.empty()) return drawPath(*repository_, sources.front(), {});
    } catch (const foundation::core::except::IMsgIDException&) {  // not known, or not to be linked
    }
    return {};
  }

  const std::unique_ptr<BrowsableRepository> repository_;
};

std::unique_ptr<Repository> load(const std::string& file) {
  const py::gil_scoped_release released;
  return std::make_unique<Repository>(openCatalogue(file));
}

std::unique_ptr<Repository> fromRows(const std::vector<MetamodelTuple>& metamodels,
                                     const std::vector<HopTuple>& hops) {
  const py::gil_scoped_release released;
  CatalogueContent content{.metamodels = readAll(metamodels, "metamodels", readMetamodel),
                           .hops = readAll(hops, "hops", readHop),
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

std::string argumentText(const resource_core::MessageArgument& argument) {
  if (const auto* wide = std::get_if<std::u16string>(&argument)) return ustring_to_utf8(*wide);
  if (const auto* narrow = std::get_if<std::string>(&argument)) return *narrow;
  return "";
}

/// Raises the package's own exception of that name.
template <class... Arguments>
void raise(const char* name, const Arguments&... arguments) {
  const py::object type = py::module_::import("evopath._errors").attr(name);
  const py::object error = type(arguments...);
  PyErr_SetObject(type.ptr(), error.ptr());
}

void translate(std::exception_ptr pending) {
  using foundation::core::except::Exception;
  try {
    if (pending) std::rethrow_exception(pending);
  } catch (const SearchStopped& error) {
    const char* const name = error.reason() == SearchStopped::Reason::DeadlinePassed ? "TimedOut"
                             : error.reason() == SearchStopped::Reason::MemoryUsedUp
                                 ? "MemoryUsedUp"
                                 : "SearchStopped";
    raise(name, error.what(), static_cast<int>(error.progress().stage),
          error.progress().leastProven, error.progress().leastFound);
  } catch (const CatalogueError& error) {
    raise("CatalogueError", error.what(), error.file(), error.place(), error.reason());
  } catch (const Exception<tarn_evo::messages::InvalidFamilyVersion>& error) {
    const auto& arguments = error.GetBaseMsgIDObj().args;
    raise("UnknownVersion", error.what(), argumentText(arguments.at(1)),
          argumentText(arguments.at(0)));
  } catch (const ConflictingDependencies& error) {
    raise("CannotBeLinked", error.what());
  } catch (const TooManyCombinations& error) {
    raise("TooManyCombinations", error.what());
  } catch (const std::invalid_argument& error) {
    raise("InvalidArgument", error.what());
  } catch (const std::logic_error& error) {
    raise("InconsistentData", error.what());
  }
}

}  // namespace

PYBIND11_MODULE(_native, module) {
  py::register_exception_translator(translate);
  module.attr("version") = TARN_EVOLUTION_PATHFINDER_VERSION_TEXT;

  py::class_<Picture>(module, "Picture")
      .def("render", &Picture::render, py::arg("format"))
      .def("steps", &Picture::steps);

  py::class_<LimitOptions>(module, "Limits")
      .def(py::init([](std::optional<double> timeout, std::optional<std::uint64_t> memory,
                       py::object progress) {
             return LimitOptions{timeout, memory, std::move(progress)};
           }),
           py::arg("timeout"), py::arg("memory"), py::arg("progress"));

  py::class_<Repository>(module, "Repository")
      .def("find_path", &Repository::findPath, py::arg("source"), py::arg("target"),
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
      [](py::function findMetamodels, py::function findHops, py::function listNames) {
        return std::make_unique<Repository>(std::make_unique<PythonRepository>(
            std::move(findMetamodels), std::move(findHops), std::move(listNames)));
      },
      py::arg("find_metamodels"), py::arg("find_hops"), py::arg("list_names"));
  module.def("check", &checkFile, py::arg("file"), py::arg("least"));
}
