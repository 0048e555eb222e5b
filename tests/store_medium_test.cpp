// Stores on a medium that cannot be written.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>

#include "catalogue/catalogue_error.hpp"
#include "support/file_calls.hpp"
#include "support/store_operations.hpp"

namespace test {
namespace {

using Kind = FileCall::Kind;

const std::filesystem::path folder = quickFolder("store-medium");

/// Has the system behave as it does for such a medium.
class ReadOnlyMedium : public FileCallWatch {
 public:
  ReadOnlyMedium() : FileCallWatch(folder) {}

  int before(const FileCall& call) override {
    const bool writes = call.canWrite || call.kind == Kind::Make || call.kind == Kind::Unlink ||
                        call.kind == Kind::Rename;
    return writes ? EROFS : 0;
  }
};

StoreOperation operationOf(const std::string& name) {
  const auto all = storeOperations();
  return *std::find_if(all.begin(), all.end(), [&](const auto& each) { return each.name == name; });
}

TEST(StoreMedium, IsReadAsElsewhereAlsoThroughALink) {
  for (const char* name : {"asking", "asking, written ahead", "drafts and selections"}) {
    const StoreOperation operation = operationOf(name);
    writeDisk(operation.disk, folder);
    const std::string answer = operation.run(folder);
    writeDisk(operation.disk, folder);
    std::filesystem::create_directory(folder / "links");
    for (const auto& [file, bytes] : operation.disk) {
      if (file.ends_with("-wal")) continue;
      std::filesystem::create_symlink("../" + file, folder / "links" / file);
    }
    ReadOnlyMedium medium;
    EXPECT_EQ(operation.run(folder), answer) << name;
    EXPECT_EQ(operation.run(folder / "links"), answer) << name;
  }
  std::filesystem::remove_all(folder);
}

TEST(StoreMedium, RefusesWhatWouldHaveToBeWritten) {
  for (const StoreOperation& operation : storeOperations()) {
    if (operation.file.empty() || operation.name == "asking, written ahead") continue;
    writeDisk(operation.disk, folder);
    ReadOnlyMedium medium;
    try {
      operation.run(folder);
      ADD_FAILURE() << operation.name;
    } catch (const tarn::evolution::catalogue::CatalogueError& error) {
      EXPECT_NE(error.reason().find(operation.name == "asking, left unfinished"
                                        ? "left unfinished"
                                        : "Read-only file system"),
                std::string::npos)
          << operation.name << ": " << error.what();
    }
    medium.end();
    EXPECT_EQ(readDisk(folder), operation.disk) << operation.name;
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace test
