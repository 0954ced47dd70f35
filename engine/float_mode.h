// MIT License. The processor's handling of denormal numbers.
#pragma once

// Makes the calling thread flush denormal results to zero and read denormal operands as zero, for good. Every feedback
// path of the engine fades into denormals, which cost some hundred cycles each.
void float_mode_flush_denormals();
