// MIT License. Programs that tests start and end by signals.
#pragma once

#include <sys/types.h>

#include "tests/hosts/command.h"

// Starts the program and doesn't wait for it.
pid_t start(const arguments& words, const std::string& out = "/dev/null", const std::string& error = "/dev/null",
            const char* program = KESREL_RENDER);

// Waits for a program. Returns its exit status, or -n after signal n.
int status_of(pid_t process);
