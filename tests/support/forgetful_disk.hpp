#pragma once

#include <map>
#include <string>
#include <variant>
#include <vector>

#include "support/file_calls.hpp"
#include "support/random_run.hpp"
#include "support/store_operations.hpp"

namespace test {

/// Notes what is written in a folder, and says what may be left of it when power fails.
///
/// What was written to a file is certain only when the file was synced after that, and which files
/// there are under which names only when the folder was. Of all else any part may be left: a later
/// write without an earlier one, some sectors of a write, a new name without the content of its
/// file, or with that of no file at all.
class ForgetfulDisk : public FileCallWatch {
 public:
  /// How much is left of what is not certain.
  enum class Rest { None, All, NamesOnly, LastNameOnly, ContentOnly, Some };

  /// What is in the folder when this begins is certain.
  explicit ForgetfulDisk(const std::filesystem::path& folder);

  int before(const FileCall& call) override;
  void after(const FileCall& call, long result) override;

  /// How many steps were noted.
  std::size_t steps() const { return steps_.size(); }

  /// What may be there when power fails after that many steps.
  Disk leftAfter(std::size_t steps, Rest rest, Random& random) const;

 private:
  using File = int;  // a number for each file that there ever was

  struct Write {
    File file;
    std::size_t offset;
    std::string bytes;
  };
  struct Resize {
    File file;
    std::size_t size;
  };
  struct Name {
    std::string name;
    File file;  // -1 for none any more
    std::string formerName = {};
  };
  struct SyncFile {
    File file;
  };
  struct SyncFolder {};
  using Step = std::variant<Write, Resize, Name, SyncFile, SyncFolder>;

  struct Left;

  File fileOf(int descriptor) const;
  std::string nameIn(const std::string& path) const {
    return path.substr(watchedFolder().size() + 1);
  }

  std::map<std::string, File> firstNames_;
  std::vector<std::string> firstContents_;
  std::map<unsigned long, File> files_;  // by inode
  std::map<std::string, File> names_;
  File count_ = 0;
  bool isNew_ = false;  // whether the file that is about to be made is not there yet
  std::vector<Step> steps_;
};

}  // namespace test
