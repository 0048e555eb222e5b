#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "pathfinder/version_id.hpp"

/// What is said of catalogues that are not as they should be, by whoever reads, checks or changes
/// them: clauses without a full stop, that name what they are about. Names are UTF-8 as they stand.
namespace tarn::evolution::catalogue {

/// Places in the JSON form.
std::string metamodelPlace(std::size_t position);
std::string dependencyPlace(std::size_t position, std::size_t dependency);
std::string hopPlace(std::size_t position);

std::string unknownMetamodel(const std::u16string& name);
std::string unknownVersion(const std::u16string& name, const pathfinder::VersionId& version);

std::string unknownHop(const std::u16string& name, const pathfinder::VersionId& from,
                       const pathfinder::VersionId& to);

/// "the hop of "A" from 1.0.0 to 2.0.0".
std::string hopText(const std::u16string& name, const pathfinder::VersionId& from,
                    const pathfinder::VersionId& to);

/// `what` may be a version or a hop; `where`, "at /metamodels/3" say, it stands already.
std::string standsAlready(const std::string& what, const std::string& where);

/// `holder`, which stands `where`, is the other version that has the equivalent.
std::string sharedEquivalent(const pathfinder::SemVer& equivalent, const std::string& holder,
                             const std::string& where);

inline constexpr const char* equivalentOfSemVer = "only a text version has a semantic equivalent";

/// `versions`, "name@version" each, depend each on the next one and the last one on the first.
std::string dependencyCycle(const std::vector<std::string>& versions);

/// "a, b and c"; of more than seven the first six and how many others there are.
std::string listed(const std::vector<std::string>& texts, const std::string& conjunction = "and");

/// "a -> b -> c"; of more than thirteen six at each end and how many others there are.
std::string chained(const std::vector<std::string>& texts);

}  // namespace tarn::evolution::catalogue
