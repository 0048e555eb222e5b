#pragma once

#include <exception>

namespace tarn::evolution::catalogue::python {

/// Raises an exception of the library as one of the package's own, with its parts as fields. Any
/// other is left to others.
void translate(std::exception_ptr pending);

}  // namespace tarn::evolution::catalogue::python
