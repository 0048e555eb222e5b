#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "catalogue/import/foreign_range.hpp"
#include "catalogue/import/full_version.hpp"
#include "catalogue/import/source_value.hpp"

/// What readers of other formats make of their sources: names, versions and ranges as they are
/// written there, in UTF-8, each with its place. `assembleCatalogue` makes a catalogue of it.
namespace tarn::evolution::catalogue {

struct ForeignDependency {
  std::string name;
  ForeignRange range;
  std::string text;  ///< the range as it is written, for messages
  SourcePlace place;
  std::string note = {};  ///< here and below, for people to read; may be empty
  bool isOptional = false;
};

struct ForeignVersion {
  std::string text;
  SourcePlace place;
  FullVersion order;  ///< what `text` reads as
  std::vector<ForeignDependency> dependencies = {};
  std::optional<std::string> equivalent = {};  ///< that the source itself states
  std::string note = {};
};

struct ForeignHop {
  std::size_t from;  ///< indices of the package's versions
  std::size_t to;
  bool isExpensive;
  std::string note = {};
};

/// All versions of one name. In the order in which they were added.
class ForeignPackage {
 public:
  /// Throws CatalogueError when the version stands there already.
  ForeignVersion& addVersion(const std::string& text, const SourcePlace& place);

  std::optional<std::size_t> find(const std::string& text) const;

  /// Of several hops between the same versions the first of the cheapest counts, and what is told
  /// of each that is as cheap.
  void addHop(std::size_t from, std::size_t to, bool isExpensive, const std::string& note = {});

  const std::vector<ForeignVersion>& versions() const noexcept { return versions_; }
  std::vector<ForeignVersion>& versions() noexcept { return versions_; }
  const std::vector<ForeignHop>& hops() const noexcept { return hops_; }

  /// Whether versions and hops stay in the order in which they were added; otherwise versions
  /// ascend, and of the hops that leave one version the one to the newest comes first.
  bool keepsOrder = false;

  /// Whether pre-releases are to have a place among the releases; where ranges never mean them
  /// unless they name them, they have none.
  bool ordersPrereleases = true;

 private:
  std::vector<ForeignVersion> versions_;
  std::vector<ForeignHop> hops_;
  std::unordered_map<std::string, std::size_t> byText_;
  std::map<std::pair<std::size_t, std::size_t>, std::size_t> byEnds_;
};

/// Adds to a note, on a line of its own, what it does not say yet.
void addNote(const std::string& more, std::string& note);

/// In ascending order of names.
using ForeignCatalogue = std::map<std::string, ForeignPackage>;

}  // namespace tarn::evolution::catalogue
