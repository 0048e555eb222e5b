#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "catalogue/picture/path_plan.hpp"

namespace tarn::evolution::catalogue::python {

namespace py = pybind11;

/// The path of an answer. Its plan is made when somebody wants to see more of it than what it
/// weighs, for that takes as long as a question that is easy. Requires the global lock.
class Path {
 public:
  /// Keeps the repository, which tells what there is to read of hops and versions, and what ties
  /// them.
  Path(std::shared_ptr<BrowsableRepository> repository, Question question,
       std::vector<pathfinder::BaselineHop> steps);

  std::uint64_t weight() const { return weight_; }

  /// The package's Step of each.
  py::tuple steps();

  /// Throws std::invalid_argument for a format that is none.
  std::string render(const py::object& format);

  /// To be written to a file or sent to another process, and made again from.
  py::tuple state();
  static Path ofState(const py::tuple& state);

  static py::tuple stepsOf(const PathPicture& picture);

 private:
  struct Unplanned {
    std::shared_ptr<BrowsableRepository> repository;
    Question question;
    std::vector<pathfinder::BaselineHop> steps;
  };

  struct Shown {
    PathPicture picture;
    std::string json;
  };

  explicit Path(Shown shown);

  /// Null where the path is shown.
  std::shared_ptr<const Unplanned> unplanned() const;
  const Shown& shown();

  std::uint64_t weight_;

  // What is being planned is kept by whoever plans: the repository may be Python code, which may
  // look at the same path, or let another thread do so.
  std::variant<std::shared_ptr<const Unplanned>, Shown> content_;
};

}  // namespace tarn::evolution::catalogue::python
