#pragma once

namespace evopath {

/// What the program says with its exit status.
enum ExitStatus : int {
  found = 0,
  sound = 0,  ///< a checked catalogue, but for notes
  noPath = 1,
  doubtful = 1,  ///< a checked catalogue, with warnings
  badInput = 2,  ///< of the command line or of a catalogue
  // 130, as shells put it, is to be ended by Ctrl-C
};

}  // namespace evopath
