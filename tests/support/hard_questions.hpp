#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "support/random_question.hpp"

namespace test {

/// One thing that catalogues and hosts do and that searches may forget, added to a question.
struct Difficulty {
  const char* name;
  void (*addTo)(QuestionDraft& draft, Random& random);
  std::map<std::string, double> least = {};  ///< of what should occur, cases in a hundred
  bool severalFail = false;  ///< more than one thing that a question asks of the application

  /// Versions may be linked to others of their own names. A large question whose plan cannot be
  /// carried out is then left to the search that tries everything, which need not end.
  bool mayBeLeft = false;

  friend std::ostream& operator<<(std::ostream& out, const Difficulty& difficulty) {
    return out << difficulty.name;
  }
};

const std::vector<Difficulty>& difficulties();

/// A small question with a difficulty. Half of them have so many names beside them that together
/// they are a large one.
std::string hardQuestion(const Difficulty& difficulty, Random& random);

}  // namespace test
