// MIT License. The host's side of the effect: opens it, sets it up, runs blocks through it and closes it.
#include "hosts/effect_host.h"

#include <string>

#include "hosts/failure.h"

extern "C" AEffect* VSTPluginMain(audioMasterCallback host);

// What this host answers. Everything it doesn't know is 0, as the interface has it.
static VstIntPtr answer(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
  switch (opcode) {
    case audioMasterVersion:
      return kVstVersion;
    case audioMasterGetCurrentProcessLevel:
      return kVstProcessLevelOffline;
    default:
      return 0;
  }
}

effect_host::effect_host(int rate_hz, int block, int input_channels) : effect_(VSTPluginMain(answer)) {
  if (effect_ == nullptr || effect_->magic != kEffectMagic) throw failure("the effect doesn't start");
  dispatch(effOpen);
  try {
    set_rate(rate_hz);
    dispatch(effSetBlockSize, 0, block);
    arrange_speakers(input_channels);
    shake_hands();
  } catch (...) {
    dispatch(effClose);
    throw;
  }
}

effect_host::~effect_host() {
  if (started_) {
    dispatch(effStopProcess);
    dispatch(effMainsChanged, 0, 0);
  }
  dispatch(effClose);
}

void effect_host::set_rate(int rate_hz) {
  dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate_hz));
}

void effect_host::set(effect_switch which, bool on) {
  effect_->setParameter(effect_, static_cast<VstInt32>(which), on ? 1.0F : 0.0F);
}

void effect_host::start() {
  dispatch(effMainsChanged, 0, 1);
  dispatch(effStartProcess);
  started_ = true;
}

void effect_host::arrange_speakers(int input_channels) {
  VstSpeakerArrangement input{};
  input.type = input_channels == 1 ? kSpeakerArrMono : kSpeakerArrStereo;
  input.numChannels = input_channels;
  VstSpeakerArrangement output{};
  output.type = kSpeakerArrStereo;
  output.numChannels = 2;
  if (dispatch(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&input), &output) == 0) {
    throw failure("the effect refuses " + std::to_string(input_channels) + " input channels");
  }
}

void effect_host::shake_hands() {
  constexpr VstInt32 handshake = ('K' << 24) | ('V' << 16) | ('H' << 8) | 's';
  constexpr VstIntPtr interface_version = 1;
  if (dispatch(effVendorSpecific, handshake, interface_version) != 1) throw failure("the effect refuses this host");
}

VstIntPtr effect_host::dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
  return effect_->dispatcher(effect_, opcode, index, value, ptr, opt);
}
