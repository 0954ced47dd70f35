// MIT License. What happens when the process that runs the plug-in crashes.
#pragma once

// Makes abort, floating-point error, illegal instruction, segmentation fault and termination log "crash!" at the
// critical level and end the process, the signal's number being its exit status. The handlers belong to the process and
// replace those that were there; installing them again changes nothing.
void install_crash_handler();
