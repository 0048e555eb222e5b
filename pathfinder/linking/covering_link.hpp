#pragma once

#include "pathfinder/linked_metamodel.hpp"

namespace tarn::evolution::pathfinder {

/// A direct link that itself links all the others; null when there is none, and for what links
/// another version of its own name. A consistent baseline that holds it holds all of them. Only for
/// what a repository has linked: with each link, all that it links is linked too.
///
/// Closures along a chain of dependencies grow with its length; with this they can be followed link
/// by link.
const LinkedMetamodel* coveringLink(const LinkedMetamodel& linked);

}  // namespace tarn::evolution::pathfinder
