// MIT License. Tests of what the host saves and restores.
#include "tests/plugin/effect_fixture.h"
#include "tests/plugin/own_log.h"
#include "tests/words/files.h"

namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr size_t head_size = 160;

class HostState : public Effect {
 protected:
  std::string save(bool single_program = false) {
    void* data = nullptr;
    const VstInt32 size = effect.getChunk(&data, single_program);
    EXPECT_EQ(data == nullptr, size == 0);
    return {static_cast<const char*>(data), static_cast<size_t>(size)};
  }
  // What is logged while the bytes are restored.
  std::string load(std::string bytes, bool single_program = false) {
    const log_capture log;
    EXPECT_EQ(effect.setChunk(bytes.data(), static_cast<VstInt32>(bytes.size()), single_program), 0);
    return log.text();
  }
};

std::string text_of(const state::image_bytes& image) {
  return {reinterpret_cast<const char*>(image->bytes()), static_cast<size_t>(image->size())};
}

std::string single(const chunks::chunk& record) {
  return text_of(state::single_program_image({0x4B56344D, 1}, 0, record));
}

// A bank of some programs named by letters, from "A" on.
std::string bank_of(int count, int32_t current_program, int32_t version = 1) {
  std::vector<chunks::chunk> records;
  for (int index = 0; index < count; ++index) {
    state::program program;
    program.name = std::string(1, static_cast<char>('A' + index));
    program.sound_uuid = "quorvant.factory.Colorized_Pulser";
    records.push_back(to_chunk(program));
  }
  return text_of(state::bank_image({0x4B56344D, version}, current_program, records));
}

// The records of a bank, with their headers.
std::vector<std::string> records_of(const std::string& bank) {
  std::vector<std::string> records;
  for (size_t at = head_size; at < bank.size(); at += records.back().size()) {
    const size_t size = static_cast<uint8_t>(bank[at + 6]) * 256U + static_cast<uint8_t>(bank[at + 7]);
    records.push_back(bank.substr(at, 8 + size));
  }
  return records;
}

TEST_F(HostState, IsTheDefaultBankAfterTheHandshakeAndComesBackByteForByte) {
  shake_hands();
  const std::string factory_state = save();
  EXPECT_EQ(factory_state, read_file(KESREL_RESOURCES "/bank/defaultbank.vstpreset").substr(0, 3538));
  effect.setProgram(7);
  effect.select_preset_by_index(ambient_indigo);
  effect.setParameter(parameter_reverb_on, 1.0F);
  hold_keys({0, 35});
  const std::string saved = save();
  load(factory_state);
  EXPECT_EQ(save(), factory_state);
  host.automated.clear();
  load(saved);
  EXPECT_THAT(host.automated, ElementsAre(Pair(0, 0.0F), Pair(1, 1.0F), Pair(2, 0.0F)));
  EXPECT_EQ(effect.getProgram(), 7);
  EXPECT_EQ(effect.sound_uuid(), "quorvant.deep_vocoders.Ambient_Indigo");
  EXPECT_EQ(save(), saved);
}

TEST_F(HostState, OfASingleProgramReplacesTheProgramInUseAndNoOther) {
  shake_hands();
  effect.setProgram(4);
  hold_keys({5});
  const std::string saved = save(true);
  effect.setProgram(9);
  std::vector<std::string> expected = records_of(save());
  ASSERT_EQ(expected.size(), 24U);
  expected[9] = saved.substr(head_size);
  EXPECT_EQ(load(saved, true), "");
  EXPECT_EQ(effect.getProgram(), 9);
  EXPECT_EQ(records_of(save()), expected);
}

TEST_F(HostState, GrowsWithALargerBankAndKeepsWhatASmallerOneLeaves) {
  shake_hands();
  load(bank_of(26, 25));
  EXPECT_EQ(effect.getAeffect()->numPrograms, 26);
  EXPECT_EQ(effect.getProgram(), 25);
  EXPECT_EQ(name_of(25), "Z");
  load(bank_of(2, 1));
  EXPECT_EQ(effect.getAeffect()->numPrograms, 26);
  EXPECT_EQ(name_of(2), "C");
  // The dispatcher keeps to the count at construction.
  AEffect* const record = effect.getAeffect();
  record->dispatcher(record, effSetProgram, 0, 25, nullptr, 0.0F);
  EXPECT_EQ(effect.getProgram(), 1);
}

TEST_F(HostState, IgnoresImagesOfAnotherKindOrPlugin) {
  shake_hands();
  const std::string before = save();
  EXPECT_EQ(load(bank_of(24, 3, 2)), "") << "a later version of the plug-in";
  EXPECT_EQ(load(bank_of(24, 3), true), "") << "a bank for a program";
  EXPECT_EQ(load(save(true), false), "") << "a program for a bank";
  EXPECT_EQ(load(""), "");
  for (const VstInt32 size : {100, -1}) EXPECT_EQ(effect.setChunk(nullptr, size, false), 0);
  EXPECT_EQ(save(), before);
}

TEST_F(HostState, ReportsAForeignRecordButStoresItAndAnImageThatBreaksOff) {
  shake_hands();
  const std::string before = save();
  std::string bank = bank_of(24, 3);
  bank[head_size] = 'X';
  EXPECT_EQ(load(bank), "restored chunk broken\n");
  EXPECT_EQ(save(), bank);
  load(before);
  bank = bank_of(24, 3);
  EXPECT_EQ(load(bank.substr(0, bank.size() - 1)),
            "setChunk failed\nchunk::chunk(data_ref) chunk corrupt! chunk size bigger than avail data!\n");
  EXPECT_EQ(name_of(1), "Detuned Sawtooth B") << "refused as a whole";

  bank[head_size + records_of(bank)[0].size() + 4] = 0x7F;  // the second record's size
  EXPECT_EQ(load(bank), "setChunk failed\nbasic_chunk_input_stream: chunk not valid or no chunk at all!\n");
  EXPECT_EQ(name_of(0), "Detuned Sawtooth A") << "the program in use has its live name";
  effect.setProgram(1);
  EXPECT_EQ(name_of(1), "Detuned Sawtooth B");
  EXPECT_EQ(effect.sound_uuid(), "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder");
}

TEST_F(HostState, KeepsTheUuidOfAnUnknownSound) {
  shake_hands();
  state::program stranger;
  stranger.sound_uuid = "elsewhere.sound";
  load(single(to_chunk(stranger)), true);
  expect_dry(run_block());
  effect.setProgram(1);
  effect.setProgram(0);
  EXPECT_EQ(effect.sound_uuid(), "elsewhere.sound");
}

TEST_F(HostState, OfALaterVersionIsIgnoredAndThatWithoutTextsReported) {
  shake_hands();
  for (const uint32_t version : {1011U, 1010U}) {
    chunks::mutable_chunk record(state::program_chunk_id);
    record.write(version);
    EXPECT_EQ(load(single(record), true), version == 1011
                                              ? ""
                                              : "execute_chunk_to_current_program failed\n"
                                                "basic_chunk_input_stream: chunk not valid or no chunk at all!\n");
    EXPECT_EQ(effect.sound_uuid(), "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder");
  }
}

TEST_F(HostState, SurvivesACurrentProgramOutsideTheSlots) {
  shake_hands();
  for (const int32_t nowhere : {24, -1, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(load(bank_of(24, nowhere)), "");
    EXPECT_EQ(save().size(), bank_of(24, 0).size());
    const log_capture log;
    EXPECT_EQ(save(true), "");
    EXPECT_EQ(log.text(), "getChunk failed\nthe current program is no slot\n");
    effect.setProgram(2);
    EXPECT_EQ(name_of(2), "C");
  }
}

}  // namespace
