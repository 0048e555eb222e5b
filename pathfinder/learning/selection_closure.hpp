#pragma once

#include <algorithm>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "pathfinder/learning/sat_solver.hpp"
#include "pathfinder/learning/selection_host.hpp"
#include "pathfinder/linking/selection_combination.hpp"

namespace tarn::evolution::pathfinder {

/// Thrown for questions that dependencies alone do not settle.
struct NotForDependencies {};

/// What a version depends on, as linking orders it: the choice for the first of these decides most
/// on the order of its linked metamodels. Throws NotForDependencies where two of them, or the
/// version itself, have one name.
std::vector<const Dependency*> dependenciesInLinkingOrder(const Metamodel& metamodel);

/// A selection and what its versions bring in, without linking them: for each name the versions
/// that its baselines may hold.
class SelectionClosure {
 public:
  /// A version that may be held, and what it depends on.
  struct Version {
    Metamodel descriptor;

    /// The names that it depends on, in the order of linking. For each the versions that it admits,
    /// as their places among those of the name, in the application's order.
    struct Need {
      const std::u16string* name;
      std::vector<std::size_t> admitted;
    };
    std::vector<Need> needs = {};

    /// The versions that it cannot stand beside because it requires others of their name, which it
    /// does not bring in.
    struct Refusal {
      const std::u16string* name;
      std::vector<std::size_t> refused;
    };
    std::vector<Refusal> refusals = {};
  };

  /// Asks the application for all. Throws what it throws, InvalidFamilyVersion for a selected
  /// version that it does not know, and NotForDependencies.
  SelectionClosure(SelectionHost& host, const VersionsByName& selection);

  /// The versions of each name; of a selected one just that version.
  const std::map<std::u16string, std::deque<Version>>& names() const { return names_; }

  bool isSelected(const std::u16string& name) const {
    return std::any_of(selected_.begin(), selected_.end(),
                       [&](const std::u16string* selected) { return *selected == name; });
  }

  /// Whether every baseline that the selection stands for holds the name, as far as that follows
  /// from what is selected.
  bool isCertain(const std::u16string& name) const { return certain_.contains(name); }

  /// The first of the baselines that the selection stands for, as the version of each name; no
  /// value when there is none.
  std::optional<std::map<std::u16string, const Metamodel*>> firstBaseline() const;

  /// Calls `decide(name, places)` for names as their choice decides on the order of baselines, the
  /// most significant first: `places` are the versions to choose from, in order. It returns the one
  /// chosen. Names that offer no choice are left out.
  template <class Decide>
  void visitInOrder(const Decide& decide) const {
    std::map<std::u16string, std::size_t> chosen;
    for (const std::u16string* name : selected_) chosen.emplace(*name, 0);
    for (const std::u16string* name : selected_) visitNeeds(*name, 0, chosen, decide);
  }

 private:
  template <class Decide>
  void visitNeeds(const std::u16string& name, std::size_t place,
                  std::map<std::u16string, std::size_t>& chosen, const Decide& decide) const {
    for (const Version::Need& need : names_.at(name)[place].needs) {
      if (chosen.contains(*need.name)) continue;
      const std::size_t choice = decide(*need.name, need.admitted);
      chosen.emplace(*need.name, choice);
      visitNeeds(*need.name, choice, chosen, decide);
    }
  }

  void bringIn(SelectionHost& host);
  void refuseOwnNames() const;
  void addRefusals(SelectionHost& host, const std::u16string& name, Version& version);
  void addNeeds(SelectionHost& host, const std::u16string& name, std::size_t place);
  std::size_t addVersion(const std::u16string& name, Metamodel&& descriptor);
  void findCertainNames();

  using LiteralsByName = std::map<std::u16string, std::vector<Literal>>;
  LiteralsByName addBaseline(SatSolver& solver) const;

  std::map<std::u16string, std::deque<Version>> names_;
  std::vector<const std::u16string*> selected_;  // ascending
  std::set<std::u16string> certain_;
  std::vector<std::pair<const std::u16string*, std::size_t>> added_;  // versions, in order
};

}  // namespace tarn::evolution::pathfinder
