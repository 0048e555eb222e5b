#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "catalogue/catalogue_error.hpp"

namespace tarn::evolution::catalogue {

/// What becomes of the faults that readers of foreign catalogues meet: the first one ends a strict
/// import; a lenient one leaves out what is at fault and goes on.
class ImportLog {
 public:
  explicit ImportLog(bool isLenient) : isLenient_(isLenient) {}

  /// Throws the fault on, or notes that what is at fault is left out.
  void leaveOut(const CatalogueError& fault) {
    if (!isLenient_) throw CatalogueError(fault);
    leftOut_.push_back(fault);
  }

  /// Notes what is left out in any case, since it is of no use.
  void mention(const CatalogueError& reason) { leftOut_.push_back(reason); }

  /// Runs `part`, whose CatalogueErrors are faults of no more than that part.
  template <class Part>
  void attempt(const Part& part) {
    try {
      part();
    } catch (const CatalogueError& fault) {
      if (!isLenient_) throw;
      leftOut_.push_back(fault);
    }
  }

  /// In the order in which they were met.
  std::vector<CatalogueError> takeLeftOut() { return std::move(leftOut_); }

 private:
  bool isLenient_;
  std::vector<CatalogueError> leftOut_;
};

}  // namespace tarn::evolution::catalogue
