#include "catalogue/store/write_lock.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "support/store_operations.hpp"

namespace test {
namespace {

using tarn::evolution::catalogue::WriteLock;

TEST(WriteLock, IsHadByOneAtATime) {
  const std::filesystem::path folder = quickFolder("write-lock");
  writeDisk({{".x.lock", ""}}, folder);
  const auto file = folder / "x";
  std::atomic<int> holders = 0;
  std::atomic<int> collisions = 0;
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([&] {
      for (int i = 0; i < 2000; ++i) {
        // In place of waiting: who gives up at once tries again at once.
        try {
          const WriteLock lock(file, file, [] { throw 0; });
          if (holders++ != 0) ++collisions;
          std::this_thread::yield();
          --holders;
        } catch (int) {
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(collisions, 0);
  EXPECT_EQ(readDisk(folder), Disk());
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace test
