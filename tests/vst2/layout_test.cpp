// MIT License. Compile-time tests: our records and numbers against literal offsets and an independent header.
#include <cstddef>

#include "vst2/aeffect.h"

// The header names a calling convention that only Windows compilers know.
#ifndef __cdecl
#define __cdecl  // NOLINT(bugprone-reserved-identifier)
#endif
#include <xaymar-vst2/vst.h>

// Not compared, as the header is known to be wrong or vague there: the number of effGetParameterProperties, the types
// of the host callback's last argument and of effEditGetRect's pointer, and the records of parameter properties and
// speaker arrangements.

namespace {

// clang-format off
static_assert(sizeof(AEffect) == 192 && sizeof(AEffect) == sizeof(vst_effect));
static_assert(kEffectMagic == 0x56737450 && kEffectMagic == VST_MAGICNUMBER);
static_assert(kVstVersion == 2400 && kVstVersion == VST_VERSION_2_4_0_0);

#define SAME_PLACE(offset, ours, theirs) \
  static_assert(offsetof(AEffect, ours) == (offset) && offsetof(vst_effect, theirs) == (offset)); \
  static_assert(sizeof(AEffect::ours) == sizeof(vst_effect::theirs))
SAME_PLACE(  0, magic,                  magic_number);
SAME_PLACE(  8, dispatcher,             control);
SAME_PLACE( 32, getParameter,           get_parameter);
SAME_PLACE( 40, numPrograms,            num_programs);
SAME_PLACE( 56, flags,                  flags);
SAME_PLACE( 64, resvd1,                 _unknown_ptr_00[0]);
SAME_PLACE( 80, initialDelay,           delay);
SAME_PLACE( 92, ioRatio,                _unknown_float_00);
SAME_PLACE( 96, object,                 effect_internal);
SAME_PLACE(112, uniqueID,               unique_id);
SAME_PLACE(120, processReplacing,       process_float);
SAME_PLACE(128, processDoubleReplacing, process_double);
SAME_PLACE(136, future,                 _unknown);
#undef SAME_PLACE

#define PLACE(record, field, offset) static_assert(offsetof(record, field) == (offset))
PLACE(ERect, top,                               offsetof(vst_rect, top));
PLACE(ERect, bottom,                            offsetof(vst_rect, bottom));
PLACE(VstSpeakerProperties, reserved,           offsetof(vst_speaker_properties, _unknown_0C));
PLACE(VstSpeakerProperties, name,               offsetof(vst_speaker_properties, name));
PLACE(VstSpeakerProperties, type,               80);
PLACE(VstSpeakerArrangement, speakers,          8);
PLACE(VstKeyCode, virt,                         4);
PLACE(VstEvent, data,                           16);
PLACE(VstEvents, events,                        16);
PLACE(VstMidiEvent, midiData,                   24);
PLACE(VstMidiEvent, noteOffVelocity,            29);
PLACE(VstMidiSysexEvent, sysexDump,             32);
PLACE(VstTimeInfo, tempo,                       32);
PLACE(VstTimeInfo, flags,                       84);
PLACE(VstPinProperties, shortLabel,             72);
PLACE(VstParameterProperties, largeStepInteger, 92);
PLACE(VstParameterProperties, categoryLabel,    112);
PLACE(VstPatchChunkInfo, numElements,           12);
#undef PLACE
static_assert(sizeof(ERect) == 8 && sizeof(vst_rect) == 8 && sizeof(VstKeyCode) == 8 && sizeof(VstEvent) == 32);
static_assert(sizeof(VstSpeakerProperties) == 112 && sizeof(vst_speaker_properties) == 112);
static_assert(sizeof(VstSpeakerArrangement) == 904 && sizeof(VstEvents) == 32 && sizeof(VstMidiEvent) == 32);
static_assert(sizeof(VstMidiSysexEvent) == 48 && sizeof(VstTimeInfo) == 88 && sizeof(VstPinProperties) == 128);
static_assert(sizeof(VstParameterProperties) == 152 && sizeof(VstPatchChunkInfo) == 64);

#define SAME_VALUE(ours, theirs) static_assert(int{ours} == static_cast<int>(theirs))
SAME_VALUE(kSpeakerArr51,          VST_ARRANGEMENT_TYPE_5_1);
SAME_VALUE(kSpeakerLfe,            VST_SPEAKER_TYPE_LFE);
SAME_VALUE(kPlugCategShell,        VST_CATEGORY_CONTAINER);
SAME_VALUE(kPlugCategMaxCount,     VST_CATEGORY_MAX);
SAME_VALUE(kVstMaxParamStrLen,     VST_BUFFER_8);
SAME_VALUE(kVstMaxEffectNameLen,   VST_EFFECT_BUFFER_SIZE);
SAME_VALUE(kVstMaxVendorStrLen,    VST_VENDOR_BUFFER_SIZE);
SAME_VALUE(kVstMaxProductStrLen,   VST_PRODUCT_BUFFER_SIZE);
#undef SAME_VALUE

// Ends of the runs in which keys are counted on from the first of a line.
static_assert(VKEY_RETURN == 4 && VKEY_HOME == 10 && VKEY_DOWN == 14 && VKEY_PAGEDOWN == 16 && VKEY_ENTER == 19);
static_assert(VKEY_SNAPSHOT == 20 && VKEY_HELP == 23 && VKEY_NUMPAD9 == 33 && VKEY_SEPARATOR == 36);
static_assert(VKEY_DIVIDE == 39 && VKEY_F12 == 51 && VKEY_ALT == 56 && VKEY_EQUALS == 57);
// clang-format on

}  // namespace
