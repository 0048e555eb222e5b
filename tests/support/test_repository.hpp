#pragma once

#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "pathfinder/version_repository.hpp"

namespace test {

using namespace tarn::evolution::pathfinder;

/// Version n.0.0.
inline SemVer v(std::uint64_t number) {
  return {number, 0, 0};
}

/// The versions lower.0.0 up to but without upper.0.0.
inline VersionRange between(std::uint64_t lower, std::uint64_t upper) {
  return SemVerRange{v(lower), v(upper)};
}

/// Thrown by a TestRepository that was told to fail.
struct CallbackFailure {};

/// A repository that is filled in code, notes every call that it gets, and can fail at any of them.
class TestRepository : public VersionRepository {
 public:
  Metamodel add(const std::u16string& name, const VersionId& version,
                const std::vector<Dependency>& dependencies = {});
  void addHop(const std::u16string& name, const VersionId& from, const VersionId& to,
              bool expensive = false);
  void addEquivalent(const std::u16string& name, const std::u16string& text, const SemVer& version);

  /// Adds the metamodel at versions 1.0.0 to last.0.0, with hops from each to the next.
  void addLine(const std::u16string& name, std::uint64_t last);

  /// Any of the linked metamodels of a version that has just one.
  std::shared_ptr<LinkedMetamodel> only(const std::u16string& name, const VersionId& version);

  /// The baseline of a selection that has just one.
  VersionBaseline baseline(const std::unordered_map<std::u16string, VersionId>& selection);

  std::optional<SemVer> getEquivalentSemVer(const std::u16string& name,
                                            const std::u16string& text) override;
  std::optional<Metamodel> getMetamodel(const std::u16string& name,
                                        const VersionId& version) override;
  void findMetamodels(const std::u16string& name, const VersionRange& range,
                      std::vector<Metamodel>& result) override;
  void findHops(const std::u16string& name, const VersionId& from,
                std::vector<Hop>& result) override;
  void loadMetamodel(const std::shared_ptr<LinkedMetamodel>& linked) override;

  /// What was called since this list was last cleared: "findHops A@1.0.0", "loadMetamodel B@2.0.0".
  std::vector<std::string> calls;

  /// The calls among `calls` of one operation, without its name.
  std::vector<std::string> callsOf(const std::string& operation) const;

  /// Called from every callback, with its text, after it is noted.
  std::function<void(const std::string&)> onCall;

  /// When positive: counts down at every callback, which throws CallbackFailure when it gets to
  /// zero.
  std::size_t failAtCall = 0;

  using VersionRepository::accessTag;

 private:
  void note(const std::string& operation, const std::string& subject);

  std::vector<Metamodel> metamodels_;
  std::vector<Hop> hops_;
  std::map<std::pair<std::u16string, std::u16string>, SemVer> equivalents_;
};

/// The steps as text, one per line: "A@1.0.0->2.0.0! B@1.0.0->2.0.0 => A@2.0.0 B@2.0.0", an
/// exclamation mark after an expensive hop, names ascending. "none" for an absent path.
std::string describe(const std::optional<std::vector<BaselineHop>>& path);

/// The metamodels of a baseline by ascending name: "A@1.0.0 B@2.0.0".
std::string describe(const VersionBaseline& baseline);

/// What a value's stream operator writes.
template <class Value>
std::string printed(const Value& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

}  // namespace test
