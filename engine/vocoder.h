// MIT License. The vocoder engine: sound values and audio blocks in, stereo out. This is its public interface.
#pragma once

#include <cstdint>

#include "engine/sound_values.h"

// One engine for one host sample rate. Every operation but `vocoder_destroy` takes the instance last and accepts null,
// for which it does nothing and returns 1, null or nothing. None throws: an operation that runs out of memory is
// refused, and the engine continues with what it had.
//
// Threads: the process and note operations of one instance belong to one thread, the audio thread. Creation and
// destruction must not overlap them. Two instances share nothing that is written.
struct vocoder_instance;

// Makes an engine for blocks at `sample_rate` Hz; 0 means 44100. Null when memory is exhausted, and for a rate that is
// negative or not finite. An engine takes 1.1 MB. The first of a process also makes the tables that all of them share,
// 1.1 MB as well, which takes a millisecond or two; threads that make one at the same time wait for them.
vocoder_instance* vocoder_create(float sample_rate) noexcept;

// Destroys an engine; null is accepted.
void vocoder_destroy(vocoder_instance* instance) noexcept;

// Runs one block with the sound `sound_number`.
//   curve         carried along and ignored: there is one target curve
//   chorus_on     0 off, 1 on
//   reverb_on     0 forces the sound's reverb level to 0, any other value leaves it
//   sound_key     a non-null key lets the engine take a new sound; with null the previous sound continues, whatever
//                 `sound_number` is. A number without a text and a list of more than 512 values leave the earlier sound
//                 in place
//   frames        samples per channel, any length from 0
//   inputs        four arrays of `frames` samples, of which [0] is the first (voice) and [2] the second input; [1] and
//                 [3] are not heard. An entry may be null and is then silence; `inputs` may be null
//   outputs       left and right, `frames` samples each; an entry or `outputs` may be null and isn't written then.
//                 Outputs may be the same arrays as inputs
//   returns       0 when the block ran; 1 when there is no instance, no sound or no memory for the block, and the
//                 outputs stay as they were
//   latency       1024 samples at 44100 Hz, for the vocoded and the dry signals alike
//   audio         no heap in an ordinary block; a block length beyond any before grows the block buffers. The calling
//                 thread is left in flush-to-zero and denormals-are-zero mode
int32_t vocoder_process_sound(int32_t curve, int32_t chorus_on, int32_t reverb_on, int32_t sound_number,
                              const uint8_t* sound_key, int32_t frames, const float* const* inputs,
                              float* const* outputs, vocoder_instance* instance) noexcept;

// Runs one block with the values of a sound, whatever sound `vocoder_process_sound` has taken. All else as there.
int32_t vocoder_process(const sound_values& values, int32_t chorus_on, int32_t reverb_on, int32_t frames,
                        const float* const* inputs, float* const* outputs, vocoder_instance* instance) noexcept;

// The same with the values one by one, in the order of `sound_values`.
// clang-format off
int32_t vocoder_process_values(
    int32_t curve, int32_t chorus_on, int32_t reverb_on,
    float wet_gain, float dry_carrier_gain, float dry_modulator_gain,                                   // 0
    float env_mix, float env_attack, float env_release, float env_average,                              // 3
    float mode, float sibilance_on, float noise_on, float freeze_on, float swap,                        // 7
    float reverb_level, float reverb_size,                                                              // 12
    float cutoff, float resonance, float drive,                                                         // 14
    float internal_carrier, float tuning, float octave, float unused, float sampled,                    // 17
    float wave1, float wave2, float sync, float ring,                                                   // 22
    float coarse1, float fine1, float pitch_source1, float pitch_depth1, float lfo_rate1,               // 26
    float coarse2, float fine2, float pitch_source2, float pitch_depth2, float lfo_rate2,               // 31
    float output_gain_db,                                                                               // 36
    int32_t frames, const float* const* inputs, float* const* outputs, vocoder_instance* instance) noexcept;
// clang-format on

// Starts or retriggers a note. Notes outside 27 to 108 and a 33rd held note are ignored. Velocity 0 is a note off; all
// other velocities are alike.
void vocoder_note_on(int32_t note, int32_t velocity, vocoder_instance* instance) noexcept;

// Releases a note, or keeps it under sustain. `velocity` is ignored.
void vocoder_note_off(int32_t note, int32_t velocity, vocoder_instance* instance) noexcept;

// Releases all held notes and centres the pitch bend.
void vocoder_all_notes_off(vocoder_instance* instance) noexcept;

// Bends all notes: `value` 0 to 127, 64 in the middle, two semitones either way.
void vocoder_set_pitch_bend(int32_t value, vocoder_instance* instance) noexcept;

// Presses (non-zero) or lifts (0) the sustain pedal. Lifting releases the notes that were let go under it.
void vocoder_set_sustain(int32_t on, vocoder_instance* instance) noexcept;

// Replaces the held notes by a list of up to 32 note numbers as floats.
//   byte_count    bytes of `notes`; those beyond 128 are ignored. Null or 0 does nothing
void vocoder_set_note_list(const float* notes, uint32_t byte_count, vocoder_instance* instance) noexcept;

// The 32 note slots as floats; entries below 27 are free.
//   byte_count    receives 128, or 0 without an instance; may be null
//   returns       an array of the instance, valid until its end; null without an instance
float* vocoder_get_note_list(uint32_t* byte_count, vocoder_instance* instance) noexcept;

// Stores whether the target curve is wanted. The equaliser runs in either case.
//   returns       0; 1, with a line on standard output, for a curve other than 0
int32_t vocoder_set_target_curve(int32_t curve, int32_t enabled, vocoder_instance* instance) noexcept;
