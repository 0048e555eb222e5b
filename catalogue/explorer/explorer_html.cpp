#include "catalogue/explorer/explorer_html.hpp"

#include <ostream>

#include "catalogue/explorer/explorer_page.hpp"
#include "catalogue/explorer/explorer_rows.hpp"
#include "catalogue/picture/markup.hpp"
#include "catalogue/text/plain_numbers.hpp"

namespace tarn::evolution::catalogue {

void writeExplorerHtml(BrowsableRepository& repository, const std::string& catalogue,
                       const ExplorerAnswers& answers, std::ostream& out) {
  const PlainNumbers plain(out);
  out << pageBegin("Explorer: " + escapeXml(catalogue), explorerStyle) << explorerBody
      << R"(<script type="application/json" id="rows">)";
  writeExplorerRows(repository, catalogue, answers, out);
  out << "</script>\n<script>" << explorerScript << "</script>\n</body>\n</html>\n";
}

}  // namespace tarn::evolution::catalogue
