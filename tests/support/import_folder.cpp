#include "support/import_folder.hpp"

#include <algorithm>
#include <filesystem>

namespace test {

namespace fs = std::filesystem;

namespace {

const ImportSample& sampleOf(const std::string& word) {
  const auto& samples = importSamples();
  return *std::find_if(samples.begin(), samples.end(),
                       [&](const auto& each) { return each.word == word; });
}

}  // namespace

void ImportFolder::writeFiles(const std::vector<std::pair<std::string, std::string>>& files) const {
  for (const auto& [name, text] : files) {
    fs::create_directories(path("in/" + name).parent_path());
    write("in/" + name, text);
  }
}

std::string ImportFolder::imported(const std::string& word, const std::string& options) const {
  writeFiles(sampleOf(word).files);
  const auto [status, said] = run("import --from " + word + " in c.json " + options + " 2>&1");
  if (status != 0) return said;
  std::string rows = "\n" + read("c.json");
  const std::pair<const char*, const char*> shorter[] = {{"\"expensive\":false", "cheap"},
                                                         {"\"expensive\":true", "expensive"},
                                                         {"\"name\":", ""},
                                                         {"\"version\":", ""},
                                                         {"\"from\":", ""},
                                                         {"\"to\":", ""},
                                                         {"\"range\":", ""},
                                                         {"\"dependencies\":", ""},
                                                         {"\"", ""},
                                                         {"{", ""},
                                                         {"}", ""},
                                                         {"[]", "-"},
                                                         {"\nmetamodels:[\n", "\n"},
                                                         {"],\nhops:[\n", ";\n"},
                                                         {",\n", "\n"}};
  for (const auto& [text, with] : shorter) {
    for (std::size_t at = 0; (at = rows.find(text)) != std::string::npos;) {
      rows.replace(at, std::string(text).size(), with);
    }
  }
  rows.erase(rows.size() - 2, 1);  // the end of the list of hops
  return said + rows;
}

std::string ImportFolder::said(const std::string& word, const std::string& name,
                               const std::string& text, const std::string& options) const {
  fs::remove_all(path("in"));
  writeFiles({{name, text}});
  return run("import --from " + word + " in x.json " + options + " 2>&1").second;
}

}  // namespace test
