#pragma once

namespace evopath {

/// What the program says with its exit status.
enum class ExitStatus {
  Found = 0,
  Sound = 0,  ///< a checked catalogue, but for notes
  NoPath = 1,
  Doubtful = 1,  ///< a checked catalogue, with warnings
  BadInput = 2,  ///< of the command line or of a catalogue
  // 130, as shells put it, is to be ended by Ctrl-C
};

}  // namespace evopath
