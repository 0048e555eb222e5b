#include "catalogue/c/rows.hpp"

#include <algorithm>
#include <unordered_map>

#include "catalogue/c/arguments.hpp"
#include "catalogue/c/boundary.hpp"
#include "catalogue/version_text.hpp"

namespace tarn::evolution::catalogue::c {

using pathfinder::Dependency;
using pathfinder::Hop;

namespace {

Dependency readDependency(const tarn_evolution_dependency& dependency, const std::string& place) {
  return {readName(dependency.name, place + ".name"),
          readRanges(dependency.ranges, dependency.range_count, place + ".ranges")};
}

std::vector<Dependency> readDependencies(const tarn_evolution_dependency* dependencies,
                                         size_t count) {
  if (count > 0) required(dependencies, "dependencies");
  std::vector<Dependency> result;
  for (size_t i = 0; i < count; ++i) {
    result.push_back(readDependency(dependencies[i], "dependencies[" + std::to_string(i) + "]"));
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

RequirementRow readRequirement(const tarn_evolution_requirement& requirement) {
  Dependency needed = readDependency(requirement.needed, "requirement.needed");
  return {readName(requirement.name, "requirement.name"),
          readVersion(requirement.version, "requirement.version"),
          {std::move(needed.name), std::move(needed.range), requirement.optional != 0}};
}

/// Adds to rows, which remember that it failed.
template <class Add>
tarn_evolution_status addTo(tarn_evolution_rows* rows, char** message, const Add& add) {
  return guarded(message, [&] {
    required(rows, "rows");
    try {
      add();
    } catch (const std::exception& error) {
      rows->faults.note(error);
      throw;
    }
    return TARN_EVOLUTION_OK;
  });
}

}  // namespace

std::size_t addRequirements(const std::vector<RequirementRow>& requirements,
                            std::vector<CatalogueMetamodel>& metamodels) {
  std::size_t firstAstray = requirements.size();
  if (requirements.empty()) return firstAstray;
  std::unordered_map<std::u16string, std::unordered_map<pathfinder::VersionId, std::size_t>> places;
  for (std::size_t i = 0; i < metamodels.size(); ++i) {
    places[metamodels[i].descriptor.name].emplace(metamodels[i].descriptor.version, i);
  }
  for (const RequirementRow& row : requirements) {
    const auto& versions = places[row.name];
    const auto place = versions.find(row.version);
    if (place != versions.end()) {
      metamodels[place->second].requirements.push_back({row.needed});
    } else {
      firstAstray = std::min(firstAstray, static_cast<std::size_t>(&row - requirements.data()));
    }
  }
  return firstAstray;
}

}  // namespace tarn::evolution::catalogue::c

using namespace tarn::evolution::catalogue::c;

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
  return addTo(rows, message, [&] {
    rows->content.metamodels.push_back(
        readMetamodel(name, version, semver, dependencies, dependency_count));
  });
}

tarn_evolution_status tarn_evolution_rows_add_hop(tarn_evolution_rows* rows,
                                                  const tarn_evolution_hop* hop, char** message) {
  return addTo(rows, message, [&] { rows->content.hops.push_back(readHop(required(hop, "hop"))); });
}

tarn_evolution_status tarn_evolution_rows_add_requirement(
    tarn_evolution_rows* rows, const tarn_evolution_requirement* requirement, char** message) {
  return addTo(rows, message, [&] {
    rows->requirements.push_back(readRequirement(required(requirement, "requirement")));
  });
}
