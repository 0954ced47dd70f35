// MIT License. Basic types, limits and text helpers of the VST 2.4 interface.
#pragma once

#include <cstddef>
#include <cstdint>

// View libraries leave out their own key records when this name is defined.
#define __aeffectx__  // NOLINT(bugprone-reserved-identifier)

// Versions of the interface that these records and classes cover.
#define VST_2_1_EXTENSIONS 1
#define VST_2_2_EXTENSIONS 1
#define VST_2_3_EXTENSIONS 1
#define VST_2_4_EXTENSIONS 1

// Calling convention of every function pointer: C's, the only one on 64-bit targets.
#define VSTCALLBACK
static_assert(sizeof(void*) == 8, "32-bit Windows would need an explicit calling convention and other record sizes");

using VstInt16 = int16_t;
using VstInt32 = int32_t;
using VstInt64 = int64_t;
using VstIntPtr = intptr_t;

// Four characters as one number, the first in the highest byte.
constexpr VstInt32 CCONST(char a, char b, char c, char d) {
  constexpr auto number = [](char character) { return uint32_t{static_cast<unsigned char>(character)}; };
  return static_cast<VstInt32>(number(a) << 24 | number(b) << 16 | number(c) << 8 | number(d));
}

constexpr VstInt32 kVstVersion = 2400;

// Lengths of texts in characters, without the terminating zero: a buffer needs one byte more.
// clang-format off
constexpr VstInt32 kVstMaxProgNameLen    =  24;  // program name
constexpr VstInt32 kVstMaxParamStrLen    =   8;  // parameter name, label and display; many effects exceed it
constexpr VstInt32 kVstMaxVendorStrLen   =  64;
constexpr VstInt32 kVstMaxProductStrLen  =  64;
constexpr VstInt32 kVstMaxEffectNameLen  =  32;
constexpr VstInt32 kVstMaxNameLen        =  64;  // names inside records; this includes the zero
constexpr VstInt32 kVstMaxLabelLen       =  64;  // likewise
constexpr VstInt32 kVstMaxShortLabelLen  =   8;  // likewise
constexpr VstInt32 kVstMaxCategLabelLen  =  24;  // likewise
constexpr VstInt32 kVstMaxFileNameLen    = 100;
// clang-format on

// Copies at most `maxLen` characters of `src` and fills the rest of dst[0..maxLen] with zeros. The text is always
// terminated.
//   shapes    dst[maxLen + 1], not overlapping `src`
//   returns   `dst`
inline char* vst_strncpy(char* dst, const char* src, size_t maxLen) {
  size_t length = 0;
  for (; length < maxLen && src[length] != 0; ++length) dst[length] = src[length];
  for (; length <= maxLen; ++length) dst[length] = 0;
  return dst;
}

// Appends `src` to the text in `dst`, which holds `maxLen` characters at most afterwards.
//   shapes    dst[maxLen + 1], not overlapping `src`
//   returns   `dst`
inline char* vst_strncat(char* dst, const char* src, size_t maxLen) {
  size_t length = 0;
  while (length < maxLen && dst[length] != 0) ++length;
  vst_strncpy(dst + length, src, maxLen - length);
  return dst;
}
