// Nobody but SQLite opens a database: whoever closed a descriptor of his own would take all locks
// away that SQLite holds on the file.
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <set>

#include "support/file_calls.hpp"
#include "support/store_operations.hpp"

namespace test {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view beginning = "SQLite format 3\0"sv;

bool isSqlite(const void* caller) {
  Dl_info info{};
  return dladdr(caller, &info) != 0 &&
         std::string(info.dli_fname).find("sqlite") != std::string::npos;
}

/// Notes databases that others than SQLite open, by what they hold then or when they are closed.
class OpenWatch : public FileCallWatch {
 public:
  using FileCallWatch::FileCallWatch;

  int before(const FileCall& call) override {
    if (call.kind == FileCall::Kind::Close) look(call, call.descriptor);
    return 0;
  }
  void after(const FileCall& call, long result) override {
    if (call.caller == nullptr || call.kind == FileCall::Kind::Close) return;
    ++opened;
    look(call, static_cast<int>(result));
  }

  std::set<std::string> found;
  int opened = 0;

 private:
  /// Opens the file itself, which must not happen while SQLite has it open.
  void look(const FileCall& call, int descriptor) {
    if (isSqlite(call.caller)) return;
    char bytes[beginning.size()] = {};
    const std::string again = "/proc/self/fd/" + std::to_string(descriptor);
    const int file = open(again.c_str(), O_RDONLY | O_CLOEXEC);
    const bool isDatabase = read(file, bytes, sizeof(bytes)) == sizeof(bytes) &&
                            std::string_view(bytes, sizeof(bytes)) == beginning;
    close(file);
    if (isDatabase) found.insert(call.path.substr(watchedFolder().size() + 1));
  }
};

const std::filesystem::path folder = quickFolder("store-watch");

TEST(StoreWatch, NobodyButSqliteOpensADatabase) {
  for (const StoreOperation& operation : storeOperations()) {
    writeDisk(operation.disk, folder);
    OpenWatch watch(folder);
    operation.run(folder);
    EXPECT_EQ(watch.found, std::set<std::string>()) << operation.name;
    EXPECT_GT(watch.opened, 0) << operation.name;
  }
  std::filesystem::remove_all(folder);
}

TEST(StoreWatch, SeesWhoOpensOne) {
  const std::string database(beginning);
  writeDisk({{"a", database + "is here"}, {"b", database}, {"c", "none"}}, folder);
  OpenWatch watch(folder);
  std::ifstream a(folder / "a");
  close(open((folder / "b").c_str(), O_RDONLY));
  std::ifstream c(folder / "c");
  std::ofstream(folder / "d") << database;
  EXPECT_EQ(watch.found, (std::set<std::string>{"a", "b", "d"}));
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace test
