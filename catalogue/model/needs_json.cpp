#include "catalogue/model/needs_json.hpp"

#include "catalogue/text/dependency_json.hpp"

namespace tarn::evolution::catalogue {

namespace {

void writeRequirement(JsonPrinter& printer, const CatalogueRequirement& requirement,
                      Unlinked unlinked) {
  const auto& [needed, note] = requirement;
  printer.object([&, &needed = needed, &note = note] {
    writeDependencyFields(printer, needed.name, needed.range);
    if (needed.isOptional) printer.field("optional", true);
    if (!needed.isOptional && unlinked == Unlinked::Told) printer.field("linked", false);
    writeNote(printer, note);
  });
}

}  // namespace

void writeNeeds(JsonPrinter& printer, const CatalogueMetamodel& metamodel, Unlinked unlinked) {
  printer.array([&] {
    const auto& dependencies = metamodel.descriptor.dependencies;
    for (std::size_t i = 0; i < dependencies.size(); ++i) {
      printer.object([&] {
        writeDependencyFields(printer, dependencies[i].name, dependencies[i].range);
        writeNote(printer, metamodel.noteOfDependency(i));
      });
    }
    for (const CatalogueRequirement& requirement : metamodel.requirements) {
      writeRequirement(printer, requirement, unlinked);
    }
  });
}

}  // namespace tarn::evolution::catalogue
