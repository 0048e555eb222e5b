#pragma once

#include <cstddef>

namespace tarn::evolution::pathfinder {

/// While it lives, bounds how many linked metamodels are made on this thread beyond the first ones
/// of each version, and how many baselines are combined at once, so that whoever asked can take
/// another way before a product takes all time and memory. Many versions are no product.
class LinkingBudget {
 public:
  /// Thrown when the budget is spent, through operations of the application; no std::exception, so
  /// that nobody takes it for a fault.
  struct Spent {};

  /// `freeOfEach`: as many linked metamodels of each version take nothing.
  explicit LinkingBudget(std::size_t most, std::size_t freeOfEach = 1)
      : left_(most), freeOfEach_(freeOfEach), outer_(current_) {
    current_ = this;
  }
  LinkingBudget(const LinkingBudget&) = delete;
  LinkingBudget& operator=(const LinkingBudget&) = delete;
  ~LinkingBudget() { current_ = outer_; }

  /// Throws if there are not so many left in this thread's budget.
  static void check(std::size_t count) {
    const LinkingBudget* const budget = current_;
    if (budget != nullptr && count > budget->left_) throw Spent();
  }

  /// Takes what a version with so many linked metamodels costs from this thread's budget, if it has
  /// one.
  static void take(std::size_t linked) {
    LinkingBudget* const budget = current_;
    if (budget == nullptr || linked <= budget->freeOfEach_) return;
    check(linked - budget->freeOfEach_);
    budget->left_ -= linked - budget->freeOfEach_;
  }

 private:
  static inline constinit thread_local LinkingBudget* current_ = nullptr;

  std::size_t left_;
  const std::size_t freeOfEach_;
  LinkingBudget* const outer_;
};

/// How many linked metamodels, beyond one of each version, may be made for a selection of so many
/// names where no other way is left, or known.
constexpr std::size_t linkingBudgetFor(std::size_t names) {
  return 5000 + 10 * names;
}

/// The budget of a question between selections of so many names before it is tried without linking,
/// which takes about as long as making these. Up to four linked metamodels of each version are
/// free: a product has many of some versions.
inline LinkingBudget linkingBudgetBesideDependencies(std::size_t names) {
  return LinkingBudget(400 + 2 * names, 4);
}

}  // namespace tarn::evolution::pathfinder
