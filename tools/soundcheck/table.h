// MIT License. The figures as text.
#pragma once

#include <string>
#include <vector>

#include "tools/soundcheck/figures.h"

// `digits` after the point; "-" for what cannot be measured.
std::string number_text(double value, int digits);

// A row of cells for each line, with headings, as aligned columns: text to the left, numbers to the right.
class text_table {
 public:
  explicit text_table(std::vector<std::string> headings) : headings_(std::move(headings)) {}
  void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

  std::string aligned() const;
  // Comma-separated, texts with commas quoted; "-" becomes an empty cell.
  std::string csv() const;

 private:
  std::vector<std::string> headings_;
  std::vector<std::vector<std::string>> rows_;
};

// A row for each sound. docs/measures.md explains the columns.
text_table sound_table(const std::vector<sound_figures>& sounds, const sound_tables& tables);

// A row for each program.
text_table program_table(const std::vector<program_figures>& programs);
