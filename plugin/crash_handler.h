// MIT License. What happens when the process that runs the plug-in crashes.
#pragma once

// Makes abort, floating-point error, illegal instruction, segmentation fault and termination log "crash!" at the
// critical level and end the process through exit() with the signal's number as its exit status. The handlers belong to
// the process and replace earlier ones; installing them again changes nothing.
//
// The process always ends: a watchdog ends an exit that takes longer than five seconds (the alarm signal, or on Windows
// a thread), and a second one of these signals ends it at once. Keeps the module loaded to the end of the process.
// Throws std::bad_alloc when there is no memory for the log.
void install_crash_handler();
