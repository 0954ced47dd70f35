// MIT License. The record through which a VST 2.4 host and an effect reach each other.
#pragma once

#include "vst2/opcodes.h"
#include "vst2/records.h"
#include "vst2/types.h"

struct AEffect;

// The host's entry: one function for all AudioMasterOpcodes. The last argument is a float, which is passed in another
// class of register than the others.
using audioMasterCallback = VstIntPtr(VSTCALLBACK*)(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                                                    void* ptr, float opt);

// The effect's entries: one function for all AEffectOpcodes, and one each for the most frequent calls.
using AEffectDispatcherProc = VstIntPtr(VSTCALLBACK*)(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                                                      void* ptr, float opt);
using AEffectProcessProc = void(VSTCALLBACK*)(AEffect* effect, float** inputs, float** outputs, VstInt32 sampleFrames);
using AEffectProcessDoubleProc = void(VSTCALLBACK*)(AEffect* effect, double** inputs, double** outputs,
                                                    VstInt32 sampleFrames);
using AEffectSetParameterProc = void(VSTCALLBACK*)(AEffect* effect, VstInt32 index, float parameter);
using AEffectGetParameterProc = float(VSTCALLBACK*)(AEffect* effect, VstInt32 index);

// Type of the function that a module exports as "VSTPluginMain". It returns null to refuse the host.
using VSTPluginMainProc = AEffect*(VSTCALLBACK*)(audioMasterCallback host);

constexpr VstInt32 kEffectMagic = CCONST('V', 's', 't', 'P');

// clang-format off
enum VstAEffectFlags : VstInt32 {
  effFlagsHasEditor          = 1 <<  0,
  effFlagsHasClip            = 1 <<  1,  // retired
  effFlagsHasVu              = 1 <<  2,  // retired
  effFlagsCanMono            = 1 <<  3,  // retired
  effFlagsCanReplacing       = 1 <<  4,  // processReplacing works; mandatory
  effFlagsProgramChunks      = 1 <<  5,  // state is saved through effGetChunk and effSetChunk
  effFlagsIsSynth            = 1 <<  8,
  effFlagsNoSoundInStop      = 1 <<  9,  // silent output for silent input
  effFlagsExtIsAsync         = 1 << 10,  // retired
  effFlagsExtHasBuffer       = 1 << 11,  // retired
  effFlagsCanDoubleReplacing = 1 << 12,
};
// clang-format on

// An effect as the host sees it. Owned by the effect; invalid after effClose.
struct AEffect {
  VstInt32 magic;  // kEffectMagic
  AEffectDispatcherProc dispatcher;
  AEffectProcessProc process;  // retired: adds to the outputs
  AEffectSetParameterProc setParameter;
  AEffectGetParameterProc getParameter;
  VstInt32 numPrograms;
  VstInt32 numParams;
  VstInt32 numInputs;
  VstInt32 numOutputs;
  VstInt32 flags;    // VstAEffectFlags
  VstIntPtr resvd1;  // for the host, like the next
  VstIntPtr resvd2;
  VstInt32 initialDelay;   // latency in samples
  VstInt32 realQualities;  // retired
  VstInt32 offQualities;   // retired
  float ioRatio;           // retired; 1.0
  void* object;            // the effect's C++ object
  void* user;              // free for the host
  VstInt32 uniqueID;       // four characters, see CCONST
  VstInt32 version;        // of the effect
  AEffectProcessProc processReplacing;
  AEffectProcessDoubleProc processDoubleReplacing;
  char future[56];  // zeros
};
