// MIT License. The effect object that a host talks to: the VST 2.4 face over one vocoder engine.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "engine/vocoder.h"
#include "plugin/activation_gate.h"
#include "plugin/audio_requests.h"
#include "plugin/catalogue.h"
#include "plugin/guarded.h"
#include "plugin/key_update.h"
#include "plugin/program_bank.h"
#include "state/bank_image.h"
#include "vst2/aeff_editor.h"
#include "vst2/audio_effect_x.h"

// The effect as host and editor see it.
//
// Life: the constructor makes the engine, and blocks are silent. The host handshake (vendorSpecific) builds the sound
// catalogue, restores the default bank and makes the effect ready: from then on a block is the vocoder's output, or the
// dry input while no sound is selected. A change of sample rate replaces the engine, which then holds no sound: blocks
// are left unwritten until another sound is selected. effClose deletes the object.
//
// Programs: the sound's uuid, the program's name, the switches and the wanted keys are the live state. A stored program
// is written back from it only when the host leaves the program or asks for state; a choice in the editor alters the
// live state only.
//
// Threads: three sides meet here without a lock.
//   - The host's main thread constructs, shakes hands, sets rate and speakers, and destroys. Rate, speakers and
//     destruction come while processing is stopped, as the interface obliges the host. Programs and state may be asked
//     for and restored while it runs.
//   - The user-interface thread chooses sounds, keys and switches, and reads what it shows.
//   - The audio thread runs processReplacing, alone writes the sound and the keys in use, and alone plays the engine.
// What the first two ask of the third goes through audio_requests, at the start of the next block. The audio thread
// never touches texts and stored programs. An ordinary block, one without a change of sound, takes no lock and doesn't
// reach the heap.
class KesrelVocoder4TarvixEffect : public AudioEffectX {
 public:
  // Throws err::runtime_error when the host's version does not pass.
  //   gate   asked for each use of a sound category; must outlive the effect
  KesrelVocoder4TarvixEffect(audioMasterCallback host, const activation_gate& gate);
  // Destroys the engine, then the sound in use, then the catalogue: the reverse of the members' order.
  ~KesrelVocoder4TarvixEffect() override = default;

  KesrelVocoder4TarvixEffect(const KesrelVocoder4TarvixEffect&) = delete;
  KesrelVocoder4TarvixEffect& operator=(const KesrelVocoder4TarvixEffect&) = delete;

  // Called by the host through the dispatcher while processing is stopped.
  void setSampleRate(float rate) override;
  // Refuses three or more inputs and more than two outputs; null leaves that side as it is.
  bool setSpeakerArrangement(VstSpeakerArrangement* input, VstSpeakerArrangement* output) override;

  // The host handshake: `index` 'KVHs' with `value` 1 builds the catalogue and answers 1. Everything else answers 0.
  // Each handshake appends the same catalogue and makes another editor.
  VstIntPtr vendorSpecific(VstInt32 index, VstIntPtr value, void* ptr, float opt) override;

  // Audio thread. One host block is one engine block of any length; outputs may be the inputs' own arrays in any order.
  void processReplacing(float** inputs, float** outputs, VstInt32 frames) override;

  // Parameters, from any thread. Indices outside the three do nothing and read as 0. A change by the host goes to the
  // editor; setParameterAutomated, the editor's own, reports to the host. Neither comes back to where it came from.
  void setParameter(VstInt32 index, float value) override;
  void setParameterAutomated(VstInt32 index, float value) override;
  float getParameter(VstInt32 index) override;
  void getParameterName(VstInt32 index, char* text) override;

  // Programs, on host threads. A failure is logged and changes nothing more.
  // Stores the live state in the slot in use and restores that of `program`. Does nothing for the slot in use and for
  // numbers outside the slots.
  void setProgram(VstInt32 program) override;
  // Names the live state; the slot gets the name when the state is written back.
  void setProgramName(char* name) override;
  void getProgramName(char* name) override;
  // False outside the slots, and for a slot without a name or of a later version. `category` is ignored.
  bool getProgramNameIndexed(VstInt32 category, VstInt32 index, char* text) override;

  // State, on host threads. The image stays valid until the next getChunk; 0 bytes and null when it cannot be made.
  VstInt32 getChunk(void** data, bool isPreset) override;
  // Restores a bank, or the program in use from a single program. Announces the three parameters to the host for the
  // program that is then in use. Answers 0 whether the bytes were taken or not.
  VstInt32 setChunk(void* data, VstInt32 byteSize, bool isPreset) override;

  // Identity.
  bool getEffectName(char* name) override;
  bool getVendorString(char* text) override;
  bool getProductString(char* text) override;
  VstInt32 canDo(char* text) override;
  // There is no bypass; hosts do their own. False.
  bool setBypass(bool on_off) override;

  // Operations for the editor, on the user-interface thread.
  std::vector<menu_row_ref> getMenuRows() const;
  std::vector<sound_category_ref> getCategories() const;
  // Requests the row at that position of the menu, if there is one and its category may be used. A separator or title
  // row is accepted and gives the dry input. Then the editor shows what is selected. No heap or lock, so that a host's
  // automation may choose sounds on the audio thread.
  void select_preset_by_index(int32_t row_index);
  // The sound last chosen, as stored state names it.
  std::string sound_uuid() const;
  // Its position in the menu, or `no_row`.
  int32_t selected_row() const { return catalogue_.find_row_by_uuid(sound_uuid()); }
  // The requested keys, which the next block plays.
  void getPendingKeys(key_flags& keys) const { requests_.copy_keys(keys); }
  void set_pending_keys(const key_flags& keys) { requests_.hold_keys(keys); }

 private:
  struct engine_deleter {
    void operator()(vocoder_instance* instance) const { vocoder_destroy(instance); }
  };

  // Host and user-interface threads.
  void shake_hands();
  void make_editor();
  void update_editor();
  bool store_parameter(VstInt32 index, float value);
  void load_default_bank();

  // Host threads: programs and state.
  state::plugin_identity identity() const;
  chunks::chunk chunk_from_current_program() const;
  state::image_bytes current_program_image();
  void restore_bank(state::opened_image* image);
  void restore_single_program(state::opened_image* image);
  void execute_chunk_to_current_program(int32_t index);
  void restore(const state::program& stored);

  // Any thread.
  bool pass_gate(int32_t category_id) const;

  // Audio thread: the stages of a block.
  const uint8_t* switch_sound(activation_token* token);
  void apply_keys();
  std::array<const float*, 2> arranged_inputs(float** inputs) const;

  const activation_gate& gate_;

  // The base owns the last handshake's editor and knows it before it is complete; any thread may use this pointer.
  std::atomic<AEffEditor*> complete_editor_{nullptr};
  std::mutex editor_lock_;  // one handshake at a time makes its editor
  std::vector<std::unique_ptr<AEffEditor>> earlier_editors_;

  // The handshake's work. The catalogue keeps its rows, so that the audio thread never holds the last reference to one.
  sound_catalogue catalogue_;
  std::atomic<bool> ready_{false};

  // Host and user-interface threads: the image last handed out, stored programs, and the texts of the live state.
  guarded<state::image_bytes> last_chunk_;
  program_bank programs_;
  guarded<std::string> preset_name_;
  guarded<std::string> restored_uuid_;       // may be of a sound that the catalogue doesn't have
  std::atomic<int32_t> chosen_row_{no_row};  // by hand since then, where choosing mustn't wait for a lock

  audio_requests requests_;
  std::array<std::atomic<float>, parameter_count> parameter_values_{};  // as given; the requests have the switches
  std::atomic<int32_t> input_channels_{2};
  std::atomic<int32_t> output_channels_{2};  // as arranged; both outputs are always written

  // The audio thread's own.
  int32_t current_sound_index_ = no_row;
  sounding_keys active_keys_;
  menu_row_ref current_sound_;
  std::unique_ptr<vocoder_instance, engine_deleter> engine_;
};
