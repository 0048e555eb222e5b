#pragma once

#include <functional>
#include <string>

#include "catalogue/import/source_files.hpp"
#include "catalogue/import/source_value.hpp"

/// Documents one after the other, as files of JSON and YAML hold them. Memory is that of the
/// largest one. All throw CatalogueError, with file and line, when the text is not of its form.
namespace tarn::evolution::catalogue {

/// Takes a document; it is gone afterwards.
using UseDocument = std::function<void(const SourceNode& document)>;

/// Whether the field of that name is of interest; what is not takes no memory. `depth` is how many
/// objects it lies in, lists not counted.
using IsWanted = std::function<bool(std::size_t depth, const std::string& name)>;

/// Reads JSON documents, with any blanks between them.
void readJsonDocuments(SourceFile& file, const UseDocument& use, const IsWanted& isWanted = {});

/// Reads a YAML stream. A plain scalar is a text as it stands there, unless it reads as null, true
/// or false; aliases stand for what they refer to.
void readYamlDocuments(SourceFile& file, const UseDocument& use);

/// Reads YAML if the name ends in ".yaml" or ".yml", else JSON.
void readDocuments(SourceFile& file, const UseDocument& use);

}  // namespace tarn::evolution::catalogue
