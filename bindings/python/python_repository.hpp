#pragma once

#include <pybind11/pybind11.h>

#include "catalogue/model/row_repository.hpp"

namespace tarn::evolution::catalogue::python {

namespace py = pybind11;

/// What Python code answers, on whichever thread asks. What it raises is a
/// pybind11::error_already_set.
class PythonRepository : public RowRepository {
 public:
  /// Requires the global lock, as its destruction does. `findMetamodels` is called with a name and
  /// a list of pairs of bounds, or None; `findHops` with a name and a version, or None;
  /// `findRequirements` with a name and a version, unless it is None. They return lists of tuples
  /// (arguments.hpp), and the last one None for what the row of the version requires.
  PythonRepository(py::function findMetamodels, py::function findHops, py::function listNames,
                   py::object findRequirements);
  PythonRepository(const PythonRepository&) = delete;
  PythonRepository& operator=(const PythonRepository&) = delete;

  void findRequirements(const pathfinder::Metamodel& metamodel,
                        std::vector<pathfinder::PeerRequirement>& result) override;
  std::vector<std::u16string> listNames() override;

 protected:
  std::vector<CatalogueMetamodel> rowsOf(const std::u16string& name,
                                         std::span<const pathfinder::VersionRange> ranges) override;
  std::vector<pathfinder::Hop> hopsOf(const std::u16string& name,
                                      const pathfinder::VersionId* from) override;

 private:
  bool findToldRequirements(const pathfinder::Metamodel& metamodel,
                            std::vector<pathfinder::PeerRequirement>& result);

  const py::function findMetamodels_;
  const py::function findHops_;
  const py::function listNames_;
  const py::object findRequirements_;
};

}  // namespace tarn::evolution::catalogue::python
