#include "support/random_question.hpp"

#include <algorithm>
#include <map>
#include <utility>

#include "support/items.hpp"

namespace test {

namespace {

std::string rangeText(std::size_t lower, std::size_t upper) {
  return "[" + std::to_string(lower) + "," + std::to_string(upper) + ")";
}

std::string anyNumber(const QuestionDraft::Name& name, Random& random) {
  return random.oneOf(name.versions).number;
}

/// A range that some of the versions may lie in.
std::string someRange(const QuestionDraft::Name& name, Random& random) {
  const std::size_t lower = random.upTo(name.versions.size());
  const std::string& single = name.versions[lower - 1].number;
  if (single.starts_with("text") && random.chance(50)) return name.letter + single;
  return name.letter + rangeText(lower, lower + random.upTo(3));
}

void addLooseName(QuestionDraft& draft, Random& random) {
  const std::size_t last = random.upTo(5);
  QuestionDraft::Name& name = draft.addName();
  for (std::size_t n = 1; n <= last; ++n) {
    const std::string number = std::to_string(n);
    const bool isText = random.chance(10);
    name.versions.push_back(
        {(isText ? "text" : "") + number, isText && n % 2 == 0 ? "~" + number : "", {}, {}});
    for (const QuestionDraft::Name& needed : draft.names) {
      if (needed.letter == name.letter || !random.chance(35)) continue;
      name.versions.back().needs.push_back(someRange(needed, random));
    }
  }
  for (const auto& before : name.versions) {
    for (const auto& after : name.versions) {
      if (&before == &after || (&before + 1 != &after && !random.chance(20))) continue;
      for (int copies = random.chance(8) ? 2 : 1; copies > 0; --copies) {
        draft.addHop(name, before.number, after.number, random.chance(15) ? "!" : "");
      }
    }
  }
}

/// Which versions of the names stand beside one another at one time.
using Epoch = std::map<char, std::size_t>;

/// What a version needs: what it stands beside, or a little more.
std::vector<std::string> wovenNeeds(char name, std::size_t version,
                                    const std::vector<Epoch>& epochs, Random& random) {
  std::vector<std::string> needs;
  for (char needed = 'A'; needed < name; ++needed) {
    if (!random.chance(45)) continue;
    std::size_t lower = ~std::size_t{0};
    std::size_t upper = 0;
    for (const Epoch& epoch : epochs) {
      if (epoch.at(name) != version) continue;
      lower = std::min(lower, epoch.at(needed));
      upper = std::max(upper, epoch.at(needed) + 1);
    }
    if (random.chance(25) && lower > 1) --lower;
    if (random.chance(25)) ++upper;
    needs.push_back(needed + rangeText(lower, upper));
  }
  return needs;
}

void addWovenHops(QuestionDraft& draft, const QuestionDraft::Name& name, Random& random) {
  const auto mark = [&](unsigned percent) { return random.chance(percent) ? "!" : ""; };
  const std::size_t last = name.versions.size();
  for (std::size_t version = 1; version < last; ++version) {
    const std::string number = std::to_string(version);
    const std::string next = std::to_string(version + 1);
    draft.addHop(name, number, next, mark(20));
    if (random.chance(10)) draft.addHop(name, number, next, mark(50));
    if (version + 2 <= last && random.chance(35)) {
      draft.addHop(name, number, std::to_string(version + 2), mark(50));
    }
  }
}

}  // namespace

QuestionDraft QuestionDraft::loose(Random& random, std::size_t nameCount) {
  QuestionDraft draft;
  for (; nameCount > 0; --nameCount) addLooseName(draft, random);
  draft.direction = random.chance(60) ? "forward" : "any";
  for (Name& name : draft.names) {
    name.start = name.versions.front().number;
    name.goal = name.versions.back().number;
  }
  draft.settleEnds(random, 80, 80);
  return draft;
}

QuestionDraft QuestionDraft::web(Random& random, std::size_t nameCount) {
  QuestionDraft draft;
  std::vector<Epoch> epochs(1);
  for (; nameCount > 0; --nameCount) epochs[0][draft.addName().letter] = 1;
  for (std::size_t left = 2 + random.upTo(3); left > 0; --left) {
    epochs.push_back(epochs.back());
    for (auto& [name, version] : epochs.back()) version += random.chance(50) ? 1 : 0;
  }
  for (Name& name : draft.names) {
    const std::size_t last = epochs.back()[name.letter];
    for (std::size_t version = 1; version <= last; ++version) {
      name.versions.push_back(
          {std::to_string(version), {}, wovenNeeds(name.letter, version, epochs, random), {}});
    }
    name.start = "1";
    name.goal = std::to_string(last);
    addWovenHops(draft, name, random);
  }
  draft.direction = random.chance(80) ? "forward" : "any";
  draft.settleEnds(random, 100, 90);
  return draft;
}

QuestionDraft QuestionDraft::rivals(Random& random, std::size_t nameCount) {
  QuestionDraft draft;
  for (; nameCount > 0; --nameCount) draft.addName(3);
  const unsigned percent = random.chance(50) ? 100 : 60;
  for (Name& name : draft.names) {
    for (const Name& other : draft.names) {
      if (other.letter == name.letter || !random.chance(percent)) continue;
      name.versions[1].needs.push_back(std::string(1, other.letter) +
                                       (random.chance(70) ? '1' : '3'));
    }
    draft.addHop(name, "1", "2");
    draft.addHop(name, "2", "3", random.chance(15) ? "!" : "");
    if (random.chance(90)) draft.addHop(name, "1", "3", "!");
  }
  draft.direction = random.chance(80) ? "forward" : "any";
  draft.settleEnds(random, 100, 95);
  return draft;
}

QuestionDraft QuestionDraft::ladder(Random& random) {
  QuestionDraft draft;
  const std::size_t last = 10 + random.upTo(4);
  addWovenHops(draft, draft.addName(last), random);
  Name& name = draft.addName(last);
  for (std::size_t number = 1; number <= last; ++number) {
    const std::size_t lower = number - std::min(number - 1, random.below(3));
    name.versions[number - 1].needs = {'A' + rangeText(lower, number + random.upTo(3))};
  }
  addWovenHops(draft, name, random);
  draft.direction = "forward";
  draft.settleEnds(random, 100, 95);
  return draft;
}

QuestionDraft QuestionDraft::crowd(Random& random) {
  QuestionDraft draft;
  const std::size_t last = 8 + random.upTo(3);
  draft.addName(3);
  for (Version& version : draft.addName(last).versions) {
    if (random.chance(70)) version.needs = {someRange(draft.names[0], random)};
  }
  addWovenHops(draft, draft.names[0], random);
  const auto percent = static_cast<unsigned>(random.below(50));
  for (std::size_t number = 2; number < last; ++number) {
    const std::string between = std::to_string(number);
    draft.addHop(draft.names[1], "1", between, random.chance(percent) ? "!" : "");
    draft.addHop(draft.names[1], between, std::to_string(last), random.chance(percent) ? "!" : "");
  }
  draft.direction = random.chance(80) ? "forward" : "any";
  draft.settleEnds(random, 100, 90);
  return draft;
}

QuestionDraft QuestionDraft::closed(Random& random, std::size_t nameCount) {
  QuestionDraft draft;
  for (; nameCount > 0; --nameCount) {
    Name& name = draft.addName(random.upTo(4));
    for (const Name& needed : draft.names) {
      if (needed.letter == name.letter || !random.chance(70)) continue;
      for (Version& version : name.versions) version.needs.push_back(someRange(needed, random));
    }
    name.start = random.oneOf(name.versions).number;
    name.goal = random.oneOf(name.versions).number;
    addWovenHops(draft, name, random);
    if (random.chance(20)) draft.addHop(name, name.start, name.goal, random.chance(50) ? "!" : "");
  }
  draft.direction = "any";
  draft.from.resize(1);
  draft.to.resize(1);
  for (const Name& name : draft.names) {
    const bool isNeeded = &name != &draft.names.back() && random.chance(70);
    if (!isNeeded) draft.from[0].push_back(name.letter + name.start);
    if (!isNeeded || random.chance(70)) draft.to[0].push_back(name.letter + name.goal);
  }
  return draft;
}

QuestionDraft QuestionDraft::heads(Random& random, std::size_t nameCount) {
  QuestionDraft draft;
  const auto percent = static_cast<unsigned>(25 + random.below(60));
  for (; nameCount > 0; --nameCount) {
    Name& name = draft.addName(random.upTo(4));
    for (Version& version : name.versions) {
      for (const Name& needed : draft.names) {
        if (needed.letter == name.letter || !random.chance(percent)) continue;
        version.needs.push_back(someRange(needed, random));
      }
    }
    addWovenHops(draft, name, random);
  }
  draft.direction = random.chance(80) ? "forward" : "any";
  draft.from.resize(1);
  draft.to.resize(1);
  const std::size_t heads = random.upTo(2);
  for (std::size_t i = 0; i < draft.names.size(); ++i) {
    const bool isHead = i + heads >= draft.names.size();
    const Name& name = draft.names[i];
    if (isHead || random.chance(10)) draft.from[0].push_back(name.letter + name.start);
    if (!isHead && !random.chance(20)) continue;
    draft.to[0].push_back(name.letter + (random.chance(80) ? name.goal : anyNumber(name, random)));
  }
  return draft;
}

QuestionDraft QuestionDraft::rounds(Random& random) {
  QuestionDraft draft;
  const std::size_t movers = random.upTo(2);
  const std::size_t names = movers + random.upTo(2);
  for (std::size_t i = 0; i < names; ++i) {
    const bool isMover = i < movers;
    const std::size_t last = isMover ? 1 + random.upTo(2) : 2 + random.upTo(4);
    Name& name = draft.addName(last);
    if (isMover) name.goal = std::to_string(random.upTo(last));
    for (std::size_t number = 1; !isMover && number <= last; ++number) {
      for (std::size_t j = 0; j < movers; ++j) {
        const Name& mover = draft.names[j];
        if (random.chance(30)) continue;
        std::string wanted = anyNumber(mover, random);
        if (number == 1) wanted = mover.start;
        if (number == last) wanted = mover.goal;
        name.versions[number - 1].needs.push_back(mover.letter + wanted);
      }
    }
    for (std::size_t number = 2; number <= last; ++number) {
      const std::string ends[] = {std::to_string(number - 1), std::to_string(number)};
      const unsigned dear = isMover ? 15 : 10;
      draft.addHop(name, ends[0], ends[1], random.chance(dear) ? "!" : "");
      if (isMover ? random.chance(90) : random.chance(20)) {
        draft.addHop(name, ends[1], ends[0], random.chance(dear) ? "!" : "");
      }
    }
  }
  draft.direction = "any";
  draft.settleEnds(random, random.chance(80) ? 100 : 60, 80);
  return draft;
}

QuestionDraft QuestionDraft::either(Random& random, std::size_t nameCount) {
  return random.chance(50) ? loose(random, nameCount) : web(random, nameCount);
}

QuestionDraft::Name& QuestionDraft::addName(std::size_t last) {
  names.push_back({static_cast<char>('A' + names.size()), {}, {}, {}});
  Name& name = names.back();
  for (std::size_t number = 1; number <= last; ++number) {
    name.versions.push_back({std::to_string(number), {}, {}, {}});
  }
  if (last == 0) return name;
  name.start = "1";
  name.goal = std::to_string(last);
  return name;
}

void QuestionDraft::addHop(const Name& name, const std::string& before, const std::string& after,
                           const std::string& mark) {
  hops.push_back({name.letter, before, after, mark});
}

void QuestionDraft::addRequirements(Random& random, unsigned percent) {
  for (Name& name : names) {
    for (Version& version : name.versions) {
      if (!random.chance(percent)) continue;
      const Name& required = someName(random);
      if (required.letter == name.letter && !random.chance(10)) continue;
      const std::size_t last = required.versions.size();
      std::size_t lower = random.upTo(last);
      std::size_t upper = lower + random.upTo(3);
      if (random.chance(60)) (random.chance(50) ? lower = 1 : upper = last + 1);
      version.needs.push_back((random.chance(35) ? "%" : "&") + std::string(1, required.letter) +
                              rangeText(lower, std::max(upper, lower + 1)));
    }
  }
}

void QuestionDraft::settleEnds(Random& random, unsigned heldPercent, unsigned wantedPercent) {
  if (random.chance(25)) turnRound();
  from.emplace_back();
  to.emplace_back();
  for (const Name& name : names) {
    if (random.chance(heldPercent)) from[0].push_back(name.letter + name.start);
    if (random.chance(wantedPercent)) to[0].push_back(name.letter + name.goal);
  }
  for (auto* end : {&from, &to}) {
    if (!random.chance(15) || end->front().empty()) continue;
    end->push_back(end->front());
    std::string& changed = random.oneOf(end->back());
    const Name& name = names[static_cast<std::size_t>(changed[0] - 'A')];
    changed = name.letter + random.oneOf(name.versions).number;
    if (random.chance(50)) std::swap(end->front(), end->back());
  }
}

void QuestionDraft::turnRound() {
  for (Hop& hop : hops) std::swap(hop.from, hop.to);
  for (Name& name : names) std::swap(name.start, name.goal);
  if (direction == "forward") direction = "backward";
}

std::string QuestionDraft::text(Random& random) const {
  std::vector<std::string> items;
  for (const Name& name : names) {
    for (const Version& version : name.versions) {
      std::string item = name.letter + version.number + version.equivalent;
      char separator = ':';
      for (const std::string& need : version.needs) {
        item += std::exchange(separator, '+') + need;
      }
      for (const std::string& link : version.links) item += "=" + link;
      items.push_back(item);
    }
  }
  for (const Hop& hop : hops) items.push_back(hop.letter + hop.from + ">" + hop.to + hop.mark);
  items.insert(items.end(), more.begin(), more.end());
  if (!isInOrder) std::shuffle(items.begin(), items.end(), random);
  std::string text = joined(items);
  for (const auto* end : {&from, &to}) {
    for (const auto& entries : *end) {
      text += (&entries == &end->front() ? " | " : " , ") + joined(entries);
    }
  }
  text += " | " + direction;
  if (!beside.empty()) text += " | " + joined(beside);
  std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXY";  // Z is nobody's
  std::shuffle(letters.begin(), letters.end(), random);
  for (char& letter : text) {
    if (letter >= 'A' && letter < 'Z') letter = letters[static_cast<std::size_t>(letter - 'A')];
  }
  return text;
}

std::string randomQuestion(Random& random) {
  const std::size_t names = random.upTo(3) + (random.chance(25) ? 3 : 0);
  const std::size_t shape = random.below(100);
  QuestionDraft draft = shape < 15   ? QuestionDraft::rivals(random, names)
                        : shape < 20 ? QuestionDraft::ladder(random)
                        : shape < 27 ? QuestionDraft::crowd(random)
                        : shape < 42 ? QuestionDraft::heads(random, names + 1)
                        : shape < 52 ? QuestionDraft::rounds(random)
                                     : QuestionDraft::either(random, names);
  if (random.chance(25)) draft.addRequirements(random, random.chance(50) ? 15 : 40);
  draft.isInOrder = random.chance(80);
  return draft.text(random);
}

}  // namespace test
