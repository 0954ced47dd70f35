// MIT License. For programs that use fonts, under the address sanitizer.

// Cairo and Fontconfig keep what they know about fonts until the process ends, in a form that the sanitizer can't follow.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {  // NOLINT
  return "leak:libfontconfig";
}
