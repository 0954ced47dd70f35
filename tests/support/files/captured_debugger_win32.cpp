// MIT License. Windows sends debugging text as an exception, which a vectored handler sees first.
#include "tests/support/files/captured_debugger.h"

#include <windows.h>

#include <mutex>

namespace {

std::mutex lock;
std::string captured;
void* handler = nullptr;

LONG CALLBACK collect(EXCEPTION_POINTERS* raised) {
  const EXCEPTION_RECORD& record = *raised->ExceptionRecord;
  if (record.ExceptionCode == DBG_PRINTEXCEPTION_C) {
    const std::lock_guard guard(lock);
    captured += reinterpret_cast<const char*>(record.ExceptionInformation[1]);
  }
  return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

void capture_debugger() {
  captured.clear();
  handler = AddVectoredExceptionHandler(1, collect);
}

std::string captured_debugger_text() {
  RemoveVectoredExceptionHandler(handler);
  return captured;
}
