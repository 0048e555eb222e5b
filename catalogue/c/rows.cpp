#include "catalogue/c/rows.hpp"

#include "catalogue/c/arguments.hpp"
#include "catalogue/c/boundary.hpp"
#include "catalogue/version_text.hpp"

namespace tarn::evolution::catalogue::c {

using pathfinder::Dependency;
using pathfinder::Hop;

namespace {

std::vector<Dependency> readDependencies(const tarn_evolution_dependency* dependencies,
                                         size_t count) {
  if (count > 0) required(dependencies, "dependencies");
  std::vector<Dependency> result;
  for (size_t i = 0; i < count; ++i) {
    const std::string place = "dependencies[" + std::to_string(i) + "]";
    result.emplace_back(
        readName(dependencies[i].name, place + ".name"),
        readRanges(dependencies[i].ranges, dependencies[i].range_count, place + ".ranges"));
  }
  return result;
}

CatalogueMetamodel readMetamodel(const char* name, const char* version, const char* semver,
                                 const tarn_evolution_dependency* dependencies, size_t count) {
  CatalogueMetamodel result{.descriptor = {readName(name, "name"), readVersion(version, "version"),
                                           readDependencies(dependencies, count)},
                            .equivalent = std::nullopt};
  if (semver == nullptr) return result;
  if (result.descriptor.version.isSemVer()) {
    throw std::invalid_argument("semver: the version " + std::string(version) + " is one already");
  }
  result.equivalent = parsed(semver, "semver", parseSemVer);
  return result;
}

Hop readHop(const tarn_evolution_hop& hop) {
  return {readName(hop.name, "hop.name"), readVersion(hop.from, "hop.from"),
          readVersion(hop.to, "hop.to"), hop.expensive != 0};
}

/// Adds to rows, which remember that it failed.
template <class Add>
tarn_evolution_status addTo(tarn_evolution_rows* rows, char** message, const Add& add) {
  return guarded(message, [&] {
    CatalogueContent& content = required(rows, "rows").content;
    try {
      add(content);
    } catch (const std::exception& error) {
      rows->faults.note(error);
      throw;
    }
    return TARN_EVOLUTION_OK;
  });
}

}  // namespace

}  // namespace tarn::evolution::catalogue::c

using namespace tarn::evolution::catalogue::c;
using tarn::evolution::catalogue::CatalogueContent;

tarn_evolution_rows* tarn_evolution_rows_new(void) {
  try {
    return new tarn_evolution_rows();
  } catch (...) {
    return nullptr;
  }
}

void tarn_evolution_rows_free(tarn_evolution_rows* rows) {
  delete rows;
}

tarn_evolution_status tarn_evolution_rows_add_metamodel(
    tarn_evolution_rows* rows, const char* name, const char* version, const char* semver,
    const tarn_evolution_dependency* dependencies, size_t dependency_count, char** message) {
  return addTo(rows, message, [&](CatalogueContent& content) {
    content.metamodels.push_back(
        readMetamodel(name, version, semver, dependencies, dependency_count));
  });
}

tarn_evolution_status tarn_evolution_rows_add_hop(tarn_evolution_rows* rows,
                                                  const tarn_evolution_hop* hop, char** message) {
  return addTo(rows, message, [&](CatalogueContent& content) {
    content.hops.push_back(readHop(required(hop, "hop")));
  });
}
