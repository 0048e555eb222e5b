#include "catalogue/picture/dependants.hpp"

#include <algorithm>
#include <ostream>
#include <unordered_map>

#include "catalogue/model/admitted_versions.hpp"
#include "catalogue/text/dependency_json.hpp"
#include "catalogue/text/plain_numbers.hpp"
#include "catalogue/text/visible.hpp"

namespace tarn::evolution::catalogue {

using pathfinder::VersionId;

namespace {

/// The versions of a metamodel that ranges admit, each range looked up once.
class Candidates {
 public:
  Candidates(BrowsableRepository& repository, const std::u16string& name)
      : repository_(repository), name_(name) {}

  const std::vector<VersionId>& of(const pathfinder::VersionRange& range) {
    const auto [known, isNew] = known_.try_emplace(textOf(range));
    if (!isNew) return known->second;
    for (const auto& metamodel : listAdmitted(repository_, name_, range)) {
      known->second.push_back(metamodel.version);
    }
    return known->second;
  }

 private:
  BrowsableRepository& repository_;
  const std::u16string& name_;
  std::unordered_map<std::string, std::vector<VersionId>> known_;  // by the range's text
};

void writeDependant(const Dependant& each, std::ostream& out) {
  const auto& [dependent, needed, isOptional, candidates] = each;
  out << "  " << visible(dependent.name) << " " << visible(dependent.version) << " needs "
      << visible(needed.range);
  if (candidates.empty()) {
    out << ", which no version satisfies";
  } else if (candidates.size() == 1) {
    out << ", only " << visible(candidates.front());
  } else {
    out << ", " << candidates.size() << " candidates";
  }
  out << (isOptional ? ", if it is there\n" : "\n");
}

}  // namespace

Dependants findDependants(BrowsableRepository& repository, const std::u16string& name,
                          const std::optional<VersionId>& version) {
  Dependants result{name, version, {}};
  const auto wanted = version ? repository.getMetamodel(name, *version) : std::nullopt;
  if (version && !wanted) return result;
  Candidates candidates(repository, name);
  for (const std::u16string& dependent : repository.listNames()) {
    for (const auto& metamodel : repository.listMetamodels(dependent)) {
      const auto addIfMeant = [&](const pathfinder::Dependency& needed, bool isOptional) {
        if (needed.name != name) return;
        const auto& admitted = candidates.of(needed.range);
        const bool isMeant = !wanted || std::find(admitted.begin(), admitted.end(),
                                                  wanted->version) != admitted.end();
        if (isMeant) {
          result.dependants.push_back({metamodel.descriptor, needed, isOptional, admitted});
        }
      };
      for (const auto& needed : metamodel.descriptor.dependencies) addIfMeant(needed, false);
      for (const auto& [needed, note] : metamodel.requirements) {
        addIfMeant({needed.name, needed.range}, needed.isOptional);
      }
    }
  }
  return result;
}

void writeDependantsText(const std::vector<Dependants>& all, Colouring colouring,
                         std::ostream& out) {
  const PlainNumbers plain(out);
  for (const auto& [name, version, dependants] : all) {
    const std::string heading = visible(name) + (version ? " " + visible(*version) : "");
    out << emphasise(heading, colouring) << "\n";
    if (dependants.empty()) out << "  nothing needs it\n";
    for (const Dependant& each : dependants) writeDependant(each, out);
  }
}

void writeDependantsJson(const std::vector<Dependants>& all, std::ostream& out) {
  const auto write = [](JsonPrinter& printer, const Dependant& each) {
    printer.object([&] {
      printer.field("name", fl::i18n::ustring_to_utf8(each.dependent.name));
      printer.field("version", textOf(each.dependent.version));
      printer.key("needs");
      writeDependency(printer, each.needed);
      if (each.isOptional) printer.field("optional", true);
      printer.field("candidates", std::uint64_t{each.candidates.size()});
      if (each.candidates.size() == 1) printer.field("only", textOf(each.candidates.front()));
    });
  };
  writeDocument(out, JsonPrinter::Layout::Indented, [&](JsonPrinter& printer) {
    printer.arrayField("metamodels", [&] {
      for (const Dependants& metamodel : all) {
        printer.object([&] {
          printer.field("name", fl::i18n::ustring_to_utf8(metamodel.name));
          if (metamodel.version) printer.field("version", textOf(*metamodel.version));
          printer.arrayField("neededBy", [&] {
            for (const Dependant& each : metamodel.dependants) write(printer, each);
          });
        });
      }
    });
  });
}

}  // namespace tarn::evolution::catalogue
