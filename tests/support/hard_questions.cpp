#include "support/hard_questions.hpp"

#include <algorithm>
#include <cctype>
#include <utility>

namespace test {

namespace {

using Name = QuestionDraft::Name;
using Version = QuestionDraft::Version;

const std::string nobody = "Z9";

/// Any version of a name, as an item: "A2".
std::string anyOf(const Name& name, Random& random) {
  return name.letter + random.oneOf(name.versions).number;
}

/// A name with one version, which the sources hold if told so and the targets, too, if told so.
Name& addPlug(QuestionDraft& draft, bool isHeld, bool isWanted) {
  Name& name = draft.addName(1);
  for (auto& entries : draft.from) {
    if (isHeld) entries.push_back(name.letter + name.start);
  }
  for (auto& entries : draft.to) {
    if (isWanted) entries.push_back(name.letter + name.goal);
  }
  return name;
}

/// Versions with hops that lead on and on, away from the ends, from where the sources are or from
/// anywhere; the last of them.
Version& addTail(QuestionDraft& draft, Name& name, Random& random) {
  std::string before = random.chance(50) ? name.start : random.oneOf(name.versions).number;
  for (std::size_t left = random.upTo(6); left > 0; --left) {
    const std::string next =
        draft.direction == "backward" ? "0." + std::to_string(left) : std::to_string(20 - left);
    name.versions.push_back({next, {}, {}, {}});
    draft.addHop(name, std::exchange(before, next), next, random.chance(10) ? "!" : "");
  }
  return name.versions.back();
}

/// Leaves a name open in the targets.
void leaveFree(QuestionDraft& draft, char letter) {
  for (auto& entries : draft.to) {
    std::erase_if(entries, [&](const std::string& entry) { return entry[0] == letter; });
  }
}

/// A place for a fault: any version, or one at the end of a tail.
std::string somePlace(QuestionDraft& draft, Random& random,
                      const std::vector<std::string>& needs = {}) {
  Name& name = draft.someName(random);
  const bool isFar = random.chance(60);
  if (isFar && random.chance(70)) leaveFree(draft, name.letter);
  Version& version = isFar ? addTail(draft, name, random) : random.oneOf(name.versions);
  version.needs.insert(version.needs.end(), needs.begin(), needs.end());
  return name.letter + version.number;
}

void addHostLinks(QuestionDraft& draft, Random& random) {
  for (std::size_t left = random.upTo(3); left > 0; --left) {
    const std::size_t linking = random.below(draft.names.size());
    if (linking == 0 || random.chance(30)) {
      const Name linked = draft.someName(random);
      Name& plug = addPlug(draft, true, random.chance(50));
      plug.versions[0].links.push_back(random.chance(70) ? linked.letter + linked.start
                                                         : anyOf(linked, random));
      if (!random.chance(40)) continue;
      plug.versions.push_back({"2", {}, {}, {}});
      draft.addHop(plug, "1", "2");
    } else {
      const Name& linked = draft.names[random.below(linking)];
      Version& version = random.oneOf(draft.names[linking].versions);
      const bool isAtStart = version.number == draft.names[linking].start && random.chance(80);
      version.links.push_back(isAtStart ? linked.letter + linked.start : anyOf(linked, random));
    }
  }
}

/// A name with versions from 1 on and a hop from each to the next, which the ends hold at the first
/// and the last one.
Name& addRow(QuestionDraft& draft, std::size_t last, Random& random) {
  Name& name = draft.addName(last);
  const bool isBackward = draft.direction == "backward";
  for (std::size_t number = 2; number <= last; ++number) {
    const std::string ends[] = {std::to_string(number - 1), std::to_string(number)};
    draft.addHop(name, ends[isBackward ? 1 : 0], ends[isBackward ? 0 : 1],
                 random.chance(20) ? "!" : "");
  }
  if (isBackward) std::swap(name.start, name.goal);
  for (auto& entries : draft.from) entries.push_back(name.letter + name.start);
  for (auto& entries : draft.to) {
    if (random.chance(85)) entries.push_back(name.letter + name.goal);
  }
  return name;
}

/// Versions that link another one only beside a certain version of a third name: three that
/// disagree, of which every two agree.
void addVariantLinks(QuestionDraft& draft, Random& random) {
  draft = QuestionDraft::either(random, 1);
  const char base = addRow(draft, 1 + random.upTo(2), random).letter;
  const Name bases = draft.names.back();
  if (random.chance(80)) leaveFree(draft, base);
  for (QuestionDraft::Hop& hop : draft.hops) hop.mark = hop.letter == base ? "" : hop.mark;
  Name& linked = addRow(draft, random.chance(80) ? 3 : 4, random);
  for (Version& version : linked.versions) {
    if (random.chance(50)) version.needs.push_back(anyOf(bases, random));
  }
  const Name links = linked;
  for (std::size_t left = random.upTo(2); left > 0; --left) {
    Name& linking = addRow(draft, random.chance(80) ? 3 : 4, random);
    for (Version& version : linking.versions) {
      const bool isAtEnd =
          &version == &linking.versions.front() || &version == &linking.versions.back();
      if (isAtEnd && random.chance(90)) continue;
      version.needs.push_back(base + std::string("[0,9)"));
      if (random.chance(80)) version.links.push_back(anyOf(links, random));
    }
  }
}

/// A way past a name's goal and back by a hop that, judged as one of another name, goes on.
void addDetour(QuestionDraft& draft, Random& random) {
  Name& name = draft.someName(random);
  if (name.goal.starts_with("text")) return;
  const bool isBackward = draft.direction == "backward";
  const std::string beyond = isBackward ? "0.5" : "25";
  if (random.chance(50)) {
    std::erase_if(draft.hops, [&](const auto& hop) {
      return hop.letter == name.letter && hop.to == name.goal;
    });
  }
  draft.addHop(name, name.start, beyond);
  name.versions.push_back({beyond, {}, {}, {}});
  name.versions.push_back({"home", "~" + name.goal, {}, {}});
  const char letter = name.letter;
  const char other = addPlug(draft, random.chance(50), false).letter;
  draft.names.back().versions.push_back({"home", isBackward ? "~0.1" : "~40", {}, {}});
  draft.hops.push_back({letter, beyond, "home", std::string("@") + other});
}

void addForeignHops(QuestionDraft& draft, Random& random) {
  if (random.chance(30)) addDetour(draft, random);
  for (std::size_t left = random.upTo(3); left > 0; --left) {
    const std::string other = std::string("@") + draft.someName(random).letter;
    if (!draft.hops.empty() && random.chance(60)) {
      QuestionDraft::Hop& hop = random.oneOf(draft.hops);
      if (hop.mark.find('@') == std::string::npos) hop.mark += other;
    } else {
      const Name& name = draft.someName(random);
      draft.addHop(name, anyOf(name, random).substr(1), anyOf(name, random).substr(1), other);
    }
  }
}

void addLostHop(QuestionDraft& draft, Random& random) {
  const std::string place = somePlace(draft, random);
  draft.hops.push_back({place[0], place.substr(1), "9", random.chance(30) ? "!" : ""});
}

void addUnlinkableVersion(QuestionDraft& draft, Random& random) {
  somePlace(draft, random, {nobody});
}

void addFailingCallback(QuestionDraft& draft, Random& random) {
  const char* const callbacks[] = {"?load", "?hops", "?get", "?need"};
  if (random.chance(30)) draft.addRequirements(random, 20);
  draft.more.push_back(somePlace(draft, random) + random.oneOf(callbacks));
}

/// The application answers another version than the one asked for.
void addOtherAnswers(QuestionDraft& draft, Random& random) {
  for (std::size_t left = random.upTo(2); left > 0; --left) {
    const Name& name = draft.someName(random);
    const std::string asked = std::to_string(30 + left);
    draft.more.push_back(name.letter + asked + "->" + anyOf(name, random).substr(1));
    draft.addHop(name, anyOf(name, random).substr(1), asked, random.chance(30) ? "!" : "");
  }
}

/// Several descriptors of one version, and several versions with one equivalent.
void addTwins(QuestionDraft& draft, Random& random) {
  for (std::size_t left = random.upTo(2); left > 0; --left) {
    Name& name = draft.someName(random);
    Version twin = random.oneOf(name.versions);
    if (random.chance(40) && std::isdigit(static_cast<unsigned char>(twin.number[0])) != 0) {
      const std::string text = "twin" + std::to_string(left);
      draft.addHop(name, name.start, text);
      twin.equivalent = "~" + std::exchange(twin.number, text);
    }
    twin.needs.clear();
    if (name.letter != 'A' && random.chance(60)) {
      const Name& needed = draft.names[random.below(static_cast<std::size_t>(name.letter - 'A'))];
      twin.needs.push_back(anyOf(needed, random));
    }
    const auto place = static_cast<std::ptrdiff_t>(random.below(name.versions.size() + 1));
    name.versions.insert(name.versions.begin() + place, twin);
  }
}

/// Requirements among what is there, and on names that only links bring in or nothing does.
void addRequirements(QuestionDraft& draft, Random& random) {
  if (random.chance(15))
    random.oneOf(draft.someName(random).versions).needs.push_back("%" + nobody);
  if (random.chance(10)) somePlace(draft, random, {"&" + nobody});
  if (random.chance(50)) {
    const std::size_t names = draft.names.size();
    Name& plug = addPlug(draft, random.chance(20), random.chance(30));
    plug.versions.push_back({"2", {}, {}, {}});
    if (random.chance(50)) draft.addHop(plug, "1", "2");
    for (std::size_t left = random.upTo(3); left > 0; --left) {
      Name& bringing = draft.names[random.below(names)];
      random.oneOf(bringing.versions).needs.push_back(anyOf(draft.names.back(), random));
    }
  }
  draft.addRequirements(random, random.chance(50) ? 15 : 40);
}

void addCycle(QuestionDraft& draft, Random& random) {
  Name& other = addPlug(draft, false, false);
  const char letter = other.letter;
  const std::string place = somePlace(draft, random, {letter + other.start});
  if (place[0] == letter) return;
  draft.names[static_cast<std::size_t>(letter - 'A')].versions[0].needs.push_back(place);
}

/// Versions that link another one of their own name, some by way of another name.
void addSelfLinks(QuestionDraft& draft, Random& random) {
  Name& between = random.chance(20) ? addPlug(draft, false, false) : draft.someName(random);
  Name& name = draft.someName(random);
  std::string linked = anyOf(name, random);
  Version& linking = random.oneOf(name.versions);
  if (random.chance(50) && between.letter != name.letter) {
    Version& version = random.oneOf(between.versions);
    version.links.push_back(std::exchange(linked, between.letter + version.number));
  }
  (random.chance(50) ? linking.links : linking.needs).push_back(linked);
}

/// Names that only links bring in, one after the other, from a version that may have to be reached.
void addChain(QuestionDraft& draft, Random& random) {
  const std::size_t linking = random.below(draft.names.size());
  const std::size_t length = random.upTo(5);
  const bool isWanted = random.chance(80);
  const bool moves = random.chance(50);
  std::string last;
  for (std::size_t left = length; left > 0; --left) {
    Name& name = addPlug(draft, false, isWanted && (left == length || random.chance(20)));
    if (!last.empty()) name.versions[0].needs.push_back(last);
    last = name.letter + std::string("1");
    if (left < length || !moves) continue;
    name.versions.push_back({"2", {}, {}, {}});
    draft.addHop(name, "1", "2");
    for (auto& entries : draft.to) {
      if (isWanted) entries.back() = name.letter + std::string("2");
    }
  }
  random.oneOf(draft.names[linking].versions).needs.push_back(last);
}

/// Targets that no repository would make.
void putTargetsTogether(QuestionDraft& draft, Random& random) {
  for (auto& entries : draft.to) {
    std::shuffle(entries.begin(), entries.end(), random);
    if (entries.size() > 1 && random.chance(40)) entries.resize(random.upTo(entries.size()));
    for (std::string& entry : entries) {
      const std::string changes[] = {"/1", "/2", std::string("@") + draft.someName(random).letter};
      if (random.chance(10)) entry += random.oneOf(changes);
    }
    if (random.chance(25)) entries.push_back(draft.someName(random).letter + std::string("-"));
    if (random.chance(10)) entries.emplace_back("Z-");
    entries.insert(entries.begin(), "*");
  }
  if (random.chance(10)) addPlug(draft, false, true);
}

/// Asks for what the sources hold, but linked by another repository, so that any hop will do. There
/// are more of them, each at both weights.
void askForIdleStep(QuestionDraft& draft, Random& random) {
  const Name& wanted = draft.someName(random);
  for (auto& entries : draft.from) entries.front() = "^";
  for (auto& entries : draft.to) entries = {wanted.letter + wanted.start};
  for (const Name& name : draft.names) {
    draft.addHop(name, name.start, random.oneOf(name.versions).number);
  }
  for (std::size_t left = draft.hops.size(); left > 0; --left) {
    QuestionDraft::Hop again = draft.hops[left - 1];
    again.mark = again.mark == "!" ? "" : "!";
    draft.hops.insert(draft.hops.begin() + static_cast<std::ptrdiff_t>(random.below(left)), again);
  }
}

/// Sources that the repository did not make.
void replaceSources(QuestionDraft& draft, Random& random) {
  for (auto& entries : draft.from) {
    const bool isFormer = random.chance(50);
    if (!isFormer && entries.size() > 1 && random.chance(50)) entries.pop_back();
    entries.insert(entries.begin(), isFormer ? "^" : "*");
  }
  for (auto& entries : draft.to) {
    if (random.chance(15)) entries.insert(entries.begin(), "^");
  }
  if (random.chance(20)) askForIdleStep(draft, random);
}

void addTailOnly(QuestionDraft& draft, Random& random) {
  Name& name = draft.someName(random);
  leaveFree(draft, name.letter);
  addTail(draft, name, random);
}

void addSeveral(QuestionDraft& draft, Random& random);

}  // namespace

const std::vector<Difficulty>& difficulties() {
  static const std::vector<Difficulty> all{
      {"None", [](QuestionDraft&, Random&) {}},
      {"Tail", addTailOnly},
      {"HostLinks", addHostLinks, {{"host links", 8}}},
      {"VariantLinks", addVariantLinks, {{"host links", 8}, {"learnt conflicts", 1}}},
      {"ForeignHops", addForeignHops, {{"foreign hops", 15}}, true},
      {"LostHop", addLostHop, {{"throws", 6}}},
      {"UnlinkableVersion", addUnlinkableVersion, {{"throws", 6}}},
      {"FailingCallback", addFailingCallback, {{"throws", 7}}},
      {"OtherAnswers", addOtherAnswers, {{"other answers", 15}}},
      {"Twins", addTwins},
      {"Requirements", addRequirements},
      {"Cycle", addCycle, {{"throws", 5}}},
      {"SelfLinks", addSelfLinks, {}, true, true},
      {"Chain", addChain, {{"brought in", 6}}},
      {"TargetsPutTogether", putTargetsTogether, {{"none", 4}}},
      {"OtherSources", replaceSources, {{"none", 4}}},
      {"Several", addSeveral, {{"throws", 4}}, true, true},
  };
  return all;
}

namespace {

void addSeveral(QuestionDraft& draft, Random& random) {
  for (std::size_t left = 1 + random.upTo(2); left > 0; --left) {
    const std::size_t others = difficulties().size() - 1;
    difficulties()[random.below(others)].addTo(draft, random);
  }
}

/// One hop each, so that together the names have more choices than are tried one by one.
void addBeside(QuestionDraft& draft, Random& random) {
  const std::string kinds = random.chance(40) ? "" : random.chance(50) ? "." : ">";
  for (std::size_t left = 9 + random.upTo(4); left > 0; --left) {
    const char* const some[] = {"", ".", ">"};
    const auto letter = static_cast<char>('A' + draft.names.size() + draft.beside.size());
    if (letter >= 'Z') return;
    draft.beside.push_back(letter + (random.chance(80) ? kinds : some[random.below(3)]));
  }
}

}  // namespace

std::string hardQuestion(const Difficulty& difficulty, Random& random) {
  const std::size_t names = random.upTo(3) + (random.chance(25) ? 1 : 0);
  QuestionDraft draft = QuestionDraft::either(random, names);
  draft.isInOrder = random.chance(80);
  difficulty.addTo(draft, random);
  if (random.chance(60)) addBeside(draft, random);
  return draft.text(random);
}

}  // namespace test
