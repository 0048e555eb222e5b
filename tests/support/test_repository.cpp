#include "support/test_repository.hpp"

#include <algorithm>

#include "platform/text.hpp"
#include "support/items.hpp"

namespace test {

namespace {

std::u16string nameIn(const std::string& item) {
  return std::u16string(1, static_cast<char16_t>(item[0]));
}

/// What stands in `text` after `mark`, up to one of `ends`; empty when there is no mark.
std::string after(const std::string& text, const std::string& mark, const char* ends = "") {
  const std::size_t found = text.find(mark);
  if (found == std::string::npos) return {};
  const std::size_t begin = found + mark.size();
  return text.substr(begin, text.find_first_of(ends, begin) - begin);
}

Dependency dependency(const std::string& item) {
  const std::string lower = after(item, "[", ",");
  if (lower.empty()) return {nameIn(item), VersionRange::singleVersion(version(item.substr(1)))};
  const std::string upper = after(item, ",", ")");
  return {nameIn(item), SemVerRange{version(lower).getSemVer(), version(upper).getSemVer()}};
}

std::string brief(const VersionId& version) {
  if (!version.isSemVer()) return fl::i18n::ustring_to_utf8(version.getText());
  const auto& [major, minor, patch] = version.getSemVer();
  std::string text = std::to_string(major);
  if (minor != 0 || patch != 0) text += "." + std::to_string(minor) + "." + std::to_string(patch);
  return text;
}

}  // namespace

std::string brief(const std::u16string& name, const VersionId& version) {
  return fl::i18n::ustring_to_utf8(name) + brief(version);
}

VersionId version(const std::string& text) {
  const std::u16string wide(text.begin(), text.end());
  if (const auto semantic = SemVer::parse(wide)) return *semantic;
  if (const auto major = SemVer::parse(wide + u".0")) return *major;
  return wide;
}

Selection selection(const std::string& text) {
  Selection result;
  for (const std::string& item : itemsIn(text)) {
    result.emplace(nameIn(item), version(item.substr(1)));
  }
  return result;
}

void TestRepository::add(const std::string& content) {
  for (const std::string& item : itemsIn(content)) {
    const std::u16string name = nameIn(item);
    const std::size_t end = std::min(item.find_first_of("~:=>?"), item.find("->"));
    const VersionId id = version(item.substr(1, end - 1));
    if (const std::string last = after(item, ".."); !last.empty()) {
      for (std::uint64_t n = std::stoull(item.substr(1)); n <= std::stoull(last); ++n) {
        metamodels.emplace_back(name, v(n), std::vector<Dependency>());
        if (n < std::stoull(last)) hops.emplace_back(name, v(n), v(n + 1), false);
      }
    } else if (const std::string callback = after(item, "?"); !callback.empty()) {
      static const std::map<std::string, std::string> operations{{"load", "loadMetamodel "},
                                                                 {"hops", "findHops "},
                                                                 {"get", "getMetamodel "},
                                                                 {"need", "findRequirements "}};
      failing.insert(operations.at(callback) + brief(name, id));
    } else if (const std::string answer = after(item, "->"); !answer.empty()) {
      otherAnswers.emplace(brief(name, id), version(answer));
    } else if (item.find('>') != std::string::npos) {
      addHop(name, id, item);
    } else {
      addMetamodel(name, id, item);
    }
  }
}

void TestRepository::addHop(const std::u16string& name, const VersionId& from,
                            const std::string& item) {
  Hop hop(name, from, version(after(item, ">", "!@")), item.find('!') != std::string::npos);
  if (const std::string other = after(item, "@"); !other.empty()) {
    hop.name = nameIn(other);
    foreignHops.emplace_back(name, hop);
  } else {
    hops.push_back(hop);
  }
}

void TestRepository::addMetamodel(const std::u16string& name, const VersionId& id,
                                  const std::string& item) {
  const std::string equivalent = after(item, "~", ":=");
  if (!equivalent.empty()) equivalents[{name, id.getText()}] = version(equivalent).getSemVer();
  Metamodel& added = metamodels.emplace_back(name, id, std::vector<Dependency>());
  for (const auto& needed : parted(after(item, ":", "="), '+')) {
    if (needed[0] != '&' && needed[0] != '%') {
      added.dependencies.push_back(dependency(needed));
      continue;
    }
    const auto [required, range] = dependency(needed.substr(1));
    requirements[brief(name, id)].push_back({required, range, needed[0] == '%'});
    useRequirements(*this);
  }
  for (const auto& linked : parted(after(item, "="), '=')) {
    hostLinks[brief(name, id)].emplace_back(nameIn(linked), version(linked.substr(1)));
  }
}

std::vector<VersionBaseline> TestRepository::baselines(const std::string& selections) {
  std::vector<VersionBaseline> result;
  for (const std::string& selected : parted(selections, ',')) {
    for (const auto& baseline : combine(selection(selected))) result.push_back(baseline);
  }
  return result;
}

std::string TestRepository::path(const std::string& from, const std::string& to,
                                 Direction direction) {
  const std::vector<VersionBaseline> sources = baselines(from);
  const std::vector<VersionBaseline> targets = baselines(to);
  calls.clear();
  return describe(findPath(sources, targets, direction));
}

std::string TestRepository::steps(const std::string& from, Direction direction) {
  const VersionBaseline baseline = this->baseline(from);
  calls.clear();
  return describe(getStepsFrom(baseline, direction));
}

std::optional<SemVer> TestRepository::getEquivalentSemVer(const std::u16string& name,
                                                          const std::u16string& text) {
  note([&] { return "getEquivalentSemVer " + brief(name, text); });
  const auto found = equivalents.find({name, text});
  if (found == equivalents.end()) return std::nullopt;
  return found->second;
}

std::optional<Metamodel> TestRepository::getMetamodel(const std::u16string& name,
                                                      const VersionId& version) {
  note([&] { return "getMetamodel " + brief(name, version); });
  const auto other = otherAnswers.find(brief(name, version));
  return VersionRepository::getMetamodel(name,
                                         other == otherAnswers.end() ? version : other->second);
}

void TestRepository::findMetamodels(const std::u16string& name, const VersionRange& range,
                                    std::vector<Metamodel>& result) {
  note([&] { return "findMetamodels " + fl::i18n::ustring_to_utf8(name) + printed(range); });
  for (const Metamodel& metamodel : metamodels) {
    if (metamodel.name == name && includes(range, metamodel)) result.push_back(metamodel);
  }
}

void TestRepository::findHops(const std::u16string& name, const VersionId& from,
                              std::vector<Hop>& result) {
  note([&] { return "findHops " + brief(name, from); });
  for (const Hop& hop : hops) {
    if (hop.name == name && hop.from == from) result.push_back(hop);
  }
  for (const auto& [offeredFor, hop] : foreignHops) {
    if (offeredFor == name && hop.from == from) result.push_back(hop);
  }
}

void TestRepository::findRequirements(const Metamodel& metamodel,
                                      std::vector<PeerRequirement>& result) {
  const std::string text = brief(metamodel.name, metamodel.version);
  note([&] { return "findRequirements " + text; });
  const auto known = requirements.find(text);
  if (known != requirements.end()) result = known->second;
}

void TestRepository::loadMetamodel(const std::shared_ptr<LinkedMetamodel>& linked) {
  if (isNoting) loaded.push_back(linked);
  note([&] { return "loadMetamodel " + brief(linked->name, linked->version); });
  const auto links = hostLinks.find(brief(linked->name, linked->version));
  if (links == hostLinks.end()) return;
  // What is linked here may need the very version that is loaded.
  if (!loading_.insert(links->first).second) throw CallbackFailure{"loadMetamodel " + links->first};
  try {
    for (const auto& [name, version] : links->second) linkFirst(*linked, name, version);
  } catch (...) {
    loading_.erase(links->first);
    throw;
  }
  loading_.erase(links->first);
}

void TestRepository::linkFirst(LinkedMetamodel& linked, const std::u16string& name,
                               const VersionId& version) {
  for (const auto& option : getLinkedMetamodels(name, version)) {
    if (linked.clone()->linkMetamodel(option)) {
      linked.linkMetamodel(option);
      return;
    }
  }
}

std::string TestRepository::callsOf(const std::string& operation) const {
  std::string result;
  for (const std::string& call : calls) {
    if (call.starts_with(operation + " ")) result += call.substr(operation.size());
  }
  return result.empty() ? result : result.substr(1);
}

template <class Describe>
void TestRepository::note(const Describe& describeCall) {
  if (!isNoting && !onCall && failing.empty()) return;
  const std::string call = describeCall();
  if (isNoting) calls.push_back(call);
  if (onCall) onCall(call);
  if (failing.contains(call)) throw CallbackFailure{call};
}

std::vector<Hop> hopsFrom(VersionRepository& repository, const Metamodel& metamodel) {
  std::vector<Hop> result;
  repository.findHops(metamodel.name, metamodel.version, result);
  return result;
}

std::string describe(const VersionBaseline& baseline) {
  std::string result;
  for (const auto& [name, linked] :
       std::map(baseline.metamodels.begin(), baseline.metamodels.end())) {
    if (linked) result += (result.empty() ? "" : " ") + brief(name, linked->version);
  }
  return result;
}

std::string describe(const std::vector<VersionBaseline>& baselines) {
  std::string result;
  for (const VersionBaseline& baseline : baselines) {
    result += (result.empty() ? "" : ", ") + describe(baseline);
  }
  return result;
}

std::string describe(const LockstepHop& hops) {
  std::string result;
  for (const auto& [name, hop] : std::map(hops.begin(), hops.end())) {
    result += brief(name, hop.from) + ">" + brief(hop.to) + (hop.expensive ? "! " : " ");
  }
  return result;
}

std::string describe(const Path& path) {
  if (!path) return "none";
  std::string result;
  for (const BaselineHop& step : *path) {
    result += describe(step.hops) + "=> " + describe(step.to) + "\n";
  }
  return result;
}

}  // namespace test
