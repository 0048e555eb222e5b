// Lets every single allocation of the catalogue library fail, and all after it: its own, and those
// of SQLite.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <sstream>

#include "catalogue/c/tarn_evolution_catalogue.h"
#include "catalogue/catalogue_error.hpp"
#include "catalogue/catalogue_repository.hpp"
#include "catalogue/check/check.hpp"
#include "catalogue/check/open_draft.hpp"
#include "catalogue/explanation/explanation.hpp"
#include "catalogue/explorer/explorer_html.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/picture/catalogue_graph.hpp"
#include "catalogue/picture/metamodel_details.hpp"
#include "catalogue/picture/path_dot.hpp"
#include "catalogue/picture/path_html.hpp"
#include "catalogue/picture/path_json.hpp"
#include "catalogue/picture/path_mermaid.hpp"
#include "catalogue/picture/path_picture.hpp"
#include "catalogue/picture/path_svg.hpp"
#include "catalogue/picture/path_text.hpp"
#include "catalogue/store/sqlite_catalogue_repository.hpp"
#include "support/failing_allocations.hpp"
#include "support/random_run.hpp"
#include "support/store_folder.hpp"
#include "support/store_operations.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

const std::filesystem::path folder = quickFolder("catalogue-allocation");

/// What an operation gives; "error: " and more for what it says is wrong, "no memory" for that.
std::string outcomeOf(const StoreOperation& operation) {
  try {
    return operation.run(folder);
  } catch (const CatalogueError& error) {
    return std::string("error: ") + error.what();
  } catch (const std::bad_alloc&) {
    return "no memory";
  }
}

/// Has SQLite's allocations fail like all others.
class SqliteMemory {
 public:
  SqliteMemory() {
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &usual);
    sqlite3_mem_methods methods = usual;
    methods.xMalloc = [](int size) { return isFailing() ? nullptr : usual.xMalloc(size); };
    methods.xRealloc = [](void* memory, int size) {
      return isFailing() ? nullptr : usual.xRealloc(memory, size);
    };
    sqlite3_config(SQLITE_CONFIG_MALLOC, &methods);
  }

 private:
  static bool isFailing() { return FailingAllocations::failsNow(); }

  inline static sqlite3_mem_methods usual{};
};

const SqliteMemory sqliteMemory;  // before SQLite is first used

template <class Write>
std::string written(const Write& write) {
  std::ostringstream out;
  write(out);
  if (!out) throw std::bad_alloc();  // which is how a stream tells of it
  return out.str();
}

std::string drawnIn(const std::filesystem::path& place) {
  const auto repository = openCatalogue(place / "x.store");
  const Question question = repository->getQuestion().value();
  const auto sources = repository->combine(question.from);
  const auto path = repository->findPath(question.from, question.to);
  const PathPicture picture = drawPath(*repository, sources.front(), path.value());
  std::string all = written([&](auto& out) { writePathText(picture, Colouring::Terminal, out); });
  for (const auto write :
       {&writePathDot, &writePathHtml, &writePathJson, &writePathMermaid, &writePathSvg}) {
    all += written([&](auto& out) { write(picture, out); });
  }
  const CatalogueGraph graph = makeGraph(*repository, {{}, true, 100});
  all += written([&](auto& out) { writeGraphDot(graph, out); });
  all += written([&](auto& out) {
    writeExplorerHtml(*repository, "x", {{{question, R"({"line":1,"form":1,"error":""})"}}}, out);
  });
  return all + written([&](auto& out) { writeSummaryJson(summariseAll(*repository), out); });
}

std::string explainedIn(const std::filesystem::path& place) {
  const auto repository = openCatalogue(place / "old.json");
  const Explanation explanation = explain(*repository, {selection("A3"), selection("B1")});
  return std::to_string(explanation.reason.index()) + " " + std::to_string(explanation.questions);
}

std::string checkedIn(const std::filesystem::path& place) {
  std::string all;
  for (const char* file : {"old.json", "x.store"}) {
    for (const Finding& finding : check(readDraft(place / file))) all += finding.message + "\n";
  }
  return all;
}

/// Throws what C is told by a status.
void expectAnswer(tarn_evolution_status status, char* message) {
  const std::unique_ptr<char, decltype(&tarn_evolution_free)> owner(message, tarn_evolution_free);
  if (status == TARN_EVOLUTION_OUT_OF_MEMORY) throw std::bad_alloc();
  if (status < 0) throw std::logic_error(message);
}

tarn_evolution_status addShapes(void*, const char* name, const tarn_evolution_range*, size_t,
                                tarn_evolution_rows* rows) {
  for (const char* version : {"a version that takes an allocation", "1.0.0"}) {
    tarn_evolution_rows_add_metamodel(rows, name, version, nullptr, nullptr, 0, nullptr);
  }
  return 0;  // whatever could not be added
}

std::string askedFromC(const std::filesystem::path&) {
  const tarn_evolution_callbacks callbacks{
      sizeof callbacks,
      nullptr,
      addShapes,
      [](void*, const char* name, const char*, tarn_evolution_rows* rows) -> int32_t {
        const tarn_evolution_hop hop{name, "a version that takes an allocation", "1.0.0", 0};
        tarn_evolution_rows_add_hop(rows, &hop, nullptr);
        return 0;
      },
      nullptr,
      nullptr,
      [](void*, const char* name, const char* version, tarn_evolution_rows* rows) -> int32_t {
        const tarn_evolution_range range{"1.0.0", nullptr};
        const tarn_evolution_requirement required{name, version, {"colour", &range, 1}, 1};
        tarn_evolution_rows_add_requirement(rows, &required, nullptr);
        return 0;
      }};
  const tarn_evolution_named_version from{"shape", "a version that takes an allocation"};
  const tarn_evolution_named_version to{"shape", "1.0.0"};
  char* message = nullptr;
  tarn_evolution_catalogue* catalogue = nullptr;
  expectAnswer(tarn_evolution_open_callbacks(&callbacks, &catalogue, &message), message);
  const std::unique_ptr<tarn_evolution_catalogue, decltype(&tarn_evolution_catalogue_free)> owner(
      catalogue, tarn_evolution_catalogue_free);
  tarn_evolution_steps* path = nullptr;
  auto status = tarn_evolution_find_path(catalogue, &from, 1, &to, 1, nullptr, &path, &message);
  const std::unique_ptr<tarn_evolution_steps, decltype(&tarn_evolution_steps_free)> pathOwner(
      path, tarn_evolution_steps_free);
  expectAnswer(status, message);
  std::string all = std::to_string(status);
  char* text = nullptr;
  status = tarn_evolution_steps_render(path, TARN_EVOLUTION_HTML, &text, &message);
  expectAnswer(status, message);
  const std::unique_ptr<char, decltype(&tarn_evolution_free)> textOwner(text, tarn_evolution_free);
  return all + text;
}

std::vector<StoreOperation> allOperations() {
  std::vector<StoreOperation> all = storeOperations(CatalogueSize::Small);
  const auto isDrafts = [](const auto& each) { return each.name == "drafts and selections"; };
  const Disk disk = std::find_if(all.begin(), all.end(), isDrafts)->disk;
  all.push_back({"drawing", disk, "", drawnIn});
  all.push_back({"explaining", disk, "", explainedIn});
  all.push_back({"checking", disk, "", checkedIn});
  all.push_back({"asking from C", disk, "", askedFromC});
  return all;
}

/// An operation with what it comes to when nothing fails.
class Trial {
 public:
  explicit Trial(const StoreOperation& operation) : operation_(operation) {
    writeDisk(operation.disk, folder);
    before_ = contentOf(folder / operation.file);
    writeDisk(operation.disk, folder);
    FailingAllocations counting(std::numeric_limits<std::size_t>::max() - 1, false);
    answer_ = operation.run(folder);
    count_ = counting.count();
    counting.end();
    after_ = contentOf(folder / operation.file);
  }

  /// Of allocations that it makes.
  std::size_t count() const { return count_; }

  void fail(std::size_t first, bool persists) const {
    writeDisk(operation_.disk, folder);
    FailingAllocations failing(first, persists);
    const std::string outcome = outcomeOf(operation_);
    failing.end();
    if (outcome != "no memory") {
      EXPECT_EQ(outcome, answer_);
    }
    const std::string content = contentOf(folder / operation_.file);
    EXPECT_TRUE(content == after_ || (outcome != answer_ && content == before_));
    for (const auto& [name, bytes] : readDisk(folder)) EXPECT_FALSE(name.starts_with("."));
  }

 private:
  const StoreOperation& operation_;
  std::string answer_;
  std::string before_;  // the content of the operation's file
  std::string after_;
  std::size_t count_ = 0;
};

TEST(CatalogueAllocation, EveryFailureArrivesAndLosesNothing) {
  const RandomRun run(200);
  Random random(run.seed());
  for (const StoreOperation& operation : allOperations()) {
    const Trial trial(operation);
    // In an ordinary run not every allocation, but any.
    const std::size_t stride = std::max<std::size_t>(1, trial.count() / run.cases());
    for (const bool persists : {false, true}) {
      for (std::size_t first = random() % stride; first < trial.count(); first += stride) {
        SCOPED_TRACE(operation.name + ", allocation " + std::to_string(first) +
                     (persists ? " and all after it" : ""));
        trial.fail(first, persists);
        if (HasFailure()) return;
      }
    }
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace test
