#pragma once

#include <exception>
#include <new>

#include "pathfinder/limits/linking_budget.hpp"
#include "pathfinder/search_limits.hpp"

namespace tarn::evolution::pathfinder {

/// Runs an action that asks the application. Returns what it failed with; null if it did not. Lets
/// pass std::bad_alloc and what stops a search.
template <class Action>
std::exception_ptr failureOf(const Action& action) {
  try {
    action();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const SearchStopped&) {
    throw;
  } catch (const LinkingBudget::Spent&) {
    throw;
  } catch (...) {
    return std::current_exception();
  }
  return nullptr;
}

}  // namespace tarn::evolution::pathfinder
