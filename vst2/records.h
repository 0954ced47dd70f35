// MIT License. Records and enumerations that travel through the calls of the VST 2.4 interface.
#pragma once

#include "vst2/types.h"

// Size of an editor's window in pixels.
struct ERect {
  VstInt16 top;
  VstInt16 left;
  VstInt16 bottom;
  VstInt16 right;
};

// clang-format off
enum VstVirtualKey : VstInt32 {
  VKEY_BACK     =  1, VKEY_TAB,     VKEY_CLEAR,   VKEY_RETURN,  VKEY_PAUSE,    //  1 to  5
  VKEY_ESCAPE   =  6, VKEY_SPACE,   VKEY_NEXT,    VKEY_END,     VKEY_HOME,     //  6 to 10
  VKEY_LEFT     = 11, VKEY_UP,      VKEY_RIGHT,   VKEY_DOWN,                   // 11 to 14
  VKEY_PAGEUP   = 15, VKEY_PAGEDOWN,                                           // 15 to 16
  VKEY_SELECT   = 17, VKEY_PRINT,   VKEY_ENTER,   VKEY_SNAPSHOT,               // 17 to 20; ENTER is the keypad's
  VKEY_INSERT   = 21, VKEY_DELETE,  VKEY_HELP,                                 // 21 to 23
  VKEY_NUMPAD0  = 24, VKEY_NUMPAD1, VKEY_NUMPAD2, VKEY_NUMPAD3, VKEY_NUMPAD4,  // 24 to 28
  VKEY_NUMPAD5  = 29, VKEY_NUMPAD6, VKEY_NUMPAD7, VKEY_NUMPAD8, VKEY_NUMPAD9,  // 29 to 33
  VKEY_MULTIPLY = 34, VKEY_ADD,     VKEY_SEPARATOR,                            // 34 to 36
  VKEY_SUBTRACT = 37, VKEY_DECIMAL, VKEY_DIVIDE,                               // 37 to 39
  VKEY_F1       = 40, VKEY_F2,      VKEY_F3,      VKEY_F4,      VKEY_F5,       // 40 to 44
  VKEY_F6       = 45, VKEY_F7,      VKEY_F8,      VKEY_F9,      VKEY_F10,      // 45 to 49
  VKEY_F11      = 50, VKEY_F12,                                                // 50 to 51
  VKEY_NUMLOCK  = 52, VKEY_SCROLL,  VKEY_SHIFT,   VKEY_CONTROL, VKEY_ALT,      // 52 to 56
  VKEY_EQUALS   = 57,
};

enum VstModifierKey : VstInt32 {
  MODIFIER_SHIFT     = 1 << 0,
  MODIFIER_ALTERNATE = 1 << 1,
  MODIFIER_COMMAND   = 1 << 2,  // Control on a Mac
  MODIFIER_CONTROL   = 1 << 3,  // Ctrl on a PC, the Apple key on a Mac
};
// clang-format on

struct VstKeyCode {
  VstInt32 character;      // 0 where the key has none
  unsigned char virt;      // VstVirtualKey, 0 for other keys
  unsigned char modifier;  // VstModifierKey mask
};

enum VstEventTypes : VstInt32 { kVstMidiType = 1, kVstSysExType = 6 };

// Common start of all events; the type says which record it is.
struct VstEvent {
  VstInt32 type;
  VstInt32 byteSize;     // of the record without these first two fields; hosts differ, so don't rely on it
  VstInt32 deltaFrames;  // samples from the start of the block
  VstInt32 flags;
  char data[16];
};

// A list of events; the array actually has `numEvents` entries.
struct VstEvents {
  VstInt32 numEvents;
  VstIntPtr reserved;
  VstEvent* events[2];
};

enum VstMidiEventFlags : VstInt32 { kVstMidiEventIsRealtime = 1 << 0 };

struct VstMidiEvent {
  VstInt32 type;  // kVstMidiType
  VstInt32 byteSize;
  VstInt32 deltaFrames;
  VstInt32 flags;       // VstMidiEventFlags
  VstInt32 noteLength;  // samples, 0 unknown
  VstInt32 noteOffset;  // samples already played
  char midiData[4];     // up to three bytes of the message
  char detune;          // cents
  char noteOffVelocity;
  char reserved1;
  char reserved2;
};

struct VstMidiSysexEvent {
  VstInt32 type;  // kVstSysExType
  VstInt32 byteSize;
  VstInt32 deltaFrames;
  VstInt32 flags;
  VstInt32 dumpBytes;
  VstIntPtr resvd1;
  char* sysexDump;
  VstIntPtr resvd2;
};

// The host's transport. `flags` says which fields are valid.
struct VstTimeInfo {
  double samplePos;
  double sampleRate;   // Hz
  double nanoSeconds;  // system time
  double ppqPos;       // quarter notes
  double tempo;        // beats per minute
  double barStartPos;  // quarter notes, as the next two
  double cycleStartPos;
  double cycleEndPos;
  VstInt32 timeSigNumerator;
  VstInt32 timeSigDenominator;
  VstInt32 smpteOffset;
  VstInt32 smpteFrameRate;
  VstInt32 samplesToNextClock;
  VstInt32 flags;
};

// Speaker layouts, named by their numbers of front, rear and low-frequency speakers.
// clang-format off
enum VstSpeakerArrangementType : VstInt32 {
  kSpeakerArrUserDefined    = -2,
  kSpeakerArrEmpty          = -1,
  kSpeakerArrMono           =  0,
  kSpeakerArrStereo         =  1,
  kSpeakerArrStereoSurround =  2,
  kSpeakerArrStereoCenter   =  3,
  kSpeakerArrStereoSide     =  4,
  kSpeakerArrStereoCLfe     =  5,
  kSpeakerArr30Cine         =  6,  kSpeakerArr30Music =  7,
  kSpeakerArr31Cine         =  8,  kSpeakerArr31Music =  9,
  kSpeakerArr40Cine         = 10,  kSpeakerArr40Music = 11,
  kSpeakerArr41Cine         = 12,  kSpeakerArr41Music = 13,
  kSpeakerArr50             = 14,
  kSpeakerArr51             = 15,
  kSpeakerArr60Cine         = 16,  kSpeakerArr60Music = 17,
  kSpeakerArr61Cine         = 18,  kSpeakerArr61Music = 19,
  kSpeakerArr70Cine         = 20,  kSpeakerArr70Music = 21,
  kSpeakerArr71Cine         = 22,  kSpeakerArr71Music = 23,
  kSpeakerArr80Cine         = 24,  kSpeakerArr80Music = 25,
  kSpeakerArr81Cine         = 26,  kSpeakerArr81Music = 27,
  kSpeakerArr102            = 28,
};

// Single speakers; -32 to -1 are defined by the host.
enum VstSpeakerType : VstInt32 {
  kSpeakerM    =  0,  // mono
  kSpeakerL    =  1,  kSpeakerR   =  2,  kSpeakerC   =  3,  // front
  kSpeakerLfe  =  4,  // low-frequency effects
  kSpeakerLs   =  5,  kSpeakerRs  =  6,  // surround
  kSpeakerLc   =  7,  kSpeakerRc  =  8,  // between the front ones and the centre
  kSpeakerS    =  9,  kSpeakerCs  =  9,  // rear centre
  kSpeakerSl   = 10,  kSpeakerSr  = 11,  // side
  kSpeakerTm   = 12,  // top, above the listener
  kSpeakerTfl  = 13,  kSpeakerTfc = 14,  kSpeakerTfr = 15,  // top front
  kSpeakerTrl  = 16,  kSpeakerTrc = 17,  kSpeakerTrr = 18,  // top rear
  kSpeakerLfe2 = 19,
  kSpeakerUndefined = 0x7fffffff,
};
// clang-format on

// Place of one speaker. Low-frequency speakers have azimuth and elevation 10.0.
struct VstSpeakerProperties {
  float azimuth;    // radians
  float elevation;  // radians
  float radius;     // metres
  float reserved;
  char name[kVstMaxNameLen];
  VstInt32 type;  // VstSpeakerType
  char future[28];
};

// The speakers of an input or output. `speakers` actually has `numChannels` entries: a host may have allocated fewer
// than eight, or more.
struct VstSpeakerArrangement {
  VstInt32 type;  // VstSpeakerArrangementType
  VstInt32 numChannels;
  VstSpeakerProperties speakers[8];
};

enum VstPinPropertiesFlags : VstInt32 {
  kVstPinIsActive = 1 << 0,
  kVstPinIsStereo = 1 << 1,    // the first of a pair
  kVstPinUseSpeaker = 1 << 2,  // arrangementType is valid
};

struct VstPinProperties {
  char label[kVstMaxLabelLen];
  VstInt32 flags;
  VstInt32 arrangementType;  // VstSpeakerArrangementType
  char shortLabel[kVstMaxShortLabelLen];
  char future[48];
};

enum VstParameterFlags : VstInt32 {
  kVstParameterIsSwitch = 1 << 0,
  kVstParameterUsesIntegerMinMax = 1 << 1,
  kVstParameterUsesFloatStep = 1 << 2,
  kVstParameterUsesIntStep = 1 << 3,
  kVstParameterSupportsDisplayIndex = 1 << 4,
  kVstParameterSupportsDisplayCategory = 1 << 5,
  kVstParameterCanRamp = 1 << 6,
};

struct VstParameterProperties {
  float stepFloat;
  float smallStepFloat;
  float largeStepFloat;
  char label[kVstMaxLabelLen];
  VstInt32 flags;
  VstInt32 minInteger;
  VstInt32 maxInteger;
  VstInt32 stepInteger;
  VstInt32 largeStepInteger;
  char shortLabel[kVstMaxShortLabelLen];
  VstInt16 displayIndex;
  VstInt16 category;
  VstInt16 numParametersInCategory;
  VstInt16 reserved;
  char categoryLabel[kVstMaxCategLabelLen];
  char future[16];
};

// Describes a bank or program that is about to be loaded.
struct VstPatchChunkInfo {
  VstInt32 version;
  VstInt32 pluginUniqueID;
  VstInt32 pluginVersion;
  VstInt32 numElements;  // programs in a bank, parameters in a program
  char future[48];
};

enum VstPlugCategory : VstInt32 {
  kPlugCategUnknown = 0,
  kPlugCategEffect = 1,
  kPlugCategSynth = 2,
  kPlugCategAnalysis = 3,
  kPlugCategMastering = 4,
  kPlugCategSpacializer = 5,
  kPlugCategRoomFx = 6,
  kPlugSurroundFx = 7,
  kPlugCategRestoration = 8,
  kPlugCategOfflineProcess = 9,
  kPlugCategShell = 10,
  kPlugCategGenerator = 11,
  kPlugCategMaxCount = 12,
};

// What effSetProcessPrecision asks for.
enum VstProcessPrecision : VstInt32 { kVstProcessPrecision32 = 0, kVstProcessPrecision64 = 1 };

enum VstProcessLevels : VstInt32 {
  kVstProcessLevelUnknown = 0,
  kVstProcessLevelUser = 1,      // the user-interface thread
  kVstProcessLevelRealtime = 2,  // the audio thread
  kVstProcessLevelPrefetch = 3,
  kVstProcessLevelOffline = 4,
};

// Records that the classes only pass on as pointers.
struct MidiKeyName;
struct MidiProgramCategory;
struct MidiProgramName;
struct VstAudioFile;
struct VstFileSelect;
struct VstOfflineTask;
struct VstVariableIo;
struct VstWindow;
enum VstOfflineOption : VstInt32;
