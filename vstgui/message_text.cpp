// MIT License.
#include "vstgui/message_text.h"

#include <algorithm>
#include <cmath>

namespace VSTGUI::platform {

namespace {

constexpr CCoord line_height = 19;
constexpr CCoord first_baseline = 14;
constexpr CCoord tab_stop = 64;

class layout {
 public:
  layout(const font& face, CCoord widest) : face_(face), widest_(widest) {}

  // A part of a line without tabs; it starts where the last one ended.
  void add_column(const std::string& column) {
    const CCoord left = x_;
    std::string line;
    for (size_t start = 0; start < column.size();) {
      // A word with the blanks before it, so that those of the text stay as they are.
      const size_t word = std::min(column.find_first_not_of(' ', start), column.size());
      const size_t end = std::min(column.find(' ', word), column.size());
      if (!line.empty() && left + face_.width(line + column.substr(start, end - start)) > widest_) {
        put(left, line);
        next_line(left);
        line = column.substr(word, end - word);
      } else {
        line += column.substr(start, end - start);
      }
      start = end;
    }
    put(left, line);
  }
  void next_stop() { x_ = (std::floor(x_ / tab_stop) + 1) * tab_stop; }
  void next_line(CCoord left) {
    x_ = left;
    y_ += line_height;
  }

  message_text result;

 private:
  void put(CCoord left, const std::string& line) {
    if (line.empty()) return;
    x_ = left + face_.width(line);
    result.runs.push_back({CPoint(left, y_ + first_baseline), line});
    result.size = CPoint(std::max(result.size.x, x_), y_ + line_height);
  }

  const font& face_;
  CCoord widest_;
  CCoord x_ = 0;
  CCoord y_ = 0;
};

}  // namespace

message_text lay_out(const std::string& text, const font& face, CCoord widest) {
  layout lines(face, widest);
  std::string column;
  for (const char letter : text + '\n') {
    if (letter == '\r') continue;
    if (letter != '\t' && letter != '\n') {
      column += letter;
      continue;
    }
    lines.add_column(column);
    column.clear();
    if (letter == '\t') lines.next_stop();
    if (letter == '\n') lines.next_line(0);
  }
  return lines.result;
}

}  // namespace VSTGUI::platform
