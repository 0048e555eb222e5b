#include "python_repository.hpp"

#include "arguments.hpp"
#include "catalogue/range_union.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/text/version_range.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue::python {

using fl::i18n::ustring_to_utf8;
using pathfinder::Hop;
using pathfinder::VersionId;
using pathfinder::VersionRange;

namespace {

RangeTuple tupleOf(const VersionRange& range) {
  if (const auto single = findSingleVersion(range)) return {textOf(*single), std::nullopt};
  const VersionBounds bounds = *boundsOf(range);
  return {textOf(bounds.lower), textOf(bounds.upper)};
}

std::optional<std::vector<RangeTuple>> tuplesOf(std::span<const VersionRange> ranges) {
  if (ranges.empty()) return std::nullopt;
  std::vector<RangeTuple> result;
  for (const VersionRange& range : ranges) result.push_back(tupleOf(range));
  return result;
}

}  // namespace

PythonRepository::PythonRepository(py::function findMetamodels, py::function findHops,
                                   py::function listNames, py::object findRequirements)
    : findMetamodels_(std::move(findMetamodels)),
      findHops_(std::move(findHops)),
      listNames_(std::move(listNames)),
      findRequirements_(std::move(findRequirements)) {
  if (!findRequirements_.is_none()) useRequirements(*this);
}

void PythonRepository::findRequirements(const pathfinder::Metamodel& metamodel,
                                        std::vector<pathfinder::PeerRequirement>& result) {
  const bool areTold = !findRequirements_.is_none() && findToldRequirements(metamodel, result);
  if (!areTold) RowRepository::findRequirements(metamodel, result);
}

/// Whether Python code tells them.
bool PythonRepository::findToldRequirements(const pathfinder::Metamodel& metamodel,
                                            std::vector<pathfinder::PeerRequirement>& result) {
  const py::gil_scoped_acquire held;
  const py::object told =
      findRequirements_(ustring_to_utf8(metamodel.name), textOf(metamodel.version));
  if (told.is_none()) return false;
  result = readRequirements(told.cast<std::vector<DependencyTuple>>(), "find_requirements()");
  return true;
}

std::vector<std::u16string> PythonRepository::listNames() {
  const py::gil_scoped_acquire held;
  return readNames(listNames_().cast<std::vector<std::string>>(), "list_names()");
}

std::vector<CatalogueMetamodel> PythonRepository::rowsOf(const std::u16string& name,
                                                         std::span<const VersionRange> ranges) {
  const auto tuples = tuplesOf(ranges);
  const py::gil_scoped_acquire held;
  const py::object rows = findMetamodels_(ustring_to_utf8(name), tuples);
  return readMetamodels(rows.cast<std::vector<MetamodelTuple>>(), "find_metamodels()");
}

std::vector<Hop> PythonRepository::hopsOf(const std::u16string& name, const VersionId* from) {
  const OptionalText source = from == nullptr ? std::nullopt : OptionalText(textOf(*from));
  const py::gil_scoped_acquire held;
  const py::object rows = findHops_(ustring_to_utf8(name), source);
  return readHops(rows.cast<std::vector<HopTuple>>(), "find_hops()");
}

}  // namespace tarn::evolution::catalogue::python
