// MIT License. A display of the tests' own, which needs no screen.
#pragma once

// Starts Xvfb when first called, sets DISPLAY for this process, and ends the server with it. It has a screen of 24 bits
// with 1280 x 1024 pixels and a second one of 16 bits with 640 x 480. Throws std::runtime_error when it doesn't start.
void start_x_server();
