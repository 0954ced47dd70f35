// MIT License. kesrel-make-loops: makes the synthesizer's six sample loops and prints their figures.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "tools/loop_formats.h"
#include "tools/loop_report.h"
#include "tools/made_loop.h"

namespace {

bool write_bytes(const std::filesystem::path& path, const made_loop& made) {
  std::ofstream file(path, std::ios::binary);
  for (const int8_t byte : made.bytes) file.put(static_cast<char>(byte));
  file.close();
  return file.good();
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("usage: kesrel-make-loops OUTDIR\nWrites loop0.s8 to loop5.s8 into OUTDIR, which must exist.\n", stderr);
    return 2;
  }
  std::fputs(report_heading().c_str(), stdout);
  for (int32_t loop = 0; loop < made_loops; ++loop) {
    const made_loop made = make_sample_loop(loop);
    const std::filesystem::path path = std::filesystem::path(arguments[1]) / ("loop" + std::to_string(loop) + ".s8");
    if (!write_bytes(path, made)) {
      std::fprintf(stderr, "kesrel-make-loops: cannot write %s\n", path.string().c_str());
      return 1;
    }
    std::fputs(report_row(loop, made).c_str(), stdout);
    std::fflush(stdout);
  }
  return 0;
}
