#include "catalogue/comparison/heads_to_heads.hpp"

#include <algorithm>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

#include "catalogue/comparison/chains.hpp"
#include "catalogue/text/messages.hpp"
#include "catalogue/text/printed_text.hpp"

namespace tarn::evolution::catalogue {

namespace {

void addWays(const std::u16string& name, const Chains& chains, HeadQuestions& asked) {
  for (const ChainEnds& ends : chains.ends()) {
    std::vector<ChainWay> ways;
    ends.addWays(mostOfOneSet, ways);
    for (const ChainWay& way : ways) {
      asked.questions.push_back({{{name, way.tail}}, {{name, way.head}}});
    }
    asked.leftOut += ends.wayCount() - ways.size();
  }
}

/// The ways of a metamodel that moves together with others.
struct WaysBeside {
  std::u16string name;
  std::uint64_t count;
  std::vector<ChainWay> ways;  // the first of them, at most `mostTogether`
};

WaysBeside waysBeside(const Catalogue& catalogue, const std::u16string& name) {
  WaysBeside result{name, 0, {}};
  std::vector<ChainEnds> sets = Chains(catalogue, name).ends();
  std::reverse(sets.begin(), sets.end());
  for (const ChainEnds& ends : sets) {
    result.count += ends.wayCount();
    ends.addWays(mostTogether, result.ways);
  }
  return result;
}

void expectWays(const std::vector<WaysBeside>& all) {
  std::vector<std::string> missing;
  for (const WaysBeside& each : all) {
    if (each.count == 0) missing.push_back(quotedName(each.name));
  }
  if (missing.empty()) return;
  throw std::invalid_argument(
      "metamodels cannot move together: no hop leads to a newer version of " +
      listed(missing, "or"));
}

constexpr std::uint64_t countless = std::numeric_limits<std::uint64_t>::max();

std::uint64_t countTogether(const std::vector<WaysBeside>& all) {
  std::uint64_t count = all.empty() ? 0 : 1;
  for (const WaysBeside& each : all) {
    count = count > countless / each.count ? countless : count * each.count;
  }
  return count;
}

Question questionOf(const std::vector<WaysBeside>& all, std::uint64_t number) {
  Question question;
  for (const WaysBeside& each : all) {
    const ChainWay& way = each.ways[number % each.count];
    number /= each.count;
    question.from.emplace(each.name, way.tail);
    question.to.emplace(each.name, way.head);
  }
  return question;
}

}  // namespace

HeadQuestions headsToHeads(const Catalogue& catalogue, const std::set<std::u16string>& names) {
  HeadQuestions asked;
  for (const std::u16string& name : names) addWays(name, Chains(catalogue, name), asked);
  return asked;
}

HeadQuestions headsToHeads(const Catalogue& former, const Catalogue& present) {
  std::set<std::u16string> names;
  for (const Catalogue* catalogue : {&former, &present}) {
    for (std::u16string& name : catalogue->index().names()) names.insert(std::move(name));
  }
  HeadQuestions asked;
  for (const std::u16string& name : names) {
    const Chains before(former, name);
    const Chains after(present, name);
    const auto newestBefore = before.newest();
    const auto newestAfter = after.newest();
    addWays(name, newestBefore ? before : after, asked);
    if (newestBefore && newestAfter && *newestBefore != *newestAfter) {
      asked.questions.push_back({{{name, *newestBefore}}, {{name, *newestAfter}}});
    }
  }
  return asked;
}

HeadQuestions headsToHeadsTogether(const Catalogue& catalogue,
                                   const std::set<std::u16string>& names) {
  std::vector<WaysBeside> all;
  all.reserve(names.size());
  for (const std::u16string& name : names) all.push_back(waysBeside(catalogue, name));
  expectWays(all);
  const std::uint64_t count = countTogether(all);
  HeadQuestions asked;
  while (asked.questions.size() < std::min<std::uint64_t>(count, mostTogether)) {
    asked.questions.push_back(questionOf(all, asked.questions.size()));
  }
  asked.leftOut = count == countless ? count : count - asked.questions.size();
  return asked;
}

}  // namespace tarn::evolution::catalogue
