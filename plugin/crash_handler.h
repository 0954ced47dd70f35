// MIT License. What happens when the process that runs the plug-in crashes.
#pragma once

// Makes abort, floating-point error, illegal instruction, segmentation fault and termination log "crash!" at the
// critical level and end the process through exit(), the signal's number being its exit status. The handlers belong to
// the process and replace those that were there; installing them again changes nothing.
//
// The process always ends: an exit that hasn't come to its end after five seconds is cut short by the alarm signal, and
// a second of these signals ends it at once. Throws std::bad_alloc when there is no memory for the log.
void install_crash_handler();
