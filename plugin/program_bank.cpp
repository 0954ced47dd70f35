// MIT License.
#include "plugin/program_bank.h"

#include "plugin/factory_catalogue.h"

int32_t program_bank::count() const {
  const std::lock_guard guard(lock_);
  return static_cast<int32_t>(records_.size());
}

std::optional<chunks::chunk> program_bank::record(int32_t slot) const {
  const std::lock_guard guard(lock_);
  if (slot < 0 || static_cast<size_t>(slot) >= records_.size()) return std::nullopt;
  return records_[static_cast<size_t>(slot)];
}

std::vector<chunks::chunk> program_bank::records() const {
  const std::lock_guard guard(lock_);
  return records_;
}

void program_bank::replace(int32_t slot, const chunks::chunk& record) {
  const std::lock_guard guard(lock_);
  if (slot < 0 || static_cast<size_t>(slot) >= records_.size()) return;
  records_[static_cast<size_t>(slot)] = record;
}

void program_bank::append(const chunks::chunk& record) {
  const std::lock_guard guard(lock_);
  records_.push_back(record);
}

std::vector<state::program> built_in_programs() {
  std::vector<state::program> programs;
  for (const factory_program& stated : factory_programs()) {
    state::program program;
    program.name = stated.name;
    program.sound_uuid = stated.sound_uuid;
    for (const size_t key : first_chord) program.keys[key] = 1;
    programs.push_back(program);
  }
  return programs;
}
