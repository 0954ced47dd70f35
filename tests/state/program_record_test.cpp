// MIT License. Tests of the stored program, byte by byte.
#include "state/program_record.h"

#include <gmock/gmock.h>

namespace {

using chunks::chunk;
using chunks::mutable_chunk;
using chunks::string_chunk;
using state::program;
using state::read_program;
using state::read_program_name;

// A record of any version with `flags` bytes of 2 after the texts.
mutable_chunk record(uint32_t version, int flags) {
  mutable_chunk made(state::program_chunk_id);
  made.write(version);
  made.append(string_chunk(5, "name"));
  made.append(string_chunk(6, "uuid"));
  for (int flag = 0; flag < flags; ++flag) made.write(uint8_t{2});
  return made;
}

int held(const program& read) {
  return static_cast<int>(std::count(read.keys.begin(), read.keys.end(), 1));
}

TEST(ProgramRecord, ComesBackAsItWas) {
  program stored;
  stored.sound_uuid = "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder";
  stored.reverb_on = true;
  stored.octave_on = true;
  for (const size_t key : {12U, 16U, 19U}) stored.keys[key] = 1;
  const auto read = read_program(to_chunk(stored));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->name, "");
  EXPECT_EQ(read->sound_uuid, stored.sound_uuid);
  EXPECT_FALSE(read->chorus_on);
  EXPECT_TRUE(read->reverb_on && read->octave_on);
  EXPECT_EQ(read->keys, stored.keys);
}

TEST(ProgramRecord, OfAnEarlierVersionHasNoOctaveFlagAndOfALaterOneIsLeftAlone) {
  const auto read = read_program(record(1009, 38));
  ASSERT_TRUE(read);
  EXPECT_TRUE(read->chorus_on && read->reverb_on && !read->octave_on);
  EXPECT_EQ(held(*read), 36);
  EXPECT_TRUE(read_program(record(0x80000000U, 38)));  // the number is signed
  EXPECT_TRUE(read_program(record(1010, 39))->octave_on);
  EXPECT_EQ(read_program_name(record(1010, 0)), "name");
  EXPECT_FALSE(read_program(record(1011, 39)) || read_program_name(record(1011, 39)));
}

TEST(ProgramRecord, CutShortReadsOnIntoItsBlockAndThenZeros) {
  const auto alone = read_program(record(1010, 1));
  EXPECT_TRUE(alone->chorus_on);
  EXPECT_FALSE(alone->reverb_on);
  EXPECT_EQ(held(*alone), 0);

  // In an image the next record's header follows, here "KVLP" and a size of 8: five bytes that are not zero.
  mutable_chunk image(chunks::chunk_id("KVLB"));
  image.append(record(1010, 3));
  image.write("KVLP\0\0\0\x08", 8);
  chunk first;
  chunks::chunk_input_stream{image}.next(&first);
  EXPECT_EQ(held(*read_program(first)), 5);
}

TEST(ProgramRecord, WithoutItsTextsIsRefused) {
  mutable_chunk no_texts(state::program_chunk_id);
  no_texts.write(uint32_t{1010});
  EXPECT_THROW(read_program(no_texts), err::runtime_error);
  EXPECT_THROW(read_program(chunk()), err::runtime_error);
  no_texts.append(record(1010, 0));  // a chunk, but no text
  EXPECT_THROW(read_program_name(no_texts), err::runtime_error);
}

}  // namespace
