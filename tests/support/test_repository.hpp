#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "pathfinder/requirement.hpp"
#include "pathfinder/version_repository.hpp"

namespace tarn::evolution::pathfinder {
class RepositoryAccess;
}

namespace test {

using namespace tarn::evolution::pathfinder;

using Selection = std::unordered_map<std::u16string, VersionId>;
using Path = std::optional<std::vector<BaselineHop>>;

constexpr auto forward = VersionRepository::Forward;
constexpr auto backward = VersionRepository::Backward;
constexpr auto anyDirection = VersionRepository::Unknown;

/// Version n.0.0.
inline SemVer v(std::uint64_t number) {
  return {number, 0, 0};
}

/// The versions lower.0.0 up to but without upper.0.0.
inline VersionRange between(std::uint64_t lower, std::uint64_t upper) {
  return SemVerRange{v(lower), v(upper)};
}

/// "2" is 2.0.0, "2.5" is 2.5.0, and what does not begin with a digit is a text version.
VersionId version(const std::string& text);

/// "A1 Bspring": one version for each name.
Selection selection(const std::string& text);

/// Thrown by a TestRepository that was told to fail.
struct CallbackFailure {
  std::string call;  ///< as it is noted; empty when a test throws it for reasons of its own
};

/// A repository that is filled in code, notes every call that it gets, and can fail at any of them.
class TestRepository : public VersionRepository, public RequirementSource {
 public:
  explicit TestRepository(const std::string& content) { add(content); }

  /// Adds metamodels, whose names are single letters, and hops, with blanks between them:
  ///
  ///     A1                    metamodel A at version 1.0.0
  ///     A1..4                 A at versions 1.0.0 to 4.0.0, with hops from each to the next
  ///     Aspring~1.2           A at a text version, for which 1.2.0 is the semantic equivalent
  ///     B2:A[1,3)+C1+Dspring  B at 2.0.0, with a range of A, one version of C and one of D
  ///     B2:A1+&C[1,3)+%D1     B as far as A; requires C, and D at 1.0.0 if there is one
  ///     A1>3  A1>3!           a hop of A from 1.0.0 to 3.0.0, and an expensive one
  ///
  /// and what only a wilful application does:
  ///
  ///     B2:A1=C1=D2           B as above, which when it is loaded links C at 1.0.0 and D at 2.0.0,
  ///                           of each the first linked metamodel that agrees with what is linked
  ///     A1>3@C                a hop that is offered for A and says that it is one of C
  ///     A5->3                 who asks for A at 5.0.0 is answered A at 3.0.0
  ///     A3?load  ?hops  ?get  loadMetamodel, findHops, getMetamodel fails for A at 3.0.0
  ///     A3?need               findRequirements does, if anything in the catalogue has any
  void add(const std::string& content);

  /// All baselines of some selections, which commas separate: "A1 B1, A2". The first one.
  std::vector<VersionBaseline> baselines(const std::string& selections);
  VersionBaseline baseline(const std::string& selected) { return baselines(selected).at(0); }

  /// What leads from any of some baselines to any of others, as `describe` writes it. Clears
  /// `calls` before it asks.
  std::string path(const std::string& from, const std::string& to, Direction direction = Forward);
  std::string steps(const std::string& from, Direction direction = Forward);

  std::optional<SemVer> getEquivalentSemVer(const std::u16string& name,
                                            const std::u16string& text) override;
  std::optional<Metamodel> getMetamodel(const std::u16string& name,
                                        const VersionId& version) override;
  void findMetamodels(const std::u16string& name, const VersionRange& range,
                      std::vector<Metamodel>& result) override;
  void findHops(const std::u16string& name, const VersionId& from,
                std::vector<Hop>& result) override;
  void findRequirements(const Metamodel& metamodel, std::vector<PeerRequirement>& result) override;
  void loadMetamodel(const std::shared_ptr<LinkedMetamodel>& linked) override;

  std::vector<Metamodel> metamodels;
  std::vector<Hop> hops;
  std::map<std::pair<std::u16string, std::u16string>, SemVer> equivalents;

  /// Offered for the names given, under other names.
  std::vector<std::pair<std::u16string, Hop>> foreignHops;

  // By the version that they concern, in brief ("A3").
  std::map<std::string, std::vector<std::pair<std::u16string, VersionId>>> hostLinks;
  std::map<std::string, VersionId> otherAnswers;
  std::map<std::string, std::vector<PeerRequirement>> requirements;

  /// The calls that fail: "findHops A3".
  std::set<std::string> failing;

  /// What was called since this list was last cleared: "findHops A1", "loadMetamodel B2".
  std::vector<std::string> calls;

  /// The calls among `calls` of one operation, without its name: "A1 B2".
  std::string callsOf(const std::string& operation) const;

  /// Called from every callback, with its text, after it is noted.
  std::function<void(const std::string&)> onCall;

  /// Whether calls, and what is loaded, are noted. Without it, several threads may ask at once.
  bool isNoting = true;

  /// Everything that `loadMetamodel` was given.
  std::vector<std::shared_ptr<LinkedMetamodel>> loaded;

  using VersionRepository::accessTag;

  /// What `accessTo` made. Not a member itself, for its operations are in no library.
  std::shared_ptr<tarn::evolution::pathfinder::RepositoryAccess> access;

 private:
  void addMetamodel(const std::u16string& name, const VersionId& id, const std::string& item);
  void addHop(const std::u16string& name, const VersionId& from, const std::string& item);
  void linkFirst(LinkedMetamodel& linked, const std::u16string& name, const VersionId& version);
  template <class Describe>
  void note(const Describe& describeCall);

  std::set<std::string> loading_;  // versions that the host links something to just now
};

/// The hops that the repository offers from there.
std::vector<Hop> hopsFrom(VersionRepository& repository, const Metamodel& metamodel);

/// "A1", "B2.5.0", "Cspring".
std::string brief(const std::u16string& name, const VersionId& version);

/// The metamodels of a baseline by ascending name, without null ones: "A1 B2.5.0 Cspring".
std::string describe(const VersionBaseline& baseline);

/// The same for each of several: "A1 B1, A1 B2".
std::string describe(const std::vector<VersionBaseline>& baselines);

/// Hops by ascending name, each with a blank after it: "A1>2! B1>2 ".
std::string describe(const LockstepHop& hops);

/// The steps, one per line, with hops by ascending name: "A1>2! B1>2 => A2 B2 C1". "none" for an
/// absent path.
std::string describe(const Path& path);

/// What an error of this kind says that is thrown; "no such error" without one.
template <class Error>
std::string messageOf(const std::function<void()>& ask) {
  try {
    ask();
  } catch (const Error& error) {
    return error.what();
  }
  return "no such error";
}

/// What a value's stream operator writes.
template <class Value>
std::string printed(const Value& value) {
  std::ostringstream out;
  out.exceptions(std::ios::badbit);  // such as want of memory
  out << value;
  return out.str();
}

}  // namespace test
