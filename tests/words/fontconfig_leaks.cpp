// MIT License. Fontconfig keeps what it has read of its settings until the process ends, out of the leak checker's
// sight.

extern "C" const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  return "leak:libfontconfig";
}
