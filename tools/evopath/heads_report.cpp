#include "heads_report.hpp"

#include <iostream>
#include <limits>

#include "catalogue/text/printed_text.hpp"

namespace evopath {

using namespace tarn::evolution::catalogue;

void tellLeftOut(const HeadQuestions& asked, bool areTogether) {
  if (asked.leftOut == 0) return;
  const bool isCounted = asked.leftOut < std::numeric_limits<std::uint64_t>::max();
  std::cerr << "evopath: " << (isCounted ? "" : "more than ")
            << countedText(isCounted ? asked.leftOut : asked.leftOut - 1, "question")
            << " left out; of "
            << (areTogether ? "metamodels together at most " : "one chain at most ")
            << (areTogether ? mostTogether : mostOfOneSet) << " are asked\n";
}

}  // namespace evopath
