// MIT License. The framework's VST3 module, with some of its habits mended. Its sources are meant to be one file with
// this, which is compiled without access control: what has to be mended is private to the framework's classes.
#include <cstdint>

#include "src/travesty/base.h"
#include "src/travesty/bstream.h"

// The framework takes it that streams read and write everything at once, and spoils the state otherwise. It reaches
// every object of the host through v3_cpp_obj(), of which this is the one for streams.
class whole_stream {
 public:
  explicit whole_stream(v3_bstream** stream) : calls_(v3_cpp_obj<v3_bstream>(stream)) {}
  const whole_stream* operator->() const { return this; }

  v3_result read(void* stream, void* bytes, int32_t size, int32_t* done) const {
    return repeat(calls_->read, stream, bytes, size, done);
  }
  v3_result write(void* stream, void* bytes, int32_t size, int32_t* done) const {
    return repeat(calls_->write, stream, bytes, size, done);
  }

 private:
  // Until all is done or no more can be; what went wrong after the first piece, the next call sees.
  template <typename Call>
  static v3_result repeat(Call call, void* stream, void* bytes, int32_t size, int32_t* done) {
    *done = 0;
    while (*done < size) {
      int32_t count = 0;
      const v3_result result = call(stream, static_cast<char*>(bytes) + *done, size - *done, &count);
      if (result != V3_OK && *done == 0) return result;
      if (result != V3_OK || count <= 0) break;
      *done += count;
    }
    return V3_OK;
  }

  v3_bstream* calls_;
};

static inline whole_stream v3_cpp_obj(v3_bstream** stream) {
  return whole_stream(stream);
}

#define GetPluginFactory framework_factory
#include "DistrhoPluginMain.cpp"
#undef GetPluginFactory

using namespace DISTRHO_NAMESPACE;

namespace {

// The reverb and the longest delays have died away by then. The framework says that nothing follows the input, and a host
// would cut it off.
constexpr double tail_seconds = 10;

uint32_t V3_API tail(void* self) {
  const auto& plugin = (*static_cast<dpf_audio_processor**>(self))->vst3;
  return plugin != nullptr ? static_cast<uint32_t>(plugin->getSampleRate() * tail_seconds) : 0;
}

decltype(v3_plugin_factory::create_instance) create_by_framework = nullptr;

v3_result V3_API create(void* self, const v3_tuid class_id, const v3_tuid iid, void** instance) {
  const v3_result result = create_by_framework(self, class_id, iid, instance);
  if (result != V3_OK) return result;
  auto** const component = static_cast<v3_funknown**>(*instance);
  v3_audio_processor** found = nullptr;
  if (v3_cpp_obj_query_interface(component, v3_audio_processor_iid, &found) == V3_OK) {
    v3_cpp_obj(found)->get_tail_samples = tail;
    v3_cpp_obj_unref(found);
  }
  return result;
}

}  // namespace

DISTRHO_PLUGIN_EXPORT const void* GetPluginFactory();

const void* GetPluginFactory() {
  const void* const made = framework_factory();
  dpf_factory* const factory = *static_cast<dpf_factory* const*>(made);
  create_by_framework = factory->v1.create_instance;
  factory->v1.create_instance = create;
  return made;
}
