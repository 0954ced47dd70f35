// MIT License. Fontconfig keeps what it has read of its settings until the process ends, out of the leak checker's
// sight.

// Visible, for the sanitizer to find it.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions() {
  return "leak:libfontconfig";
}
