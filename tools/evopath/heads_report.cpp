#include "heads_report.hpp"

#include <iostream>
#include <limits>
#include <string>

#include "catalogue/text/printed_text.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

namespace {

void tellLeftOut(const HeadQuestions& asked, const std::string& bound) {
  if (asked.leftOut == 0) return;
  const bool isCounted = asked.leftOut < std::numeric_limits<std::uint64_t>::max();
  std::cerr << "evopath: " << (isCounted ? "" : "more than ")
            << countedText(isCounted ? asked.leftOut : asked.leftOut - 1, "question")
            << " left out; " << bound << " are asked\n";
}

}  // namespace

void tellLeftOut(const HeadQuestions& asked) {
  tellLeftOut(asked, "of one chain at most " + std::to_string(mostOfOneSet));
}

void tellLeftOutTogether(const HeadQuestions& asked) {
  tellLeftOut(asked, "of metamodels together at most " + std::to_string(mostTogether));
}

}  // namespace evopath
