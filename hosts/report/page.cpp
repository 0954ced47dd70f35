// MIT License. A page of sounds to listen to and to compare.
#include "hosts/report/page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "hosts/report/spectrogram.h"

namespace {

constexpr const char* style = R"(
:root { color-scheme: light dark; --page: #f4f3f0; --card: #ffffff; --ink: #1d1d22; --soft: #6a6a75; --line: #dddad4;
  --light: #0d7f86; --clear: #0d7f86; --spoken: #7a5b00; --effect: #9c2f72; --bad: #b3261e; }
@media (prefers-color-scheme: dark) {
  :root { --page: #121216; --card: #1c1c22; --ink: #ececf0; --soft: #9b9ba8; --line: #31313a;
    --light: #7fe0e0; --clear: #7fe0e0; --spoken: #e3c56b; --effect: #f09acb; --bad: #ff8a80; } }
* { box-sizing: border-box; }
html { scroll-behavior: smooth; scroll-padding-top: 4rem; }
body { margin: 0; background: var(--page); color: var(--ink); font: 16px/1.5 system-ui, "Liberation Sans", sans-serif; }
header, main, footer { max-width: 84rem; margin: 0 auto; padding: 0 1.5rem; }
header { padding-top: 3rem; padding-bottom: 1.2rem; }
h1 { margin: 0; font-size: 2.4rem; line-height: 1.1; letter-spacing: -0.02em; overflow-wrap: anywhere; }
header p { max-width: 46rem; color: var(--soft); overflow-wrap: anywhere; }
nav { position: sticky; top: 0; z-index: 1; background: var(--page); border-bottom: 1px solid var(--line); }
nav div { max-width: 84rem; margin: 0 auto; padding: 0.7rem 1.5rem; display: flex; gap: 0.2rem 1.5rem; flex-wrap: wrap; }
nav a { color: var(--light); text-decoration: none; font-weight: 600; }
nav a:hover { text-decoration: underline; }
h2 { margin: 2.5rem 0 1rem; font-size: 1.4rem; }
.cards { display: grid; gap: 1.5rem; grid-template-columns: repeat(auto-fill, minmax(min(24rem, 100%), 1fr)); }
article { display: flex; flex-direction: column; background: var(--card); border: 1px solid var(--line);
  border-radius: 10px; overflow: hidden; }
article:focus-within, article:target { border-color: var(--light); }
figure { position: relative; margin: 0; aspect-ratio: 76 / 30; background: #06002c; overflow: hidden; }
figure img { display: block; height: 100%; }
figure span { position: absolute; color: #fff; font-size: 0.72rem; line-height: 1; white-space: nowrap; pointer-events: none;
  text-shadow: 0 0 3px #000, 0 0 2px #000; }
figure .hz { left: 0; width: 100%; padding: 0 0 0.15rem 0.4rem; border-bottom: 1px solid rgb(255 255 255 / 0.16); }
figure .s { bottom: 0; padding: 0 0 0.2rem 0.25rem; border-left: 1px solid rgb(255 255 255 / 0.7); }
article > div { display: flex; flex-direction: column; flex: 1; gap: 0.6rem; padding: 1rem 1.1rem 1.1rem; }
h3 { margin: 0; font-size: 1.1rem; line-height: 1.25; overflow-wrap: anywhere; }
h3 span { color: var(--soft); font-weight: 400; font-variant-numeric: tabular-nums; margin-right: 0.35rem; }
.kind { font-size: 0.8rem; color: var(--soft); overflow-wrap: anywhere; }
.kind b { text-transform: uppercase; letter-spacing: 0.06em; }
.kind .clear { color: var(--clear); } .kind .spoken { color: var(--spoken); } .kind .effect { color: var(--effect); }
.kind .failed { color: var(--bad); }
article p { margin: 0; overflow-wrap: anywhere; }
article p ~ p { color: var(--soft); }
code { display: block; padding: 0.35rem 0.55rem; border-radius: 6px; background: var(--page); color: var(--soft);
  font-size: 0.78rem; overflow-wrap: anywhere; user-select: all; }
audio { width: 100%; height: 2.4rem; }
header audio { display: block; max-width: 30rem; }
header label { display: inline-block; margin-top: 0.7rem; color: var(--soft); font-size: 0.9rem; cursor: pointer; }
dl { display: grid; grid-template-columns: repeat(2, 1fr); gap: 0.3rem 1.6rem; margin: auto 0 0; padding-top: 0.6rem;
  border-top: 1px solid var(--line); font-size: 0.82rem; }
dl div { display: flex; justify-content: space-between; gap: 0.5rem; }
dt { color: var(--soft); } dd { margin: 0; font-variant-numeric: tabular-nums; white-space: nowrap; }
footer { padding: 2.5rem 1.5rem 4rem; color: var(--soft); overflow-wrap: anywhere; }
footer ul { padding-left: 1.2rem; }
)";

constexpr const char* generator = "<meta name=\"generator\" content=\"Kesrel Vocoder 4 ME\">\n";

// "play" doesn't bubble, so it is caught on its way down.
constexpr const char* one_at_a_time = R"(
const stay = document.getElementById("stay");
addEventListener("play", ({target: started}) => {
  for (const other of document.querySelectorAll("audio")) {
    if (other === started || other.paused) continue;
    other.pause();
    if (stay && stay.checked) started.currentTime = other.currentTime;
  }
}, true);
)";

constexpr const char* switch_of_place =
    "<label><input type=\"checkbox\" id=\"stay\"> go on from the same place when another player starts</label>\n";

std::string element(const std::string& tag, const std::string& text) {
  return text.empty() ? "" : "<" + tag + ">" + escaped(text) + "</" + tag.substr(0, tag.find(' ')) + ">\n";
}

std::string attribute(const char* name, const std::string& value) {
  return std::string(" ") + name + "=\"" + escaped(value) + "\"";
}

std::string player_of(const std::string& source) {
  return source.empty() ? "" : "<audio controls preload=\"metadata\"" + attribute("src", source) + "></audio>\n";
}

std::string marks_of(const std::vector<axis_mark>& marks, const char* axis, const char* side) {
  std::string html;
  for (const axis_mark& mark : marks) {
    char place[32];
    std::snprintf(place, sizeof place, "%s:%.2f%%", side, 100.0 * mark.share);
    html += "<span" + attribute("class", axis) + attribute("style", place) + ">" + escaped(mark.label) + "</span>";
  }
  return html;
}

// Labels are text over the picture, so that they are as sharp as the page's own and fit any width.
//   seconds   length of the time axis
std::string picture_of(const page_card& card, double seconds) {
  if (card.picture.empty()) return "";
  char width[32];
  std::snprintf(width, sizeof width, "width:%.2f%%", 100.0 * card.seconds / seconds);
  return "<figure><img loading=\"lazy\"" + attribute("style", width) + attribute("src", card.picture) +
         attribute("alt", "Spectrogram of " + card.title) + ">" + marks_of(frequency_marks(), "hz", "bottom") +
         marks_of(time_marks(seconds), "s", "left") + "</figure>\n";
}

std::string kind_of(const page_card& card) {
  if (card.kind.empty() && card.details.empty()) return "";
  std::string html = "<div class=\"kind\">";
  if (!card.kind.empty()) html += "<b" + attribute("class", card.kind) + ">" + escaped(card.kind) + "</b>";
  if (!card.kind.empty() && !card.details.empty()) html += " · ";
  return html + escaped(card.details) + "</div>\n";
}

std::string figures_of(const page_card& card) {
  if (card.figures.empty()) return "";
  std::string html = "<dl>\n";
  for (const auto& [name, value] : card.figures) {
    html += "<div><dt>" + escaped(name) + "</dt><dd>" + escaped(value) + "</dd></div>\n";
  }
  return html + "</dl>\n";
}

std::string paragraphs_of(const std::vector<std::string>& texts) {
  std::string html;
  for (const auto& text : texts) html += element("p", text);
  return html;
}

std::string card_of(const page_card& card, double seconds) {
  return "<article" + attribute("id", card.anchor) + ">\n" + picture_of(card, seconds) + "<div>\n<h3><span>" +
         escaped(card.number) + "</span>" + escaped(card.title) + "</h3>\n" + kind_of(card) +
         paragraphs_of(card.paragraphs) + player_of(card.player) + element("code", card.command) + figures_of(card) +
         "</div>\n</article>\n";
}

// The headings with their cards, and the links to these.
struct page_parts {
  std::string links;
  std::string cards;
};

page_parts parts_of(const std::vector<page_section>& sections) {
  // All pictures have the same scale.
  double longest = 0.0;
  for (const auto& section : sections) {
    for (const auto& card : section.cards) longest = std::max(longest, card.seconds);
  }
  page_parts parts;
  for (const auto& section : sections) {
    if (section.cards.empty()) continue;
    const std::string anchor = "section-" + section.cards.front().anchor;
    parts.links += "<a" + attribute("href", "#" + anchor) + ">" + escaped(section.heading) + "</a>\n";
    parts.cards += "<h2" + attribute("id", anchor) + ">" + escaped(section.heading) + "</h2>\n<div class=\"cards\">\n";
    for (const auto& card : section.cards) parts.cards += card_of(card, longest);
    parts.cards += "</div>\n";
  }
  return parts;
}

std::string list_of(const page_list& list) {
  if (list.items.empty()) return "";
  std::string html = "<details>" + element("summary", list.summary) + "<ul>\n";
  for (const auto& item : list.items) html += element("li", item);
  return html + "</ul></details>\n";
}

}  // namespace

page_figure figure_of(const char* name, double value, int digits, const char* unit) {
  if (!std::isfinite(value)) return {name, "–"};
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.*f", digits, std::abs(value));
  const std::string_view shown(text.data());
  // What rounds to zero has no sign.
  const bool is_negative = value < 0.0 && shown.find_first_not_of("0.") != std::string_view::npos;
  return {name, (is_negative ? "−" : "") + std::string(shown) + (unit[0] == 0 ? "" : " ") + unit};
}

bool is_own_page(std::string_view html) {
  return html.find(generator) != std::string_view::npos;
}

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '&':
        result += "&amp;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string page_of(const page_content& content) {
  const page_parts parts = parts_of(content.sections);
  std::string html = std::string("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n") +
                     generator + "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
  html += "<title>" + escaped(content.title) + "</title>\n<style>" + style + "</style>\n</head>\n<body>\n<header>\n";
  html += element("h1", content.heading) + paragraphs_of(content.introduction) + player_of(content.player);
  html += switch_of_place;
  html += "</header>\n";
  if (content.sections.size() > 1) html += "<nav><div>\n" + parts.links + "</div></nav>\n";
  html += "<main>\n" + parts.cards + "</main>\n<footer>\n" + paragraphs_of(content.closing) + list_of(content.remarks);
  html += "</footer>\n<script>";
  return html + one_at_a_time + "</script>\n</body>\n</html>\n";
}
