// MIT License.
#include "hosts/report/page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(Page, EscapesEveryText) {
  const std::string evil = "!\"<b>&c";
  page_card card;
  card.anchor = card.number = card.title = card.kind = card.details = card.command = card.player = card.picture = evil;
  card.paragraphs = {evil};
  card.figures = {{evil, evil}};
  card.seconds = 3.0;
  const std::string page =
      page_of({evil, evil, {evil}, evil, {{evil, {card}}, {evil, {card}}}, {evil}, {evil, {evil}}});
  EXPECT_THAT(page, Not(HasSubstr("<b>&")));
  EXPECT_THAT(page, Not(HasSubstr("!\"")));
  EXPECT_THAT(page, HasSubstr("<title>!&quot;&lt;b&gt;&amp;c</title>"));
}

TEST(Page, LeavesOutWhatIsEmpty) {
  const std::string page = page_of({"", "", {}, "", {{"One", {{.anchor = "x", .title = "Card"}}}}, {}, {}});
  for (const char* part : {"<audio", "<img", "<code", "<dl", "<p>", "<nav>", "<details>", "class=\"kind\""}) {
    EXPECT_THAT(page, Not(HasSubstr(part)));
  }
  EXPECT_TRUE(is_own_page(page));
  EXPECT_FALSE(is_own_page("<!DOCTYPE html><title>Mine</title>"));
}

TEST(Page, HasPicturesOfOneScale) {
  page_card half{.anchor = "a", .picture = "a.png", .seconds = 2.0};
  page_card whole{.anchor = "b", .picture = "b.png", .seconds = 4.0};
  const std::string page = page_of({"", "", {}, "", {{"", {half}}, {"", {whole}}}, {}, {}});
  EXPECT_THAT(page, HasSubstr("width:50.00%\" src=\"a.png\""));
  EXPECT_THAT(page, HasSubstr("width:100.00%\" src=\"b.png\""));
  EXPECT_THAT(page, HasSubstr("left:25.00%\">1 s<"));
}

TEST(Figures, HaveUnitsAndSignsOrADash) {
  EXPECT_EQ(figure_of("Peak", -1.25, 1, "dB").value, "−1.2 dB");
  EXPECT_EQ(figure_of("Clarity", 0.5, 2, "").value, "0.50");
  EXPECT_EQ(figure_of("Sibilance", -0.04, 1, "dB").value, "0.0 dB");
  EXPECT_EQ(figure_of("Pauses", std::nan(""), 1, "dB").value, "–");
  EXPECT_EQ(figure_of("Loudness", -HUGE_VAL, 1, "LUFS").value, "–");
}

}  // namespace
