// Power fails in the middle of an operation: the file that it changes is the old one or the new
// one, and the next operation finds its way.
#include <gtest/gtest.h>

#include <set>

#include "catalogue/catalogue_error.hpp"
#include "support/forgetful_disk.hpp"
#include "support/random_run.hpp"

namespace test {
namespace {

using Rest = ForgetfulDisk::Rest;

const std::filesystem::path folder = quickFolder("store-power");

std::set<std::string> namesOf(const Disk& disk) {
  std::set<std::string> names;
  for (const auto& [name, bytes] : disk) names.insert(name);
  return names;
}

/// The content of a file when this is on the disk.
std::string contentIn(const Disk& disk, const std::string& file) {
  writeDisk(disk, folder);
  return contentOf(folder / file);
}

struct Outcome {
  std::string before;
  std::string after;
  std::set<std::string> names;  // that are there in the end
};

/// Has the operation go on from what is left, and looks at what it comes to.
void expectSound(const StoreOperation& operation, const Outcome& outcome, const Disk& left) {
  const std::string content = contentIn(left, operation.file);
  ASSERT_TRUE(content == outcome.before || content == outcome.after) << content;
  writeDisk(left, folder);
  try {
    operation.run(folder);
  } catch (const tarn::evolution::catalogue::CatalogueError& error) {
    // All is done, which is a mistake to repeat.
    ASSERT_TRUE(content == outcome.after) << error.what();
  }
  std::set<std::string> names = namesOf(readDisk(folder));
  names.erase("." + operation.file + ".lock");  // means nothing, and goes with the next change
  EXPECT_EQ(names, outcome.names);
  ASSERT_TRUE(contentOf(folder / operation.file) == outcome.after);
}

/// All that can be on the disk when power fails, with so many random ones at every step.
std::set<Disk> allLeft(const ForgetfulDisk& disk, std::size_t randomOnes, Random& random) {
  std::set<Disk> result;
  for (std::size_t steps = 0; steps <= disk.steps(); ++steps) {
    for (const Rest rest :
         {Rest::None, Rest::All, Rest::NamesOnly, Rest::LastNameOnly, Rest::ContentOnly}) {
      result.insert(disk.leftAfter(steps, rest, random));
    }
    for (std::size_t left = randomOnes; left > 0; --left) {
      result.insert(disk.leftAfter(steps, Rest::Some, random));
    }
  }
  return result;
}

TEST(StorePower, LeavesTheOldFileOrTheNewOneWhenItFailsAtAnyMoment) {
  const RandomRun run(100);
  Random random(run.seed());
  const std::size_t randomOnes = (run.cases() + 99) / 100;
  for (const StoreOperation& operation : storeOperations()) {
    if (operation.file.empty()) continue;
    SCOPED_TRACE(operation.name);
    const std::string before = contentIn(operation.disk, operation.file);
    writeDisk(operation.disk, folder);
    ForgetfulDisk disk(folder);
    operation.run(folder);
    disk.end();
    EXPECT_GT(disk.steps(), 1U);
    const Outcome outcome{before, contentOf(folder / operation.file), namesOf(readDisk(folder))};
    for (const Disk& left : allLeft(disk, randomOnes, random)) {
      expectSound(operation, outcome, left);
      if (HasFatalFailure()) return;
    }
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace test
