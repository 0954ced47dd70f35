// MIT License. Files with an effect's state: a bank or a single program.
#include "hosts/state_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "hosts/failure.h"
#include "hosts/partial_file.h"
#include "hosts/programs.h"
#include "hosts/text.h"

namespace fs = std::filesystem;

// Far more than any bank has; a larger file is something else, taken for a state by mistake.
constexpr std::uintmax_t most_state_bytes = 64 << 20;

static std::string called(const std::string& path) {
  return "state '" + path + "'";
}

static std::string content_of(const std::string& path) {
  std::error_code error;
  const auto status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) throw failure(called(path) + " doesn't exist");
  if (error) throw failure(called(path) + " cannot be read: " + error.message());
  if (!fs::is_regular_file(status)) throw failure(called(path) + " is no regular file");
  if (fs::file_size(path) > most_state_bytes) throw failure(called(path) + " is no state of a plug-in");
  std::ifstream file(path, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  if (!file) throw failure(called(path) + " cannot be read");
  return bytes;
}

void load_state(const std::string& path, effect_host* host) {
  const std::string bytes = content_of(path);
  const auto image = read_image(called(path), bytes, host->identity());
  if (image.kind == image_kind::single_program) {
    use_program(image.programs.front().content, bytes, host);
    return;
  }
  const int slots = std::max(host->program_count(), static_cast<int>(image.programs.size()));
  if (image.current < 0 || image.current >= slots) {
    throw failure(called(path) + " has program " + std::to_string(image.current) + " in use, and there are 0 to " +
                  std::to_string(slots - 1));
  }
  use_bank(called(path), image, bytes, host);
}

void save_state(const std::string& path, const effect_host& host) {
  const bool single = lower_case(fs::path(path).extension().string()) == ".fxp";
  const std::string image = host.state(single ? image_kind::single_program : image_kind::bank);
  partial_file partial(called(path), path);
  partial.write(image);
  partial.finish();
}
