// Nothing that programs read depends on the locale of the host.
#include <gtest/gtest.h>

#include <sstream>

#include "catalogue/catalogue_repository.hpp"
#include "catalogue/explanation/explanation_json.hpp"
#include "catalogue/explanation/explanation_text.hpp"
#include "catalogue/explorer/explorer_answers.hpp"
#include "catalogue/explorer/explorer_html.hpp"
#include "catalogue/json_catalogue.hpp"
#include "catalogue/picture/catalogue_graph.hpp"
#include "catalogue/picture/metamodel_details.hpp"
#include "catalogue/picture/path_dot.hpp"
#include "catalogue/picture/path_html.hpp"
#include "catalogue/picture/path_json.hpp"
#include "catalogue/picture/path_mermaid.hpp"
#include "catalogue/picture/path_script.hpp"
#include "catalogue/picture/path_svg.hpp"
#include "catalogue/picture/path_text.hpp"
#include "support/grouping_locale.hpp"
#include "support/store_folder.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

/// Everything that can be written of the question, in every form.
std::string writeAll(CatalogueContent content) {
  std::ostringstream out;
  writeJsonCatalogue(content, out);
  const Question question = *content.question;
  CatalogueRepository repository{Catalogue(std::move(content))};
  const auto sources = repository.combine(question.from);
  const auto path = repository.findPath(sources, question.to);
  const PathPicture picture = drawPath(repository, sources.front(), path.value());
  for (const auto write :
       {writePathDot, writePathHtml, writePathJson, writePathMermaid, writePathSvg}) {
    write(picture, out);
  }
  writePathText(picture, Colouring::Plain, out);
  writePathScript(picture, "{step} {name} {from} {to}", out);
  GraphRequest everything;
  everything.limit = 1000;
  writeGraphDot(makeGraph(repository, everything), out);
  writeGraphMermaid(makeGraph(repository, everything), out);
  writeSummaryText(summariseAll(repository), Colouring::Plain, out);
  writeExplorerHtml(repository, "c.json", answerCustomaryQuestions(repository, {1}), out);
  for (const Question& asked : {question, Question{question.to, question.from}}) {
    const Explanation explanation = explain(repository, asked);
    writeExplanationText(explanation, weightsOf(repository), out);
    writeExplanationJson(explanation, weightsOf(repository), out);
    writeNoPathJson({}, explanation, weightsOf(repository), out);
  }
  return out.str();
}

TEST_F(StoreFolder, AGroupingLocaleOfTheHostChangesNothing) {
  CatalogueContent content =
      contentOf(TestRepository("A10..30 B10:A[10,31) B1000 B10>1000! C\x1b~2024"));
  content.question = Question{selection("A10 B10"), selection("A30 B1000")};
  const std::string expected = writeAll(content);
  make("before", content);
  const GlobalGrouping grouping;
  EXPECT_EQ(writeAll(content), expected);
  make("after", content);
  for (const char* end : {".json", ".store"}) {
    EXPECT_EQ(read(std::string("after") + end), read(std::string("before") + end));
  }
  CatalogueRepository again(readJsonCatalogue(path("before.json")));
  EXPECT_TRUE(again.getMetamodel(u"B", v(1000)));
}

}  // namespace
}  // namespace test
