#pragma once

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "catalogue/catalogue.hpp"
#include "catalogue/conditions/conditional_path.hpp"
#include "pathfinder/search_limits.hpp"

/// What Python code hands in. Everything here throws std::invalid_argument, which names the
/// argument, for what cannot be, and TypeError for what is of another type.
namespace tarn::evolution::catalogue::python {

namespace py = pybind11;

// Rows as the package's Python code writes them: versions are texts, and None where there is
// nothing. A range without an upper bound is one version.
using OptionalText = std::optional<std::string>;
using RangeTuple = std::tuple<std::string, OptionalText>;
using DependencyTuple = std::tuple<std::string, std::vector<RangeTuple>, bool>;  // optional?
using MetamodelTuple =
    std::tuple<std::string, std::string, OptionalText, std::vector<DependencyTuple>>;
using HopTuple = std::tuple<std::string, std::string, std::string, bool>;

std::vector<CatalogueMetamodel> readMetamodels(const std::vector<MetamodelTuple>& tuples,
                                               const char* list);
std::vector<pathfinder::Hop> readHops(const std::vector<HopTuple>& tuples, const char* list);
std::vector<pathfinder::PeerRequirement> readRequirements(
    const std::vector<DependencyTuple>& tuples, const char* list);
std::vector<std::u16string> readNames(const std::vector<std::string>& names, const char* list);

/// A text that the package's Python code has not looked at.
std::string readText(const py::handle& value, const char* argument);

/// Versions by name. Any dictionary will do, whatever its keys and values.
Selection readSelection(const py::dict& selection, const char* argument);

/// What a path is to keep to: versions to avoid, as names with ranges, and metamodels to pin, each
/// where it is or at a version.
struct ConditionOptions {
  std::vector<std::pair<std::string, std::string>> avoided;
  std::vector<std::pair<std::string, OptionalText>> pinned;

  bool areNone() const { return avoided.empty() && pinned.empty(); }

  /// Asks the repository what it knows. Does not need the global lock.
  PathConditions read(BrowsableRepository& repository) const;
};

/// Limits as Python code gives them.
struct LimitOptions {
  std::optional<double> timeout;  ///< seconds
  std::optional<std::uint64_t> memory;
  py::object progress;    ///< called with stage, least proven and least found; or None
  py::object betterPath;  ///< called with each path met that weighs less than those before; or None

  /// From now on, without `betterPath`. Refers to `*this`.
  pathfinder::SearchLimits read() const;
};

}  // namespace tarn::evolution::catalogue::python
