#include "overview/html_writer.h"

#include <gtest/gtest.h>

namespace kivo::overview {
namespace {

std::string textInHtml(std::string_view text) { return HtmlWriter().text(text).html(); }

TEST(AnHtmlWriter, EscapesWhatEndsATextOrAnAttribute) {
  EXPECT_EQ(textInHtml("<script>alert(1)</script>"), "&lt;script&gt;alert(1)&lt;/script&gt;");
  EXPECT_EQ(textInHtml("</style><!-- ]]>"), "&lt;/style&gt;&lt;!-- ]]&gt;");
  EXPECT_EQ(textInHtml("\"Tom & Jerry's\""), "&quot;Tom &amp; Jerry&#39;s&quot;");
  EXPECT_EQ(textInHtml("&lt;"), "&amp;lt;");
}

TEST(AnHtmlWriter, ShowsControlCharactersAsEscapes) {
  EXPECT_EQ(textInHtml(std::string_view("a\0b", 3)), "a\\x00b");
  EXPECT_EQ(textInHtml("a\nb\x1b\x7f\u0085"), "a\\nb\\x1b\\x7f\\x85");
}

TEST(AnHtmlWriter, LetsNoTextChangeTheOrderOfWhatIsBesideIt) {
  EXPECT_EQ(textInHtml("a\u202eb\u2069c"), "a\\u202eb\\u2069c");
}

TEST(AnHtmlWriter, ReplacesBytesThatAreNotUtf8) {
  EXPECT_EQ(textInHtml("a\xff\xc3"), "a\ufffd\ufffd");
}

TEST(AnHtmlWriter, IsolatesNames) {
  EXPECT_EQ(HtmlWriter().name("مطعم <أبو> طارق").html(), "<bdi>مطعم &lt;أبو&gt; طارق</bdi>");
}

TEST(AnHtmlWriter, IsolatesAmountsAndDropsTheirDirectionMarks) {
  EXPECT_EQ(HtmlWriter().amount("\u200f١٥٠٫٠٠ ج.م.\u200f").html(), "<bdi>١٥٠٫٠٠ ج.م.</bdi>");
}

TEST(AnHtmlWriter, WritesLengthsWithAPointAndTwoDecimalsAtMost) {
  for (const auto& [length, text] : {std::pair(0.0, "0"),
                                     {100.0, "100"},
                                     {12.5, "12.5"},
                                     {0.049, "0.05"},
                                     {99.999, "100"},
                                     {33.333, "33.33"}}) {
    EXPECT_EQ(HtmlWriter().length(length).html(), text);
  }
}

}  // namespace
}  // namespace kivo::overview
