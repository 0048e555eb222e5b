#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "pathfinder/learning/sat_solver.hpp"
#include "pathfinder/learning/selection_host.hpp"
#include "pathfinder/linking/selection_combination.hpp"
#include "pathfinder/search/direction.hpp"

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
  /// The version of each name.
  using Baseline = std::map<std::u16string, const Metamodel*>;

  struct Name;

  /// A version that may be held, and what it depends on.
  struct Version {
    Metamodel descriptor;
    const Name* name;
    std::uint32_t number;  ///< among all versions

    /// The names that it depends on, in the order of linking. For each the versions that it admits,
    /// in the application's order.
    struct Need {
      const Name* name;
      std::vector<const Version*> admitted = {};
    };
    std::vector<Need> needs = {};

    /// The versions that it cannot stand beside because it requires others of their name, which it
    /// does not bring in.
    std::vector<const Version*> refused = {};
  };

  struct Name {
    const std::u16string* text = nullptr;
    std::deque<Version> versions = {};  ///< of a selected name just one
    bool isSelected = false;

    /// Whether every baseline that the selection stands for holds it, as far as that follows from
    /// what is selected.
    bool isCertain = false;

    std::uint32_t number = 0;  ///< among all names
  };

  /// Asks the application for all. Throws what it throws, InvalidFamilyVersion for a selected
  /// version that it does not know, and NotForDependencies.
  SelectionClosure(SelectionHost& host, const VersionsByName& selection);

  const std::map<std::u16string, Name>& names() const { return names_; }

  bool isSelected(const std::u16string& name) const {
    const auto known = names_.find(name);
    return known != names_.end() && known->second.isSelected;
  }

  /// The first of the baselines that the selection stands for; no value when there is none.
  std::optional<Baseline> firstBaseline() const;

 private:
  Name& nameOf(const std::u16string& text);
  void bringIn(SelectionHost& host);
  void refuseOwnNames() const;
  void addRefusals(SelectionHost& host, const Name& name, Version& version);
  void addNeeds(SelectionHost& host, Version& version);
  const Version* addVersion(Name& name, Metamodel&& descriptor);
  void findCertainNames();

  std::vector<Literal> addBaseline(SatSolver& solver) const;
  void addNeeds(SatSolver& solver, const std::vector<Literal>& held) const;
  void addNeeding(SatSolver& solver, const std::vector<Literal>& held) const;
  void chooseFor(const Version& version, SatSolver& solver, const std::vector<Literal>& held,
                 std::vector<Literal>& decided, Baseline& baseline) const;

  std::map<std::u16string, Name> names_;
  std::vector<const Name*> selected_;  // ascending
  std::vector<Version*> versions_;     // by number
};

/// `VersionRepository::computeDirection` for baselines that are not linked.
Direction directionBetween(SelectionHost& host, const SelectionClosure::Baseline& source,
                           const SelectionClosure::Baseline& target);

}  // namespace tarn::evolution::pathfinder
