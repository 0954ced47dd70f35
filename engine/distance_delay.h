// MIT License. A delay line whose length is given as the distance to a sound source.
#pragma once

#include <cstdint>
#include <memory>

// A ring of `length` + 1 samples with a delay that glides. While not `ready` it passes its samples unchanged.
struct distance_delay {
  uint8_t ready = 0;             // storage exists
  float speed = 343.0F;          // of sound, m/s
  float sample_rate = 44100.0F;  // Hz
  float max_distance = 10.0F;    // m
  float distance = 1.0F;         // m, as last set
  float target_delay = 0.0F;     // samples
  float delay = 0.0F;            // samples, on its way to the target
  float* start = nullptr;        // of the ring
  float* write = nullptr;        // moves backward through it
  std::unique_ptr<float[]> storage;
  int32_t length = 0;  // longest delay, samples
};

// Makes a delay of 10 m at 44100 Hz, which is 1286 samples, and prepares it. Any earlier contents of `delay` are
// released.
//   heap      its storage; not `ready` afterwards when memory is exhausted
void distance_delay_create(distance_delay* delay);

// The same with a rate in Hz and a distance in metres. Not `ready` when these make less than one sample or more than
// 2^24.
void distance_delay_create(float sample_rate, int32_t max_distance, distance_delay* delay);

// Allocates and clears the storage and sets the shortest distance. Does nothing to a delay that is `ready`.
void distance_delay_prepare(distance_delay* delay);

// Clears the ring. Position and glide stay.
void distance_delay_clear(distance_delay* delay);

// Frees the storage; the delay isn't `ready` until it is prepared again.
void distance_delay_release(distance_delay* delay);

// Moves the source.
//   position  0..1 of the largest distance; nearer than 1 m and NaN are 1 m, beyond 1 is 1
//   snap      true: the delay jumps there; false: it glides, with a time constant of 3000 samples
void distance_delay_set(float position, bool snap, distance_delay* delay);

// Level of the source by its distance, 1 at 1 m. The delay doesn't apply it: only the time moves.
//   formula   1 / sqrt(distance), by way of decibels
float distance_delay_gain(const distance_delay& delay);

// Delays `count` samples.
//   shapes    in[count], out[count]; may be the same array. Nothing happens when not `ready` or `count` is below 1
//   audio     no heap
void distance_delay_process(const float* in, float* out, int32_t count, distance_delay* delay);

// Moves two sources with every sample and writes the delays of both in samples, for distance_delay_run: as `count`
// times `distance_delay_set` without snap. A glide waits for itself at every step, so the two go side by side.
//   positions  [count], rounded to single precision
//   samples    [count]; of no use for a delay that isn't ready, which doesn't move
void distance_delay_glide(const double* left_positions, const double* right_positions, int32_t count,
                          float* left_samples, float* right_samples, distance_delay* left, distance_delay* right);

// Delays `count` signal samples by `samples` each, in place. Nothing happens when not `ready`.
//   samples   [count], what distance_delay_glide wrote for the same delay
//   audio     no heap
void distance_delay_run(const float* samples, int32_t count, float* signal, distance_delay* delay);
