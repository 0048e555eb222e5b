#include "errors.hpp"

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <stdexcept>
#include <string>
#include <variant>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/model/conflicting_dependencies.hpp"
#include "catalogue/picture/step_listing.hpp"
#include "messages/messages.hpp"
#include "pathfinder/search_limits.hpp"
#include "platform/exception.hpp"
#include "platform/text.hpp"

namespace tarn::evolution::catalogue::python {

namespace py = pybind11;
using foundation::core::except::Exception;
using pathfinder::SearchStopped;

namespace {

/// Raises the package's exception of that name.
template <class... Arguments>
void raise(const char* name, const Arguments&... arguments) {
  const py::object type = py::module_::import("evopath._errors").attr(name);
  const py::object error = type(arguments...);
  PyErr_SetObject(type.ptr(), error.ptr());
}

const char* nameOf(SearchStopped::Reason reason) {
  switch (reason) {
    case SearchStopped::Reason::StopRequested:
      return "SearchStopped";
    case SearchStopped::Reason::DeadlinePassed:
      return "TimedOut";
    case SearchStopped::Reason::MemoryUsedUp:
      return "MemoryUsedUp";
  }
  return "SearchStopped";
}

std::string textOf(const resource_core::MessageArgument& argument) {
  if (const auto* wide = std::get_if<std::u16string>(&argument)) {
    return fl::i18n::ustring_to_utf8(*wide);
  }
  if (const auto* narrow = std::get_if<std::string>(&argument)) return *narrow;
  return "";
}

}  // namespace

void translate(std::exception_ptr pending) {  // NOLINT(performance-unnecessary-value-param)
  try {
    if (pending) std::rethrow_exception(pending);
  } catch (const SearchStopped& error) {
    const auto& [stage, leastProven, leastFound] = error.progress();
    raise(nameOf(error.reason()), error.what(), static_cast<int>(stage), leastProven, leastFound);
  } catch (const CatalogueError& error) {
    raise("CatalogueError", error.what(), error.file(), error.place(), error.reason());
  } catch (const Exception<tarn_evo::messages::InvalidFamilyVersion>& error) {
    const auto& arguments = error.GetBaseMsgIDObj().args;
    raise("UnknownVersion", error.what(), textOf(arguments.at(1)), textOf(arguments.at(0)));
  } catch (const ConflictingDependencies& error) {
    raise("CannotBeLinked", error.what());
  } catch (const TooManyCombinations& error) {
    raise("TooManyCombinations", error.what());
  } catch (const std::length_error& error) {
    raise("TooManyCombinations", error.what());
  } catch (const std::invalid_argument& error) {
    raise("InvalidArgument", error.what());
  } catch (const std::logic_error& error) {
    raise("InconsistentData", error.what());
  }
}

}  // namespace tarn::evolution::catalogue::python
