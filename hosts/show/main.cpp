// MIT License. kesrel-show: opens the vocoder's window and plays a voice through it.
#include <cstdio>
#include <exception>

#include "hosts/effect/command_words.h"
#include "hosts/effect/interruption.h"
#include "hosts/effect/text.h"
#include "hosts/show/options.h"
#include "hosts/show/show.h"

int main(int argc, char** argv) {
  try {
    survive_file_size_limit();
    const auto line = utf8_words(argc, argv);
    if (const auto options = read_show_options(line.count, line.words)) show(*options);
    return 0;
  } catch (const interrupted& end) {
    end_by_signal(end.signal_number);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kesrel-show: %s\n", on_one_line(error.what()).c_str());
    return 1;
  }
}
