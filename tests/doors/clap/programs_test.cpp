// MIT License. Programs in the CLAP module, as a host chooses them.
#include <clap/entry.h>
#include <clap/ext/params.h>
#include <clap/ext/state.h>
#include <clap/plugin-factory.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/words/data_home.h"
#include "tests/words/temporary_folder.h"

namespace {

constexpr clap_id sound_parameter = 3;
constexpr clap_id latch_parameter = 4;
constexpr clap_id program_parameter = 7;

class ClapPrograms : public testing::Test {
 protected:
  ClapPrograms() {
    set_data_home(home_.path());
    entry_ = static_cast<const clap_plugin_entry_t*>(dlsym(library_, "clap_entry"));
    entry_->init(KESREL_CLAP_MODULE);
    const auto* const factory = static_cast<const clap_plugin_factory_t*>(entry_->get_factory(CLAP_PLUGIN_FACTORY_ID));
    plugin_ = factory->create_plugin(factory, &host_, factory->get_plugin_descriptor(factory, 0)->id);
    plugin_->init(plugin_);
    params_ = static_cast<const clap_plugin_params_t*>(plugin_->get_extension(plugin_, CLAP_EXT_PARAMS));
    state_ = static_cast<const clap_plugin_state_t*>(plugin_->get_extension(plugin_, CLAP_EXT_STATE));
  }
  ~ClapPrograms() override {
    plugin_->destroy(plugin_);
    entry_->deinit();
  }

  double value(clap_id id) const {
    double found = -1;
    params_->get_value(plugin_, id, &found);
    return found;
  }

  // One block that begins with a change of a parameter.
  void process(clap_id id, double value) {
    const clap_event_param_value_t change = {
        {sizeof change, 0, CLAP_CORE_EVENT_SPACE_ID, CLAP_EVENT_PARAM_VALUE, 0}, id, nullptr, -1, -1, -1, -1, value};
    const clap_input_events_t changes = {
        const_cast<clap_event_param_value_t*>(&change), [](const clap_input_events_t*) -> uint32_t { return 1; },
        [](const clap_input_events_t* self, uint32_t) { return static_cast<const clap_event_header_t*>(self->ctx); }};
    const clap_output_events_t listened_to = {
        this, [](const clap_output_events_t* self, const clap_event_header_t* event) {
          const auto& told = *reinterpret_cast<const clap_event_param_value_t*>(event);
          static_cast<ClapPrograms*>(self->ctx)->told_[told.param_id] = told.value;
          return true;
        }};
    std::vector<float> samples(64);
    float* channels[] = {samples.data(), samples.data()};
    clap_audio_buffer_t audio = {channels, nullptr, 2, 0, 0};
    const clap_process_t block = {0, 64, nullptr, &audio, &audio, 1, 1, &changes, &listened_to};
    plugin_->process(plugin_, &block);
  }

  std::string save() const {
    std::string bytes;
    const clap_ostream_t stream = {&bytes, [](const clap_ostream_t* self, const void* data, uint64_t size) {
                                     static_cast<std::string*>(self->ctx)->append(static_cast<const char*>(data), size);
                                     return static_cast<int64_t>(size);
                                   }};
    EXPECT_TRUE(state_->save(plugin_, &stream));
    return bytes;
  }

  void load(std::string bytes) const {
    const clap_istream_t stream = {&bytes, [](const clap_istream_t* self, void* data, uint64_t size) {
                                     auto* const rest = static_cast<std::string*>(self->ctx);
                                     const size_t count = rest->copy(static_cast<char*>(data), size);
                                     rest->erase(0, count);
                                     return static_cast<int64_t>(count);
                                   }};
    EXPECT_TRUE(state_->load(plugin_, &stream));
  }

  void call_back() {
    callbacks_asked_ = 0;
    plugin_->on_main_thread(plugin_);
  }

  int callbacks_asked_ = 0;
  std::optional<clap_param_rescan_flags> rescanned_;
  std::map<clap_id, double> told_;
  const clap_plugin_t* plugin_ = nullptr;

 private:
  static const void* extension(const clap_host_t* /*host*/, const char* id) {
    static constexpr clap_host_params_t params = {
        [](const clap_host_t* host, clap_param_rescan_flags what) { of(host)->rescanned_ = what; },
        [](const clap_host_t*, clap_id, clap_param_clear_flags) {}, [](const clap_host_t*) {}};
    return std::string(id) == CLAP_EXT_PARAMS ? &params : nullptr;
  }
  static ClapPrograms* of(const clap_host_t* host) { return static_cast<ClapPrograms*>(host->host_data); }
  static void ignore(const clap_host_t* /*host*/) {}

  const temporary_folder home_;
  void* const library_ = dlopen(KESREL_CLAP_MODULE, RTLD_NOW);
  const clap_host_t host_ = {
      CLAP_VERSION, this,      "tests", "",     "",
      "",           extension, ignore,  ignore, [](const clap_host_t* host) { ++of(host)->callbacks_asked_; }};
  const clap_plugin_entry_t* entry_ = nullptr;
  const clap_plugin_params_t* params_ = nullptr;
  const clap_plugin_state_t* state_ = nullptr;
};

TEST_F(ClapPrograms, AreLoadedOnTheMainThreadAfterTheBlock) {
  ASSERT_TRUE(plugin_->activate(plugin_, 44100, 1, 64));
  process(sound_parameter, 40);
  ASSERT_EQ(callbacks_asked_, 0);
  process(program_parameter, 7);
  EXPECT_EQ(callbacks_asked_, 1);
  EXPECT_EQ(value(program_parameter), 7);
  EXPECT_EQ(value(sound_parameter), 40);
  call_back();
  EXPECT_EQ(value(program_parameter), 7);
  EXPECT_NE(value(sound_parameter), 40);
  EXPECT_EQ(rescanned_, CLAP_PARAM_RESCAN_VALUES);
  rescanned_.reset();
  process(sound_parameter, 12);
  call_back();
  EXPECT_EQ(callbacks_asked_, 0);
  EXPECT_EQ(value(sound_parameter), 12);
  EXPECT_EQ(rescanned_, std::nullopt);
  plugin_->deactivate(plugin_);
}

TEST_F(ClapPrograms, AreLoadedWithinATenthOfASecondThoughTheHostDoesNotCallBack) {
  ASSERT_TRUE(plugin_->activate(plugin_, 44100, 1, 64));
  process(sound_parameter, 40);
  process(program_parameter, 7);
  for (int frames = 0; frames < 4410 - 64; frames += 64) process(latch_parameter, 1);
  EXPECT_EQ(value(sound_parameter), 40);
  EXPECT_EQ(callbacks_asked_, 1);
  EXPECT_TRUE(told_.empty());
  for (int block = 0; block < 2; ++block) process(latch_parameter, 1);
  EXPECT_EQ(value(program_parameter), 7);
  EXPECT_NE(value(sound_parameter), 40);
  ASSERT_EQ(told_.size(), 7U);
  EXPECT_EQ(told_[sound_parameter], value(sound_parameter));
  plugin_->deactivate(plugin_);
}

TEST_F(ClapPrograms, LeaveValuesAloneThatWereSetAfterThem) {
  ASSERT_TRUE(plugin_->activate(plugin_, 44100, 1, 64));
  process(program_parameter, 7);
  process(sound_parameter, 40);
  call_back();
  EXPECT_EQ(value(program_parameter), 7);
  EXPECT_EQ(value(sound_parameter), 40);
  process(program_parameter, 3);
  EXPECT_EQ(callbacks_asked_, 1) << "for each program, though no block came between";
  call_back();
  EXPECT_NE(value(sound_parameter), 40);
  plugin_->deactivate(plugin_);
}

TEST_F(ClapPrograms, ThatStillWaitAreSavedAndGiveWayToLoadedState) {
  const std::string first = save();
  ASSERT_TRUE(plugin_->activate(plugin_, 44100, 1, 64));
  process(program_parameter, 7);
  const std::string seventh = save();
  process(program_parameter, 9);
  load(first);
  call_back();
  EXPECT_EQ(value(program_parameter), 0);
  EXPECT_EQ(save(), first);
  load(seventh);
  EXPECT_EQ(value(program_parameter), 7);
  plugin_->deactivate(plugin_);
}

}  // namespace
