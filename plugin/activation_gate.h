// MIT License. Decides whether the sounds of a category may be used.
#pragma once

#include <array>
#include <cstdint>

// What the gate hands to the engine with a new sound: a zero-terminated text of at most 32 characters.
using activation_token = std::array<uint8_t, 33>;

// Asked on the user-interface thread when a sound is chosen, and on the audio thread when it is taken; the calls may
// overlap. Implementations therefore have no state that a call changes, and answer quickly.
//
// The destructor is trivial and protected, so that a static gate can serve effects that a host makes while the process
// exits.
class activation_gate {
 public:
  // Whether the category may be used.
  virtual bool passes(int32_t category_id) const = 0;

  // Writes the token of a category that has passed. False without one: the engine then keeps its earlier sound.
  //   token   zeroed by the caller
  virtual bool supply_token(int32_t category_id, activation_token* token) const = 0;

 protected:
  ~activation_gate() = default;
};

// Passes the three factory categories.
class built_in_activation_gate : public activation_gate {
 public:
  bool passes(int32_t category_id) const override;
  bool supply_token(int32_t category_id, activation_token* token) const override;
};
