#pragma once

#include <string>
#include <vector>

#include "support/random_run.hpp"

namespace test {

/// A question in the making. Names, A, B and so on, depend only on names before them, but for
/// rivals.
struct QuestionDraft {
  struct Version {
    std::string number;              ///< "2", "text2"
    std::string equivalent = {};     ///< "~2"
    std::vector<std::string> needs;  ///< "A[1,3)"
    std::vector<std::string> links;  ///< by the host: "A1"
  };
  struct Name {
    char letter;
    std::vector<Version> versions;
    std::string start;  ///< the version of the sources
    std::string goal;   ///< and that of the targets
  };
  struct Hop {
    char letter;
    std::string from;
    std::string to;
    std::string mark;  ///< "", "!", "@B"
  };

  /// Loose: ranges, hops that skip, go sideways or back, doubled hops, expensive hops, text
  /// versions with and without equivalents, names that only links bring in, targets that name a
  /// part.
  static QuestionDraft loose(Random& random, std::size_t nameCount);

  /// A hidden way through narrow ranges, with dear and cheap hops beside it: what one name saves,
  /// others may have to pay for.
  static QuestionDraft web(Random& random, std::size_t nameCount);

  /// Each name has a cheap way through a version that asks others to wait or to be done: where they
  /// ask that of one another, all but a few have to go the dear way.
  static QuestionDraft rivals(Random& random, std::size_t nameCount);

  /// Two names with many versions, each of which can stand beside few of the other name's.
  static QuestionDraft ladder(Random& random);

  /// A name with many ways side by side, which another one admits by turns.
  static QuestionDraft crowd(Random& random);

  /// Each version of a name depends on the same others: selections that leave names open mean many
  /// baselines, all of the same names.
  static QuestionDraft closed(Random& random, std::size_t nameCount);

  /// Names at the ends that bring in others, which bring in others again: some from the start, some
  /// on the way, by turns at this version or that.
  static QuestionDraft heads(Random& random, std::size_t nameCount);

  /// Names that can go back and forth, and have to, since others ask now for this version of theirs
  /// and now for that.
  static QuestionDraft rounds(Random& random);

  static QuestionDraft either(Random& random, std::size_t nameCount);

  /// A name with versions from 1 to the last one, which are its start and its goal; or with none.
  Name& addName(std::size_t last = 0);
  Name& someName(Random& random) { return random.oneOf(names); }

  /// Has some versions require others, mutually or not, held or not.
  void addRequirements(Random& random, unsigned percent);

  Version& someVersion(Random& random) { return random.oneOf(someName(random).versions); }
  void addHop(const Name& name, const std::string& from, const std::string& to,
              const std::string& mark = {});

  /// Says which names the ends hold, and adds alternatives.
  void settleEnds(Random& random, unsigned heldPercent, unsigned wantedPercent);

  /// Turns hops and ends round.
  void turnRound();

  /// As TestQuestion reads it, with other letters in any order.
  std::string text(Random& random) const;

  std::vector<Name> names;
  std::vector<Hop> hops;
  std::vector<std::string> more;               ///< further items of the catalogue
  std::vector<std::vector<std::string>> from;  ///< the alternatives of the sources, as entries
  std::vector<std::vector<std::string>> to;
  std::string direction;
  std::vector<std::string> beside;
  bool isInOrder = true;  ///< the catalogue; or its items stand in any order
};

/// A question of any shape but closed ones, as a text.
std::string randomQuestion(Random& random);

}  // namespace test
