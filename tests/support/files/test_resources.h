// MIT License. The resources of the test program.
#pragma once

// Registers them on POSIX; on Windows the linker has added them to the program.
void make_test_resources_known();
