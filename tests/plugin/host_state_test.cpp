// MIT License. Tests of what the host saves and restores.
#include <atomic>
#include <thread>

#include "tests/plugin/effect_fixture.h"
#include "tests/plugin/own_log.h"
#include "tests/words/files.h"

namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr size_t k_image_size = 3538;

class HostState : public Effect {
 protected:
  std::string save(bool single_program = false) {
    void* data = nullptr;
    const VstInt32 size = effect.getChunk(&data, single_program);
    EXPECT_EQ(data == nullptr, size == 0);
    return {static_cast<const char*>(data), static_cast<size_t>(size)};
  }
  // What is logged meanwhile.
  std::string load(std::string bytes, bool single_program = false) {
    const log_capture log;
    EXPECT_EQ(effect.setChunk(bytes.data(), static_cast<VstInt32>(bytes.size()), single_program), 0);
    return log.text();
  }
};

// A bank of some programs named by letters, from "A" on.
std::string bank_of(int count, int32_t current_program, int32_t version = 1) {
  std::vector<chunks::chunk> records;
  for (int index = 0; index < count; ++index) {
    state::program program;
    program.name = std::string(1, static_cast<char>('A' + index));
    program.sound_uuid = "quorvant.factory.Colorized_Pulser";
    records.push_back(to_chunk(program));
  }
  const auto image = state::bank_image({0x4B56344D, version}, current_program, records);
  return {reinterpret_cast<const char*>(image->bytes()), static_cast<size_t>(image->size())};
}

std::string with_byte(std::string bytes, size_t offset, int value) {
  bytes[offset] = static_cast<char>(value);
  return bytes;
}

std::string name_of(const loose_effect& of, VstInt32 index) {
  char text[kVstMaxProgNameLen + 1] = "";
  const_cast<loose_effect&>(of).getProgramNameIndexed(0, index, text);
  return text;
}

TEST_F(HostState, IsTheDefaultBankAfterTheHandshake) {
  shake_hands();
  const std::string file = read_file(KESREL_RESOURCES "/bank/defaultbank.vstpreset");
  ASSERT_EQ(file.size(), 4025U);
  EXPECT_EQ(save(), file.substr(0, k_image_size));
  load(file);
  EXPECT_EQ(save(), file.substr(0, k_image_size)) << "a second time";
}

TEST_F(HostState, ComesBackByteForByte) {
  shake_hands();
  effect.setProgram(7);
  effect.select_preset_by_index(k_ambient_indigo);
  effect.setParameter(k_reverb_on, 1.0F);
  hold_keys({0, 35});
  const std::string saved = save();

  choosy_gate other_gate;
  loose_effect other(&test_host::callback, other_gate);
  other.vendorSpecific(k_handshake_id, 1, nullptr, 0.0F);
  host.automated.clear();
  other.setChunk(const_cast<char*>(saved.data()), static_cast<VstInt32>(saved.size()), false);
  EXPECT_THAT(host.automated, ElementsAre(Pair(0, 0.0F), Pair(1, 1.0F), Pair(2, 0.0F)));
  EXPECT_EQ(other.getProgram(), 7);
  EXPECT_EQ(other.sound_uuid(), "quorvant.deep_vocoders.Ambient_Indigo");
  void* data = nullptr;
  const VstInt32 size = other.getChunk(&data, false);
  EXPECT_EQ(std::string(static_cast<const char*>(data), static_cast<size_t>(size)), saved);
}

TEST_F(HostState, OfASingleProgramLandsInTheProgramInUse) {
  shake_hands();
  effect.setProgram(4);
  hold_keys({5});
  const std::string saved = save(true);
  EXPECT_EQ(saved.substr(8, 4), "hCPF");
  effect.setProgram(9);
  EXPECT_EQ(load(saved, true), "");
  EXPECT_EQ(effect.getProgram(), 9);
  EXPECT_EQ(name_of(effect, 9), "Analog Pulse Pad B");
  EXPECT_EQ(save(true).substr(160), saved.substr(160));
}

TEST_F(HostState, OfASingleProgramChangesNoOtherSlot) {
  shake_hands();
  const std::string stranger = bank_of(1, 0).substr(160);  // its record, which follows the single image's head, too
  std::string single = save(true).substr(0, 160) + stranger;
  const size_t size = single.size() - 8;
  single = with_byte(with_byte(single, 6, static_cast<int>(size >> 8)), 7, static_cast<int>(size & 0xFF));
  effect.setProgram(4);
  const std::string before = save();
  EXPECT_EQ(load(single, true), "");
  const std::string after = save();

  // All records of the default bank but the fifth stay, byte for byte.
  const auto records_of = [](const std::string& bank) {
    std::vector<std::string> records;
    for (size_t at = 160; at < bank.size();) {
      const size_t length = 8 + static_cast<uint8_t>(bank[at + 6]) * 256U + static_cast<uint8_t>(bank[at + 7]);
      records.push_back(bank.substr(at, length));
      at += length;
    }
    return records;
  };
  std::vector<std::string> expected = records_of(before);
  ASSERT_EQ(expected.size(), 24U);
  expected[4] = stranger;
  EXPECT_EQ(records_of(after), expected);
}

TEST_F(HostState, GrowsWithALargerBankAndKeepsWhatASmallerOneLeaves) {
  shake_hands();
  load(bank_of(26, 25));
  EXPECT_EQ(effect.getAeffect()->numPrograms, 26);
  EXPECT_EQ(effect.getProgram(), 25);
  EXPECT_EQ(name_of(effect, 25), "Z");
  load(bank_of(2, 1));
  EXPECT_EQ(effect.getAeffect()->numPrograms, 26);
  EXPECT_EQ(name_of(effect, 2), "C");
  // The dispatcher holds on to the count of old.
  AEffect* const record = effect.getAeffect();
  record->dispatcher(record, effSetProgram, 0, 25, nullptr, 0.0F);
  EXPECT_EQ(effect.getProgram(), 1);
}

TEST_F(HostState, IgnoresWhatIsNotItsOwn) {
  shake_hands();
  const std::string before = save();
  const std::string bank = bank_of(24, 3);
  const std::string refused[] = {
      "",                        //
      bank.substr(0, 7),         //
      with_byte(bank, 0, 'X'),   // outer id
      with_byte(bank, 8, 'F'),   // magic
      with_byte(bank, 15, 2),    // format version
      with_byte(bank, 19, 'N'),  // plug-in
      bank_of(24, 3, 2),         // its version
  };
  for (const auto& bytes : refused) EXPECT_EQ(load(bytes), "");
  EXPECT_EQ(load(bank, true), "") << "a bank is no program";
  EXPECT_EQ(load(save(true), false), "") << "a program is no bank";
  EXPECT_EQ(effect.setChunk(nullptr, 100, false), 0);
  EXPECT_EQ(effect.setChunk(nullptr, -1, false), 0);
  EXPECT_EQ(save(), before);
}

TEST_F(HostState, ReportsAnImageThatBreaksOff) {
  shake_hands();
  std::string bank = bank_of(24, 3);
  EXPECT_EQ(load(bank.substr(0, bank.size() - 1)),
            "setChunk failed\nchunk::chunk(data_ref) chunk corrupt! chunk size bigger than avail data!\n");
  EXPECT_EQ(name_of(effect, 1), "Detuned Sawtooth B") << "the head already claims too much";

  const size_t record_size = 8 + 36 + 1 + 33 + 39;
  bank[160 + record_size + 4] = 0x7F;  // the second record's size
  EXPECT_EQ(load(bank), "setChunk failed\nbasic_chunk_input_stream: chunk not valid or no chunk at all!\n");
  EXPECT_EQ(name_of(effect, 0), "Detuned Sawtooth A") << "the program in use has its live name";
  effect.setProgram(1);
  EXPECT_EQ(name_of(effect, 1), "Detuned Sawtooth B");
  EXPECT_EQ(effect.sound_uuid(), "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder");
}

TEST_F(HostState, WarnsOfAForeignRecordAndStoresIt) {
  shake_hands();
  const std::string bank = with_byte(bank_of(24, 3), 160, 'X');
  EXPECT_EQ(load(bank), "restored chunk broken\n");
  EXPECT_EQ(save(), bank);
}

TEST_F(HostState, SurvivesACurrentProgramThatIsNoSlot) {
  shake_hands();
  for (const int32_t nowhere : {24, -1, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(load(bank_of(24, nowhere)), "");
    EXPECT_EQ(save().size(), bank_of(24, 0).size());
    const log_capture log;
    EXPECT_EQ(save(true), "");
    EXPECT_EQ(log.text(), "getChunk failed\nthe current program is no slot\n");
    effect.setProgram(2);
    EXPECT_EQ(name_of(effect, 2), "C");
  }
}

// A record without a body can be restored, but not saved.
TEST_F(HostState, OfARecordWithoutABodyIsNotSaved) {
  shake_hands();
  std::string bank = bank_of(24, 3);
  bank = bank.substr(0, 160) + std::string("KVLP\0\0\0\0", 8) + bank.substr(168 + 36 + 1 + 33 + 39);
  const size_t size = bank.size() - 8;
  bank = with_byte(with_byte(bank, 6, static_cast<int>(size >> 8)), 7, static_cast<int>(size & 0xFF));
  EXPECT_EQ(load(bank), "");
  const log_capture log;
  EXPECT_EQ(save(), "");
  const std::string reason = "cannot append chunks to mutable_chunk after we created a final chunk!\n";
  EXPECT_EQ(log.text(), "getChunk failed\n" + reason);
}

TEST_F(HostState, BeforeTheHandshakeKnowsNoSoundYet) {
  load(bank_of(24, 3));
  EXPECT_EQ(name_of(effect, 3), "D");
  shake_hands();
  EXPECT_EQ(name_of(effect, 3), "Analog Pulse Pad A");
}

// For the thread sanitizer, and for a bank that is whole at the end.
TEST_F(HostState, IsSavedAndRestoredBesideTheAudioThread) {
  shake_hands();
  recording.running = false;
  const std::string bank = save();
  std::atomic<bool> done{false};
  std::atomic<int32_t> blocks{0};
  std::thread audio([&] {
    stereo_block block(16);
    for (; !done.load(); blocks.fetch_add(1)) block.run(effect.getAeffect());
  });
  for (int32_t round = 0; round < 200 || blocks.load() < 500; ++round) {
    effect.setProgram(round % 24);
    effect.select_preset_by_index(round % 67);
    hold_keys({static_cast<size_t>(round % 36)});
    effect.setParameterAutomated(round % 3, static_cast<float>(round % 2));
    const std::string saved = save(round % 2 == 0);
    load(saved, round % 2 == 0);
  }
  load(bank);
  done.store(true);
  audio.join();
  EXPECT_EQ(save(), bank);
}

// Hosts that save in the background do so beside the window.
TEST_F(HostState, IsSavedByOneThreadWhileAnotherThreadChoosesAndNames) {
  shake_hands();
  std::atomic<bool> done{false};
  std::thread window([&] {
    for (int32_t round = 0; !done.load(); ++round) {
      effect.select_preset_by_index(3 + round % 8);
      char name[] = "renamed";
      effect.setProgramName(name);
    }
  });
  for (int round = 0; round < 200; ++round) EXPECT_GE(save().size(), 3000U);
  done.store(true);
  window.join();
}

}  // namespace
