// MIT License. The pictures of the window.
#pragma once

#include <string>
#include <vector>

#include "tools/artwork_canvas.h"

namespace artwork {

struct picture {
  std::string name;  // of the file for a scale of 1, without ".png"
  int width;         // at a scale of 1
  int height;
  void (*draw)(const canvas& on);
};

const std::vector<picture>& all_pictures();

// The same pixels at every call. The scales that the window has pictures for are 1 and 2.
canvas render(const picture& chosen, int scale);

// "name.png", at a scale of 2 "name@2x.png".
std::string file_name(const picture& chosen, int scale);

}  // namespace artwork
