#pragma once

#include <cstdint>
#include <string>

namespace tarn::evolution::catalogue {

/// What a catalogue answers to a question.
struct AskedAnswer {
  enum class Kind {
    Found,
    Absent,   ///< there is no path
    Unknown,  ///< it does not know a version of the question
    Open,     ///< a limit was reached
  };

  Kind kind = Kind::Absent;
  std::uint64_t weight = 0;  ///< of the path
  std::string reason = {};   ///< of what is unknown, the first: "there is no version ..."

  bool isFound() const { return kind == Kind::Found; }
};

}  // namespace tarn::evolution::catalogue
