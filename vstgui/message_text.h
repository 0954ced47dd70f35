// MIT License. The lines of a message box: tab stops and line breaks.
#pragma once

#include <string>
#include <vector>

#include "vstgui/platform.h"

namespace VSTGUI::platform {

struct message_text {
  struct run {
    CPoint baseline;  // its start, from the top left corner of the text
    std::string text;
  };
  std::vector<run> runs;
  CPoint size;
};

// Lines end in LF or CR LF; empty ones at the end don't count. A tab leads to the next stop. What is wider than
// `widest` goes on in the next line, below the start of its column; a single word is never broken.
message_text lay_out(const std::string& text, const font& face, CCoord widest);

}  // namespace VSTGUI::platform
