#pragma once

#include <string>
#include <vector>

#include "catalogue/catalogue.hpp"
#include "catalogue/explanation/question_side.hpp"

namespace evopath {

/// What an argument that `parseSelection` reads is called in help texts; completions offer files
/// after the at sign.
inline constexpr const char* selectionTypeName = "NAME=VERSION|@FILE[,...]";

/// What arguments are called that name metamodels; completions ask the catalogue for them.
inline constexpr const char* nameTypeName = "NAME";
inline constexpr const char* nameOrVersionTypeName = "NAME[=VERSION]";

/// The selection that arguments of the forms NAME=VERSION and @FILE make, a file giving `side` of
/// its question where it is a catalogue (see `readSelectionFile`, also for what is thrown). What
/// has an equals sign is no @FILE, for names may begin with an at sign. Throws
/// std::invalid_argument, naming `option` and what was given, for an argument of another form or a
/// name that stands twice.
tarn::evolution::catalogue::Selection parseSelection(
    const std::string& option, const std::vector<std::string>& arguments,
    tarn::evolution::catalogue::QuestionSide side = tarn::evolution::catalogue::QuestionSide::From);

}  // namespace evopath
