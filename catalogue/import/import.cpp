#include "catalogue/import/import.hpp"

#include <algorithm>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "catalogue/import/catalogue_assembly.hpp"
#include "catalogue/import/catalogue_update.hpp"
#include "catalogue/import/readers.hpp"

namespace tarn::evolution::catalogue {

namespace fs = std::filesystem;

namespace {

/// The share of the work that reading is.
constexpr double readingShare = 0.8;

/// Tells how much of the sources has been read.
class ReadingProgress {
 public:
  ReadingProgress(const std::vector<fs::path>& sources, const StoreProgress& progress)
      : progress_(progress) {
    if (!progress) return;
    for (const fs::path& source : sources) total_ += sizeOf(source);
  }

  void advance(std::uint64_t bytes) {
    done_ += bytes;
    if (!progress_) return;
    const double share = total_ == 0 ? 0 : static_cast<double>(done_) / static_cast<double>(total_);
    progress_(readingShare * std::min(share, 1.0));
  }

 private:
  static std::uint64_t sizeOf(const fs::path& source) {
    std::error_code error;
    std::uint64_t size = fs::file_size(source, error);
    if (!error) return size;
    size = 0;
    fs::recursive_directory_iterator entry(source, error);
    for (const fs::recursive_directory_iterator end; !error && entry != end;
         entry.increment(error)) {
      std::error_code unknown;
      const std::uint64_t more = entry->file_size(unknown);
      if (!unknown) size += more;
    }
    return size;
  }

  const StoreProgress& progress_;
  std::uint64_t total_ = 0;
  std::uint64_t done_ = 0;
};

ForeignCatalogue readAll(ImportFormat format, const Reading& reading) {
  switch (format) {
    case ImportFormat::Operators:
      return readOperators(reading);
    case ImportFormat::Npm:
      return readNpmPackages(reading);
    case ImportFormat::Postgresql:
      return readPostgresExtensions(reading);
    case ImportFormat::UpdateGraph:
      return readUpdateGraphs(reading);
    case ImportFormat::Stops:
      return readRequiredStops(reading);
    case ImportFormat::Table:
      break;
  }
  return readTables(reading);
}

/// Sources that have one prefix, in the order of their first ones.
struct SourceGroup {
  std::string prefix;
  std::vector<fs::path> sources;
};

std::vector<SourceGroup> groupsOf(const ImportOptions& options) {
  const std::vector<std::string>& prefixes = options.prefixes;
  if (prefixes.size() > 1 && prefixes.size() != options.sources.size()) {
    throw std::invalid_argument("there must be one prefix for all sources, or one for each");
  }
  std::vector<SourceGroup> groups;
  for (std::size_t i = 0; i < options.sources.size(); ++i) {
    const std::string prefix = prefixes.empty()       ? ""
                               : prefixes.size() == 1 ? prefixes.front()
                                                      : prefixes[i];
    auto group = std::find_if(groups.begin(), groups.end(),
                              [&](const SourceGroup& each) { return each.prefix == prefix; });
    if (group == groups.end()) group = groups.insert(group, {prefix, {}});
    group->sources.push_back(options.sources[i]);
  }
  return groups;
}

}  // namespace

ImportReport importForeignCatalogue(const ImportOptions& options, const fs::path& catalogue,
                                    const StoreProgress& progress, ChangeMode mode) {
  ImportLog log(options.isLenient);
  ReadingProgress read(options.sources, progress);
  std::vector<ForeignPart> parts;
  for (const SourceGroup& group : groupsOf(options)) {
    const Reading reading{group.sources, options, log,
                          [&](std::uint64_t bytes) { read.advance(bytes); }};
    parts.push_back({group.prefix, readAll(options.format, reading)});
  }
  ImportReport report;
  const auto succeed = [&](CatalogueContent former) {
    if (!options.keepsOthers) former = {{}, {}, std::nullopt};
    AssembledCatalogue assembled = assembleCatalogue(parts, std::move(former), log);
    parts.clear();  // as large as what was made of them
    report.unordered = assembled.unordered;
    return std::move(assembled.content);
  };
  try {
    updateCatalogue(catalogue, succeed, progress, mode, report);
  } catch (const CatalogueError& error) {
    if (error.file().empty()) throw error.inFile(catalogue.string());
    throw;
  }
  report.leftOut = log.takeLeftOut();
  return report;
}

}  // namespace tarn::evolution::catalogue
