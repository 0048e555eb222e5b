#include "catalogue/text/display_text.hpp"

#include <gtest/gtest.h>

#include "catalogue/picture/markup.hpp"

namespace test {
namespace {

using namespace tarn::evolution::catalogue;

TEST(DisplayText, ShowsWhatWouldDisturb) {
  const std::pair<std::string, std::string> cases[] = {
      {"plain-1.0_x", "plain-1.0_x"},
      {"a\nb\tc\x1b[31m\x7f", R"(a\u{a}b\u{9}c\u{1b}[31m\u{7f})"},
      // NOLINTNEXTLINE(misc-misleading-bidirectional): that is what is shown
      {"\u0085\u2028\u202Ex\u2066\uFEFF", R"(\u{85}\u{2028}\u{202e}x\u{2066}\u{feff})"},
      {"\uFFFF", R"(\u{ffff})"},
      {"שלום 図 é e\u0301 👩\u200D🔧", "שלום 図 é e\u0301 👩\u200D🔧"},
      {"a\xff\xc3z", "a\uFFFD\uFFFDz"},
  };
  for (const auto& [text, visible] : cases) EXPECT_EQ(toVisible(text), visible);
}

TEST(DisplayText, CountsColumnsOfATerminal) {
  const std::pair<std::string, std::size_t> cases[] = {
      {"", 0}, {"abc", 3}, {"é", 1}, {"e\u0301", 1}, {"図形", 4}, {"👩\u200D🔧", 2}, {"שלום", 4},
  };
  for (const auto& [text, columns] : cases) EXPECT_EQ(countColumns(text), columns) << text;
  EXPECT_EQ(padTo(5, "図形"), "図形 ");
  EXPECT_EQ(padTo(3, "図形"), "図形");
}

TEST(DisplayText, ShortensBetweenCharactersOnly) {
  EXPECT_EQ(shortenTo(estimateWidth("abcdef"), "abcdef"), "abcdef");
  EXPECT_EQ(shortenTo(estimateWidth("abcdef"), "abcdefg"), "abcd\u2026");
  EXPECT_EQ(shortenTo(estimateWidth("é") + 1, "e\u0301e\u0301e\u0301"), "e\u0301\u2026");
  for (int tenths = 10; tenths < 200; tenths += 3) {
    const double width = tenths / 10.0;
    for (const std::string text :
         {"WWWWWWWWWWWWWWWWWWWWWW", "👩\u200D🔧👩\u200D🔧👩\u200D🔧図形図形図形"}) {
      const std::string shortened = shortenTo(width, text);
      EXPECT_LE(estimateWidth(shortened), width + 1e-9);
      EXPECT_EQ(toVisible(shortened), shortened);
    }
  }
}

TEST(Markup, EscapesForEachLanguage) {
  const std::string hostile = "<a b='c'>\"&\\;#_*`|\n";
  EXPECT_EQ(escapeXml(hostile), "&lt;a b='c'&gt;&quot;&amp;\\;#_*`|\\u{a}");
  EXPECT_EQ(quoteDot(hostile), R"("<a b='c'>\"&amp;\\;#_*`|\\u{a}")");
  EXPECT_EQ(quoteMermaid(hostile),
            "\"#lt;a b='c'#gt;#quot;#38;#92;#59;#35;#95;#42;#96;|#92;u{a}\"");
}

}  // namespace
}  // namespace test
