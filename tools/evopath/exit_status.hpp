#pragma once

namespace evopath {

/// What the program says with its exit status.
enum class ExitStatus {
  Found = 0,
  Sound = 0,  ///< a checked catalogue, but for notes
  Same = 0,   ///< compared catalogues, in what they hold and answer
  NoPath = 1,
  Different = 1,
  Doubtful = 1,  ///< a checked catalogue, with warnings
  BadInput = 2,  ///< of the command line or of a catalogue; or output that cannot be written
  Open = 3,      ///< a limit has ended the search: whether there is a path is not known
  // 130 and 143, as shells put it, are to be ended by Ctrl-C and by SIGTERM
};

}  // namespace evopath
