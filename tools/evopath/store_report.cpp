#include "store_report.hpp"

namespace evopath {

namespace {

std::string counted(std::uint64_t number, const std::string& one, const std::string& many) {
  return std::to_string(number) + " " + (number == 1 ? one : many);
}

}  // namespace

std::string describeCounts(const tarn::evolution::catalogue::StoreCounts& counts) {
  return counted(counts.metamodels, "version of a metamodel", "versions of metamodels") + " and " +
         counted(counts.hops, "hop", "hops");
}

}  // namespace evopath
