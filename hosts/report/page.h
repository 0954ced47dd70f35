// MIT License. A page of sounds to listen to and to compare.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// All texts are plain: the page escapes them. Sources are addresses relative to the page. What is empty is left out.

struct page_figure {
  std::string name;
  std::string value;  // with its unit
};

// `value` with `digits` after the point and its unit, or a dash for what cannot be measured.
page_figure figure_of(const char* name, double value, int digits, const char* unit);

struct page_card {
  std::string anchor{};  // letters, digits and hyphens
  std::string number{};
  std::string title{};
  std::string kind{};                     // clear, spoken and effect have colours of their own
  std::string details{};                  // beside the kind
  std::vector<std::string> paragraphs{};  // those after the first are printed softly
  std::string command{};                  // a line to copy
  std::string player{};                   // source of a sound file
  std::string picture{};                  // source of a spectrogram
  double seconds = 0.0;                   // length of the spectrogram
  std::vector<page_figure> figures{};
};

struct page_section {
  std::string heading;
  std::vector<page_card> cards;
};

struct page_list {
  std::string summary;
  std::vector<std::string> items;
};

struct page_content {
  std::string title;  // of the browser's window
  std::string heading;
  std::vector<std::string> introduction;
  std::string player;  // of what all cards are compared with; its caption is the last paragraph of the introduction
  std::vector<page_section> sections;
  std::vector<std::string> closing;
  page_list remarks;  // opens at a click
};

// The page as HTML that needs no network, and a script only to stop one player when another starts.
std::string page_of(const page_content& content);

// Whether `html` is the start of such a page.
bool is_own_page(std::string_view html);

// `text` for HTML: with <, >, & and quotes as entities.
std::string escaped(const std::string& text);
