#include "catalogue/text/messages.hpp"

#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

std::string metamodelPlace(std::size_t position) {
  return "/metamodels/" + std::to_string(position);
}

std::string dependencyPlace(std::size_t position, std::size_t dependency) {
  return metamodelPlace(position) + "/dependencies/" + std::to_string(dependency);
}

std::string hopPlace(std::size_t position) {
  return "/hops/" + std::to_string(position);
}

std::string unknownMetamodel(const std::u16string& name) {
  return "there is no metamodel " + quotedName(name);
}

std::string unknownVersion(const std::u16string& name, const pathfinder::VersionId& version) {
  return "there is no version " + textOf(version) + " of metamodel " + quotedName(name);
}

std::string hopText(const std::u16string& name, const pathfinder::VersionId& from,
                    const pathfinder::VersionId& to) {
  return "the hop of " + quotedName(name) + " from " + textOf(from) + " to " + textOf(to);
}

std::string unknownHop(const std::u16string& name, const pathfinder::VersionId& from,
                       const pathfinder::VersionId& to) {
  return "there is no hop of " + quotedName(name) + " from " + textOf(from) + " to " + textOf(to);
}

std::string standsAlready(const std::string& what, const std::string& where) {
  return what + " stands already " + where;
}

std::string sharedEquivalent(const pathfinder::SemVer& equivalent, const std::string& holder,
                             const std::string& where) {
  return textOf(equivalent) + " is already the equivalent of " + holder + " " + where;
}

std::string dependencyCycle(const std::vector<std::string>& versions) {
  std::vector<std::string> cycle = versions;
  cycle.push_back(versions.front());
  return "the dependencies form a cycle: " + chained(cycle);
}

std::string listed(const std::vector<std::string>& texts, const std::string& conjunction) {
  constexpr std::size_t few = 6;
  const std::size_t shown = texts.size() > few + 1 ? few : texts.size();
  std::string result;
  for (std::size_t i = 0; i < shown; ++i) {
    const bool isLast = i + 1 == texts.size();
    result += (i == 0 ? "" : isLast ? " " + conjunction + " " : ", ") + texts[i];
  }
  if (shown == texts.size()) return result;
  return result + " " + conjunction + " " + std::to_string(texts.size() - shown) + " more";
}

std::string chained(const std::vector<std::string>& texts) {
  constexpr std::size_t atEachEnd = 6;
  std::string result;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (i == atEachEnd && texts.size() > 2 * atEachEnd + 1) {
      const std::size_t left = texts.size() - 2 * atEachEnd;
      result += " -> (" + std::to_string(left) + " more)";
      i += left;
    }
    result += (i == 0 ? "" : " -> ") + texts[i];
  }
  return result;
}

}  // namespace tarn::evolution::catalogue
