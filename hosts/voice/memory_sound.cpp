// MIT License. A sound file in memory, as libsndfile reads and writes it.
#include "hosts/voice/memory_sound.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

namespace {

memory_sound& own(void* user) {
  return *static_cast<memory_sound*>(user);
}

sf_count_t size_of(const memory_sound& sound) {
  return static_cast<sf_count_t>(sound.bytes.size());
}

sf_count_t seek(sf_count_t offset, int whence, void* user) {
  memory_sound& sound = own(user);
  const sf_count_t origin = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? sound.position : size_of(sound);
  // Damaged files ask for offsets close to the largest number.
  return sound.position = origin + std::clamp<sf_count_t>(offset, -origin, size_of(sound) - origin);
}

sf_count_t read(void* target, sf_count_t count, void* user) {
  memory_sound& sound = own(user);
  const sf_count_t some = std::min(count, size_of(sound) - sound.position);
  std::memcpy(target, sound.bytes.data() + sound.position, static_cast<std::size_t>(some));
  sound.position += some;
  return some;
}

// libsndfile is C, through which no exception may pass: it takes a short count for a full disk.
sf_count_t write(const void* source, sf_count_t count, void* user) {
  memory_sound& sound = own(user);
  try {
    const auto end = static_cast<std::size_t>(sound.position + count);
    if (end > sound.bytes.size()) sound.bytes.resize(end);
  } catch (const std::bad_alloc&) {
    return 0;
  }
  std::memcpy(sound.bytes.data() + sound.position, source, static_cast<std::size_t>(count));
  sound.position += count;
  return count;
}

}  // namespace

SF_VIRTUAL_IO memory_sound::calls() {
  SF_VIRTUAL_IO all{};
  all.get_filelen = [](void* user) { return size_of(own(user)); };
  all.tell = [](void* user) { return own(user).position; };
  all.seek = seek;
  all.read = read;
  all.write = write;
  return all;
}
