// MIT License. What the DISTRHO Plugin Framework has to know when it is compiled. It looks for this name.
#pragma once

#define DISTRHO_PLUGIN_NAME "Kesrel Vocoder 4 ME"
#define DISTRHO_PLUGIN_URI "https://www.quorvant.example/kvme"
#define DISTRHO_PLUGIN_CLAP_ID "example.quorvant.kesrel-vocoder-4-me"

#define DISTRHO_PLUGIN_NUM_INPUTS 2
#define DISTRHO_PLUGIN_NUM_OUTPUTS 2
#define DISTRHO_PLUGIN_IS_SYNTH 0
#define DISTRHO_PLUGIN_IS_RT_SAFE 1
#define DISTRHO_PLUGIN_WANT_MIDI_INPUT 1
#define DISTRHO_PLUGIN_WANT_LATENCY 1
#define DISTRHO_PLUGIN_WANT_PROGRAMS 1
#define DISTRHO_PLUGIN_WANT_STATE 1
#define DISTRHO_PLUGIN_WANT_FULL_STATE 1

// The window is our own, inside the host's; it talks to the door itself.
#define DISTRHO_PLUGIN_HAS_UI 1
#define DISTRHO_PLUGIN_HAS_EMBED_UI 1
#define DISTRHO_PLUGIN_HAS_EXTERNAL_UI 1
#define DISTRHO_PLUGIN_WANT_DIRECT_ACCESS 1
#define DISTRHO_UI_USE_NANOVG 0
#define DISTRHO_UI_USER_RESIZABLE 0
#define DISTRHO_UI_URI DISTRHO_PLUGIN_URI "#window"

// Where each format's hosts list it.
#define DISTRHO_PLUGIN_LV2_CATEGORY "lv2:SpectralPlugin"
#define DISTRHO_PLUGIN_LV2_STATE_PREFIX DISTRHO_PLUGIN_URI "#"
#define DISTRHO_PLUGIN_VST3_CATEGORIES "Fx|Pitch Shift"
#define DISTRHO_PLUGIN_CLAP_FEATURES "audio-effect", "pitch-shifter", "stereo"
