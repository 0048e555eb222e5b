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
  out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         R"(<meta http-equiv="Content-Security-Policy" content="default-src 'none'; )"
         "style-src 'unsafe-inline'; script-src 'unsafe-inline'; img-src data:\">\n"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
         "<link rel=\"icon\" href=\"data:,\">\n<title>Explorer: "
      << escapeXml(catalogue) << "</title>\n<style>\n"
      << explorerStyle << "</style>\n</head>\n<body>\n"
      << explorerBody << R"(<script type="application/json" id="rows">)";
  writeExplorerRows(repository, catalogue, answers, out);
  out << "</script>\n<script>" << explorerScript << "</script>\n</body>\n</html>\n";
}

}  // namespace tarn::evolution::catalogue
