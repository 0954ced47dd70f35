// MIT License. The resources of the test program.
#pragma once

// On Windows they are part of the program's file.
void make_test_resources_known();
