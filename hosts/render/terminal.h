// MIT License. The terminal at standard error.
#pragma once

// Whether standard error is a terminal that understands the sequence to clear a line, ESC [ K.
bool is_error_terminal();
