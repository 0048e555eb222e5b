// Files that are no stores, or no longer whole ones.
#include <filesystem>

#include "catalogue/catalogue_error.hpp"
#include "catalogue/open_catalogue.hpp"
#include "catalogue/store/store_editing.hpp"
#include "catalogue/store/store_transfer.hpp"
#include "platform/exception.hpp"
#include "support/items.hpp"
#include "support/plain_database.hpp"
#include "support/random_run.hpp"
#include "support/store_folder.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

using DamagedStore = StoreFolder;

/// Asks for everything that a catalogue file holds.
void readAll(const std::filesystem::path& file) {
  const auto repository = openCatalogue(file);
  for (const std::u16string& name : repository->listNames()) {
    for (const auto& metamodel : repository->listMetamodels(name)) {
      std::vector<Hop> hops;
      repository->findHops(name, metamodel.descriptor.version, hops);
    }
    repository->listHops(name);
  }
  if (const auto question = repository->getQuestion()) {
    try {
      repository->findPath(question->from, question->to);
    } catch (const foundation::core::except::IMsgIDException&) {  // there is no such version
    }
  }
}

TEST_F(DamagedStore, IsToldFromOneThatIsOfAnotherKind) {
  make("good", contentOf(TestRepository("A1 B1:A1")));
  const auto changed = [&](const std::string& name, const char* statements) {
    std::filesystem::copy_file(path("good.store"), path(name));
    EXPECT_EQ(PlainDatabase(path(name)).run(statements), "");
  };
  PlainDatabase(path("foreign")).run("CREATE TABLE addresses (name TEXT)");
  changed("newer", "PRAGMA user_version = 4");
  changed("formless", "PRAGMA user_version = 0");
  changed("tableless", "DROP TABLE hops");
  changed("other table", "DROP TABLE hops; CREATE TABLE hops (name, source, position)");
  changed("hop to nowhere",
          "INSERT INTO hops SELECT NULL, name, version, 'x', 0, NULL FROM metamodels");
  const std::string bytes = read("good.store");
  write("short", bytes.substr(0, 50));
  write("half", bytes.substr(0, bytes.size() / 8192 * 4096));
  const std::pair<std::string, std::string> cases[] = {
      {"foreign", "is not a catalogue store, but a SQLite database of another kind"},
      {"newer", "is a store of form 4, newer than form 3, the last that this program knows"},
      {"formless", "the store is damaged: it is of no known form"},
      {"tableless", "the store is damaged: it has no hops"},
      {"other table", "the store is damaged: hops is not as it should be"},
      {"short", "the store is damaged: it ends within its header"},
      {"half", "the store is damaged: database disk image is malformed"},
  };
  for (const auto& [name, expected] : cases) {
    const auto file = path(name);
    EXPECT_EQ(catalogueErrorOf(file, [&] { openCatalogue(file); }), expected) << name;
    EXPECT_EQ(catalogueErrorOf(file, [&] { exportCatalogue(file, path("new.json")); }), expected);
    EXPECT_EQ(catalogueErrorOf(file, [&] { removeFromStore(file, {{u"A", {}}}); }), expected);
  }
  EXPECT_EQ(catalogueErrorOf(path("hop to nowhere"),
                             [&] {
                               std::vector<Hop> found;
                               openCatalogue(path("hop to nowhere"))->findHops(u"A", v(1), found);
                             }),
            "table hops: the store is damaged: Hop {A@1.0.0->x} leads to no version");
  EXPECT_EQ(catalogueErrorOf(path("good.json"),
                             [&] {
                               removeFromStore(path("good.json"), {{u"A", {}}});
                             }),
            "is not a catalogue store: it is not a SQLite database");
  EXPECT_FALSE(std::filesystem::exists(path("new.json")));
}

TEST_F(DamagedStore, AnswersOrSaysThatItIsDamaged) {
  std::string content = "Ax~7 A1..6 B9:Ax B1:A[1,9)";
  for (int n = 2; n < 7; ++n) content += " B" + std::to_string(n) + ":A" + std::to_string(n);
  for (int n = 1; n < 6; ++n) content += " B" + std::to_string(n) + ">" + std::to_string(n + 1);
  CatalogueContent catalogue = contentOf(TestRepository(content));
  catalogue.question = Question{selection("A1 B1"), selection("A6 B6")};
  make("good", catalogue);
  const std::string good = read("good.store");
  // Bits that are turned over, by their places, and perhaps a size after "#".
  const auto damage = [&](Random& random) {
    std::string bits;
    for (std::size_t left = random.upTo(8); left > 0; --left) {
      bits += std::to_string(random.below(8 * (left % 2 == 0 ? good.size() : 4096))) + " ";
    }
    return bits + (random.chance(10) ? "#" + std::to_string(random.below(good.size())) : "");
  };
  RandomRun run(400);
  run.ask(damage, [&](const std::string& bits, Random&) {
    std::string bytes = good;
    for (const std::string& bit : itemsIn(bits)) {
      if (bit[0] == '#') {
        bytes.resize(std::stoul(bit.substr(1)));
      } else {
        char& byte = bytes.at(std::stoul(bit) / 8);
        byte = static_cast<char>(byte ^ (1 << std::stoul(bit) % 8));
      }
    }
    write("damaged", bytes);
    const auto file = path("damaged");
    run.count("errors", catalogueErrorOf(file, [&] { readAll(file); }) != "no error");
  });
  run.expectPercentages({{"errors", 20}});
}

TEST_F(DamagedStore, IsReplacedByAnImport) {
  make("held", contentOf(TestRepository("A1 A2 A1>2")));
  const std::string good = read("held.store");
  write("held.store", good.substr(0, 4096));
  importCatalogue(path("held.json"), path("held.store"));
  EXPECT_EQ(read("held.store"), good);
}

}  // namespace
}  // namespace test
