// MIT License. The effect's programs: reading and replacing the current one, and state files.
#include "hosts/effect/programs.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <vector>

#include "hosts/effect/finding.h"
#include "hosts/effect/keys.h"
#include "hosts/effect/partial_file.h"
#include "hosts/effect/paths.h"
#include "hosts/effect/text.h"

namespace fs = std::filesystem;

namespace {

// Far larger than any bank; a larger file was named by mistake, and isn't worth reading into memory.
constexpr std::uintmax_t most_state_bytes = 64 << 20;

program_image image_of(const effect_host& host, image_kind kind) {
  return read_image("the effect's state", host.state(kind), host.identity());
}

std::string differences(const program& wanted, const program& got) {
  std::vector<std::string> fields;
  if (got.name != wanted.name) fields.emplace_back("name");
  if (got.uuid != wanted.uuid) fields.emplace_back("sound");
  if (got.chorus != wanted.chorus) fields.emplace_back("chorus");
  if (got.reverb != wanted.reverb) fields.emplace_back("reverb");
  if (got.octave != wanted.octave) fields.emplace_back("octave");
  if (got.keys != wanted.keys) fields.emplace_back("keys");
  return joined(fields);
}

// Replaces the current program by `image`, whose content is `wanted`.
void use_image(const program& wanted, const std::string& image, effect_host* host) {
  host->set_state(image_kind::single_program, image);
  const program got = current_program(*host);
  if (got == wanted) return;
  throw failure("the effect did not take program '" + wanted.name + "': other than asked are " +
                differences(wanted, got));
}

std::string switches_of(const program& content) {
  std::vector<std::string> on;
  if (content.chorus) on.emplace_back("chorus");
  if (content.reverb) on.emplace_back("reverb");
  if (content.octave) on.emplace_back("octave");
  return on.empty() ? "-" : joined(on);
}

// In the form that --keys reads: note names, or key indices when the sound and thus its lowest key is unknown.
std::string keys_of(const program& content, const sound* its_sound) {
  std::string list;
  for (const int key : content.keys) {
    if (!list.empty()) list += ",";
    list += its_sound == nullptr ? std::to_string(key) : name_of_note(lowest_note(*its_sound, content.octave) + key);
  }
  return list.empty() ? "-" : list;
}

std::string called(const std::string& path) {
  return "state '" + path + "'";
}

std::string content_of(const std::string& path) {
  std::error_code error;
  const fs::path place = path_of(path);
  const auto status = fs::status(place, error);
  if (status.type() == fs::file_type::not_found) throw failure(called(path) + " doesn't exist");
  if (error) throw failure(called(path) + " cannot be read: " + error.message());
  if (!fs::is_regular_file(status)) throw failure(called(path) + " is no regular file");
  if (fs::file_size(place) > most_state_bytes) throw failure(called(path) + " is no state of a plug-in");
  std::ifstream file(place, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  if (!file) throw failure(called(path) + " cannot be read");
  return bytes;
}

// Replaces the bank by `image`, decoded from `bytes`.
//   what     how messages name it
//   throws   failure when the effect's state afterwards differs from it
void use_bank(const std::string& what, const program_image& image, const std::string& bytes, effect_host* host) {
  host->set_state(image_kind::bank, bytes);
  const auto not_taken = [&](const std::string& part) {
    return failure("the effect did not take " + part + " of " + what);
  };
  const auto got = image_of(*host, image_kind::bank);
  if (got.current != image.current || host->program() != image.current) throw not_taken("the current program");
  for (std::size_t slot = 0; slot < image.programs.size(); ++slot) {
    const auto& wanted = image.programs[slot];
    // The effect encodes the current program again and returns the other records byte for byte.
    const bool is_current = static_cast<std::size_t>(image.current) == slot;
    const bool taken = slot < got.programs.size() && (is_current ? got.programs[slot].content == wanted.content
                                                                 : got.programs[slot].record == wanted.record);
    if (!taken) throw not_taken("program " + std::to_string(slot));
  }
}

}  // namespace

program current_program(const effect_host& host) {
  return image_of(host, image_kind::single_program).programs.front().content;
}

const sound& sound_of(const program& content) {
  if (const sound* const found = sound_with_uuid(known_sounds(), content.uuid)) return *found;
  throw failure("program '" + content.name + "' has a sound that isn't known, '" + content.uuid +
                "': choose one with --sound");
}

program fresh_program(const sound& chosen) {
  program fresh;
  fresh.name = chosen.name.substr(0, kVstMaxProgNameLen);  // the longest that other hosts accept
  fresh.uuid = chosen.uuid;
  fresh.keys = {12, 16, 19};
  return fresh;
}

void use_program(const program& wanted, effect_host* host) {
  use_image(wanted, single_program_image(wanted, host->program(), host->identity()), host);
}

void select_program(std::string_view wanted, effect_host* host) {
  std::vector<findable> entries;
  entries.reserve(static_cast<std::size_t>(host->program_count()));
  for (int number = 0; number < host->program_count(); ++number) {
    entries.push_back({number, host->program_name(number)});
  }
  const auto& found = entries[find_entry(entries, wanted, {"program", "--list-programs"})];
  host->select_program(found.number);
  if (host->program() == found.number) return;
  throw failure("the effect did not change to program " + std::to_string(found.number) + " '" + found.name + "'");
}

std::string program_table(const effect_host& host) {
  const auto bank = image_of(host, image_kind::bank);
  std::vector<std::array<std::string, 4>> rows;
  std::array<std::size_t, 4> widths{};
  for (std::size_t slot = 0; slot < bank.programs.size(); ++slot) {
    const program& content = bank.programs[slot].content;
    const sound* const its_sound = sound_with_uuid(known_sounds(), content.uuid);
    rows.push_back({on_one_line(host.program_name(static_cast<int>(slot))),
                    on_one_line(its_sound == nullptr ? content.uuid : its_sound->name), switches_of(content),
                    keys_of(content, its_sound)});
    for (std::size_t i = 0; i < widths.size(); ++i) widths[i] = std::max(widths[i], rows.back()[i].size());
  }
  widths.back() = 0;  // no padding after the last column
  std::ostringstream table;
  for (std::size_t slot = 0; slot < rows.size(); ++slot) {
    table << (static_cast<int32_t>(slot) == bank.current ? "*" : " ") << std::right << std::setw(3) << slot
          << std::left;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      table << "  " << std::setw(static_cast<int>(widths[i])) << rows[slot][i];
    }
    table << "\n";
  }
  return table.str();
}

void load_state(const std::string& path, effect_host* host) {
  const std::string bytes = content_of(path);
  const auto image = read_image(called(path), bytes, host->identity());
  if (image.kind == image_kind::single_program) {
    use_image(image.programs.front().content, bytes, host);
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
  const bool single = lower_case(path_of(path).extension().string()) == ".fxp";
  const std::string image = host.state(single ? image_kind::single_program : image_kind::bank);
  partial_file partial(called(path), path);
  partial.write(image);
  partial.finish();
}
