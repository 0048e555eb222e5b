#include "store_report.hpp"

#include "catalogue/text/printed_text.hpp"

namespace evopath {

using tarn::evolution::catalogue::countedText;

std::string describeCounts(const tarn::evolution::catalogue::StoreCounts& counts) {
  const std::string metamodels =
      counts.metamodels == 1 ? "1 version of a metamodel"
                             : std::to_string(counts.metamodels) + " versions of metamodels";
  return metamodels + " and " + countedText(counts.hops, "hop");
}

}  // namespace evopath
