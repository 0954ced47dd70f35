// MIT License. Numbers of the calls between host and effect in the VST 2.4 interface.
#pragma once

#include "vst2/types.h"

// Calls of the host to the effect's dispatcher. Arguments are index, value, ptr and opt; those not named are 0, and so
// is a result that isn't named. Retired calls keep their numbers and return 0.
// clang-format off
enum AEffectOpcodes : VstInt32 {
  effOpen                      =  0,  //
  effClose                     =  1,  // the effect is gone afterwards
  effSetProgram                =  2,  // value: program
  effGetProgram                =  3,  // result: program
  effSetProgramName            =  4,  // ptr: char*
  effGetProgramName            =  5,  // ptr: char[kVstMaxProgNameLen + 1]
  effGetParamLabel             =  6,  // index: parameter; ptr: char[kVstMaxParamStrLen + 1]
  effGetParamDisplay           =  7,  // likewise
  effGetParamName              =  8,  // likewise
  effGetVu                     =  9,  // retired
  effSetSampleRate             = 10,  // opt: Hz
  effSetBlockSize              = 11,  // value: samples
  effMainsChanged              = 12,  // value: 0 suspend, else resume
  effEditGetRect               = 13,  // ptr: ERect**; result: bool
  effEditOpen                  = 14,  // ptr: parent window; result: bool
  effEditClose                 = 15,  //
  effEditDraw                  = 16,  // retired
  effEditMouse                 = 17,  // retired
  effEditKey                   = 18,  // retired
  effEditIdle                  = 19,  //
  effEditTop                   = 20,  // retired
  effEditSleep                 = 21,  // retired
  effIdentify                  = 22,  // retired; result: 'NvEf'
  effGetChunk                  = 23,  // index: 0 bank, else program; ptr: void**; result: bytes
  effSetChunk                  = 24,  // index: 0 bank, else program; value: bytes; ptr: data
  effProcessEvents             = 25,  // ptr: VstEvents*
  effCanBeAutomated            = 26,  // index: parameter; result: bool
  effString2Parameter          = 27,  // index: parameter; ptr: char*, null asks whether it can; result: bool
  effGetNumProgramCategories   = 28,  // retired
  effGetProgramNameIndexed     = 29,  // index: program; value: category; ptr: char[kVstMaxProgNameLen + 1]; result: bool
  effCopyProgram               = 30,  // retired
  effConnectInput              = 31,  // retired
  effConnectOutput             = 32,  // retired
  effGetInputProperties        = 33,  // index: input; ptr: VstPinProperties*; result: bool
  effGetOutputProperties       = 34,  // index: output; ptr: VstPinProperties*; result: bool
  effGetPlugCategory           = 35,  // result: VstPlugCategory
  effGetCurrentPosition        = 36,  // retired
  effGetDestinationBuffer      = 37,  // retired
  effOfflineNotify             = 38,  // index: start; value: count; ptr: VstAudioFile[]; result: bool
  effOfflinePrepare            = 39,  // value: count; ptr: VstOfflineTask[]; result: bool
  effOfflineRun                = 40,  // value: count; ptr: VstOfflineTask[]; result: bool
  effProcessVarIo              = 41,  // ptr: VstVariableIo*; result: bool
  effSetSpeakerArrangement     = 42,  // value: input's VstSpeakerArrangement*; ptr: output's; result: bool
  effSetBlockSizeAndSampleRate = 43,  // retired
  effSetBypass                 = 44,  // value: 0 or 1; result: bool
  effGetEffectName             = 45,  // ptr: char[kVstMaxEffectNameLen + 1]; result: bool
  effGetErrorText              = 46,  // retired
  effGetVendorString           = 47,  // ptr: char[kVstMaxVendorStrLen + 1]; result: bool
  effGetProductString          = 48,  // ptr: char[kVstMaxProductStrLen + 1]; result: bool
  effGetVendorVersion          = 49,  // result: version
  effVendorSpecific            = 50,  // all four and the result are free
  effCanDo                     = 51,  // ptr: const char*; result: 1 yes, -1 no, 0 unknown
  effGetTailSize               = 52,  // result: 0 unknown, 1 no tail, else samples
  effIdle                      = 53,  // retired
  effGetIcon                   = 54,  // retired
  effSetViewPosition           = 55,  // retired
  effGetParameterProperties    = 56,  // index: parameter; ptr: VstParameterProperties*; result: bool
  effKeysRequired              = 57,  // retired
  effGetVstVersion             = 58,  // result: 2400
  effEditKeyDown               = 59,  // index: character; value: VstVirtualKey; opt: VstModifierKey mask; result: bool
  effEditKeyUp                 = 60,  // likewise
  effSetEditKnobMode           = 61,  // value: 0 circular, 1 relative circular, 2 linear; result: bool
  effGetMidiProgramName        = 62,  // index: channel; ptr: MidiProgramName*; result: number of programs
  effGetCurrentMidiProgram     = 63,  // index: channel; ptr: MidiProgramName*; result: program, -1 none
  effGetMidiProgramCategory    = 64,  // index: channel; ptr: MidiProgramCategory*; result: number of categories
  effHasMidiProgramsChanged    = 65,  // index: channel; result: bool
  effGetMidiKeyName            = 66,  // index: channel; ptr: MidiKeyName*; result: bool
  effBeginSetProgram           = 67,  // result: bool
  effEndSetProgram             = 68,  // result: bool
  effGetSpeakerArrangement     = 69,  // value: VstSpeakerArrangement** of the input; ptr: of the output; result: bool
  effShellGetNextPlugin        = 70,  // ptr: char[kVstMaxProductStrLen + 1]; result: id
  effStartProcess              = 71,  //
  effStopProcess               = 72,  //
  effSetTotalSampleToProcess   = 73,  // value: samples; result: samples
  effSetPanLaw                 = 74,  // value: law; opt: gain; result: bool
  effBeginLoadBank             = 75,  // ptr: VstPatchChunkInfo*; result: -1 refused, 1 accepted, 0 not supported
  effBeginLoadProgram          = 76,  // likewise
  effSetProcessPrecision       = 77,  // value: 0 32-bit, 1 64-bit; result: bool
  effGetNumMidiInputChannels   = 78,  // result: channels
  effGetNumMidiOutputChannels  = 79,  // result: channels
};

// Calls of the effect to the host. There is no number 5.
enum AudioMasterOpcodes : VstInt32 {
  audioMasterAutomate                     =  0,  // index: parameter; opt: value
  audioMasterVersion                      =  1,  // result: 2400 and the like; the only call allowed with a null effect
  audioMasterCurrentId                    =  2,  // result: id of the shell's child to make
  audioMasterIdle                         =  3,  //
  audioMasterPinConnected                 =  4,  // retired
  audioMasterWantMidi                     =  6,  // retired; value: filter
  audioMasterGetTime                      =  7,  // value: filter; result: VstTimeInfo*
  audioMasterProcessEvents                =  8,  // ptr: VstEvents*
  audioMasterSetTime                      =  9,  // retired
  audioMasterTempoAt                      = 10,  // retired
  audioMasterGetNumAutomatableParameters  = 11,  // retired
  audioMasterGetParameterQuantization     = 12,  // retired
  audioMasterIOChanged                    = 13,  // result: bool
  audioMasterNeedIdle                     = 14,  // retired
  audioMasterSizeWindow                   = 15,  // index: width; value: height; result: bool
  audioMasterGetSampleRate                = 16,  // result: Hz
  audioMasterGetBlockSize                 = 17,  // result: samples
  audioMasterGetInputLatency              = 18,  // result: samples
  audioMasterGetOutputLatency             = 19,  // result: samples
  audioMasterGetPreviousPlug              = 20,  // retired
  audioMasterGetNextPlug                  = 21,  // retired
  audioMasterWillReplaceOrAccumulate      = 22,  // retired
  audioMasterGetCurrentProcessLevel       = 23,  // result: VstProcessLevels
  audioMasterGetAutomationState           = 24,  // result: 0 unsupported, 1 off, 2 read, 3 write, 4 both
  audioMasterOfflineStart                 = 25,  // offline processing, as the four below
  audioMasterOfflineRead                  = 26,  //
  audioMasterOfflineWrite                 = 27,  //
  audioMasterOfflineGetCurrentPass        = 28,  //
  audioMasterOfflineGetCurrentMetaPass    = 29,  //
  audioMasterSetOutputSampleRate          = 30,  // retired
  audioMasterGetOutputSpeakerArrangement  = 31,  // retired
  audioMasterGetVendorString              = 32,  // ptr: char[kVstMaxVendorStrLen + 1]; result: bool
  audioMasterGetProductString             = 33,  // ptr: char[kVstMaxProductStrLen + 1]; result: bool
  audioMasterGetVendorVersion             = 34,  // result: version
  audioMasterVendorSpecific               = 35,  // all four and the result are free
  audioMasterSetIcon                      = 36,  // retired
  audioMasterCanDo                        = 37,  // ptr: const char*; result: 1 yes, -1 no, 0 unknown
  audioMasterGetLanguage                  = 38,  // result: 1 English, 2 German, 3 French, 4 Italian, 5 Spanish, 6 Japanese
  audioMasterOpenWindow                   = 39,  // retired
  audioMasterCloseWindow                  = 40,  // retired
  audioMasterGetDirectory                 = 41,  // result: char*
  audioMasterUpdateDisplay                = 42,  // result: bool
  audioMasterBeginEdit                    = 43,  // index: parameter; result: bool
  audioMasterEndEdit                      = 44,  // index: parameter; result: bool
  audioMasterOpenFileSelector             = 45,  // ptr: VstFileSelect*; result: bool
  audioMasterCloseFileSelector            = 46,  // ptr: VstFileSelect*; result: bool
  audioMasterEditFile                     = 47,  // retired
  audioMasterGetChunkFile                 = 48,  // retired
  audioMasterGetInputSpeakerArrangement   = 49,  // retired
};
// clang-format on
