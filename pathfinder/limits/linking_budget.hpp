#pragma once

#include <cstddef>

namespace tarn::evolution::pathfinder {

/// While it lives, bounds how many linked metamodels are made on this thread beyond the first one
/// of each version, and how many baselines are combined at once, so that whoever asked can take
/// another way before a product takes all time and memory. Many versions are no product.
class LinkingBudget {
 public:
  /// Thrown when the budget is spent, through operations of the application; no std::exception, so
  /// that nobody takes it for a fault.
  struct Spent {};

  explicit LinkingBudget(std::size_t most) : left_(most), outer_(current()) { current() = this; }
  LinkingBudget(const LinkingBudget&) = delete;
  LinkingBudget& operator=(const LinkingBudget&) = delete;
  ~LinkingBudget() { current() = outer_; }

  /// Throws if there are not so many left in this thread's budget.
  static void check(std::size_t count) {
    const LinkingBudget* const budget = current();
    if (budget != nullptr && count > budget->left_) throw Spent();
  }

  /// Takes so many from this thread's budget, if it has one.
  static void take(std::size_t count) {
    check(count);
    if (LinkingBudget* const budget = current()) budget->left_ -= count;
  }

 private:
  static LinkingBudget*& current();

  std::size_t left_;
  LinkingBudget* const outer_;
};

/// As many linked metamodels, beyond one of each version, are made for selections of so many names
/// by those who cannot do without them, or can tell less.
constexpr std::size_t linkingBudgetFor(std::size_t names) {
  return 5000 + 10 * names;
}

/// As many are made for a question between selections of so many names before it is looked whether
/// it can be answered without them, which takes about as long as making these.
constexpr std::size_t linkingBudgetBesideDependencies(std::size_t names) {
  return 400 + 2 * names;
}

}  // namespace tarn::evolution::pathfinder
