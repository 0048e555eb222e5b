#pragma once

namespace evopath {

/// What the program says with its exit status.
enum ExitStatus : int {
  found = 0,
  noPath = 1,
  badInput = 2,  ///< of the command line or of a catalogue
};

}  // namespace evopath
