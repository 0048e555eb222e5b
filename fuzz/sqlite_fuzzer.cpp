// The opener of stores: whatever the file holds, it is answered from, or there is a CatalogueError.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "ask_everything.hpp"
#include "catalogue/catalogue_error.hpp"
#include "catalogue/store/sqlite_catalogue_repository.hpp"

namespace {

/// A folder that goes with the process.
class Folder {
 public:
  Folder() {
    const bool hasMemory = std::filesystem::is_directory("/dev/shm");
    std::string name = (hasMemory ? "/dev/shm" : std::filesystem::temp_directory_path().string());
    name += "/evopath-fuzz-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) std::abort();
    path_ = name;
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Folder folder;
  const auto file = folder.path() / "input";
  for (const char* suffix : {"-wal", "-shm", "-journal"}) {
    std::filesystem::remove(file.string() + suffix);
  }
  {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  try {
    tarn::evolution::catalogue::SqliteCatalogueRepository repository(file);
    fuzz::askEverything(repository);
  } catch (const tarn::evolution::catalogue::CatalogueError&) {
  }
  return 0;
}
