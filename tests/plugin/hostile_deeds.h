// MIT License. What only the hostile host of one system does.
#pragma once

#include <span>
#include <string_view>

#include "tests/plugin/test_host.h"

struct hostile_deed {
  std::string_view name;
  void (*do_it)();
};

std::span<const hostile_deed> deeds_of_this_system();

// As a user does from outside.
void terminate_this_process();

// The host's: an effect of the module.
AEffect* load();
