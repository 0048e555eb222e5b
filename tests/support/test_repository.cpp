#include "support/test_repository.hpp"

#include <stdexcept>

#include "platform/text.hpp"

namespace test {

namespace {

std::string nameAndVersion(const std::u16string& name, const VersionId& version) {
  return printed(Metamodel(name, version, {}));
}

}  // namespace

Metamodel TestRepository::add(const std::u16string& name, const VersionId& version,
                              const std::vector<Dependency>& dependencies) {
  return metamodels_.emplace_back(name, version, dependencies);
}

void TestRepository::addHop(const std::u16string& name, const VersionId& from, const VersionId& to,
                            bool expensive) {
  hops_.emplace_back(name, from, to, expensive);
}

void TestRepository::addEquivalent(const std::u16string& name, const std::u16string& text,
                                   const SemVer& version) {
  equivalents_[{name, text}] = version;
}

void TestRepository::addLine(const std::u16string& name, std::uint64_t last) {
  for (std::uint64_t number = 1; number <= last; ++number) add(name, v(number));
  for (std::uint64_t number = 1; number < last; ++number) addHop(name, v(number), v(number + 1));
}

std::shared_ptr<LinkedMetamodel> TestRepository::only(const std::u16string& name,
                                                      const VersionId& version) {
  const auto& linked = getLinkedMetamodels(name, version);
  if (linked.size() != 1) throw std::logic_error("not exactly one linked metamodel");
  return linked.front();
}

VersionBaseline TestRepository::baseline(
    const std::unordered_map<std::u16string, VersionId>& selection) {
  std::vector<VersionBaseline> baselines = combine(selection);
  if (baselines.size() != 1) throw std::logic_error("not exactly one baseline");
  return baselines.front();
}

std::optional<SemVer> TestRepository::getEquivalentSemVer(const std::u16string& name,
                                                          const std::u16string& text) {
  note("getEquivalentSemVer", nameAndVersion(name, text));
  const auto found = equivalents_.find({name, text});
  if (found == equivalents_.end()) return std::nullopt;
  return found->second;
}

std::optional<Metamodel> TestRepository::getMetamodel(const std::u16string& name,
                                                      const VersionId& version) {
  note("getMetamodel", nameAndVersion(name, version));
  return VersionRepository::getMetamodel(name, version);
}

void TestRepository::findMetamodels(const std::u16string& name, const VersionRange& range,
                                    std::vector<Metamodel>& result) {
  note("findMetamodels", fl::i18n::ustring_to_utf8(name) + " " + printed(range));
  for (const Metamodel& metamodel : metamodels_) {
    if (metamodel.name == name && includes(range, metamodel)) result.push_back(metamodel);
  }
}

void TestRepository::findHops(const std::u16string& name, const VersionId& from,
                              std::vector<Hop>& result) {
  note("findHops", nameAndVersion(name, from));
  for (const Hop& hop : hops_) {
    if (hop.name == name && hop.from == from) result.push_back(hop);
  }
}

void TestRepository::loadMetamodel(const std::shared_ptr<LinkedMetamodel>& linked) {
  note("loadMetamodel", printed<Metamodel>(*linked));
}

std::vector<std::string> TestRepository::callsOf(const std::string& operation) const {
  std::vector<std::string> result;
  for (const std::string& call : calls) {
    if (call.starts_with(operation + " ")) result.push_back(call.substr(operation.size() + 1));
  }
  return result;
}

void TestRepository::note(const std::string& operation, const std::string& subject) {
  calls.push_back(operation + " " + subject);
  if (onCall) onCall(calls.back());
  if (failAtCall > 0 && --failAtCall == 0) throw CallbackFailure();
}

std::string describe(const std::optional<std::vector<BaselineHop>>& path) {
  if (!path) return "none";
  std::string result;
  for (const BaselineHop& step : *path) {
    for (const auto& [name, hop] :
         std::map<std::u16string, Hop>(step.hops.begin(), step.hops.end())) {
      result +=
          nameAndVersion(name, hop.from) + "->" + printed(hop.to) + (hop.expensive ? "! " : " ");
    }
    result += "=> " + describe(step.to) + "\n";
  }
  return result;
}

std::string describe(const VersionBaseline& baseline) {
  std::string result;
  for (const auto& [name, linked] :
       std::map(baseline.metamodels.begin(), baseline.metamodels.end())) {
    result += (result.empty() ? "" : " ") + printed<Metamodel>(*linked);
  }
  return result;
}

}  // namespace test
