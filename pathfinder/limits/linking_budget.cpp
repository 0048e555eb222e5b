#include "pathfinder/limits/linking_budget.hpp"

namespace tarn::evolution::pathfinder {

LinkingBudget*& LinkingBudget::current() {
  thread_local LinkingBudget* budget = nullptr;
  return budget;
}

}  // namespace tarn::evolution::pathfinder
