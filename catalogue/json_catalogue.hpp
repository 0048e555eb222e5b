#pragma once

#include <filesystem>
#include <iosfwd>

#include "catalogue/catalogue.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// Reads a catalogue from JSON:
///
///     {"metamodels": [{"name", "version", "semver", "note",
///                      "dependencies": [{"name", "range", "optional", "note"}]}],
///      "hops":       [{"name", "from", "to", "expensive", "note"}],
///      "question":   {"from": {name: version}, "to": {name: version}}}
///
/// All values are texts but "expensive" and "optional", which are true or false, and "range", which
/// is a pair of versions [lower, upper), or one version, or {"anyOf": [...]} of several of these. A
/// pair goes by precedence (see `Precedence`), and each of the two must have one; that of a version
/// and its next patch is the version alone. "semver", the semantic equivalent that a text version
/// is to have instead of its own precedence, "question", "optional", which says that a dependency
/// counts only if its metamodel is there, and every "note", which is for people to read, may be
/// left out. A version that reads as two or three numbers of at most 64 bits is a semantic one, any
/// other a text version; none may begin as a union does (see `unionOf`).
///
/// Throws CatalogueError when the text is not JSON or not of this form, or when the catalogue is
/// unsound (see `Catalogue`).
TARN_EVOLUTION_CATALOGUE_EXPORT Catalogue readJsonCatalogue(std::istream& in);

/// The same from a file, which a CatalogueError then names; it is also thrown when the file cannot
/// be read.
TARN_EVOLUTION_CATALOGUE_EXPORT Catalogue readJsonCatalogue(const std::filesystem::path& file);

/// Writes a catalogue in the same form, a row on each line. Reading it again gives equal content.
/// Whether it is sound is not looked at; the stream's state tells of failure.
TARN_EVOLUTION_CATALOGUE_EXPORT void writeJsonCatalogue(const CatalogueContent& content,
                                                        std::ostream& out);

}  // namespace tarn::evolution::catalogue
