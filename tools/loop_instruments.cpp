// MIT License. The instruments of the six sample loops: which partials they have and how strong.
#include "tools/loop_instruments.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <initializer_list>

#include "tools/loop_formats.h"

namespace {

// A peak in a spectrum, as a resonance of a body or vocal tract makes it.
struct resonance {
  double hz;
  double width_hz;  // between the points of half its gain
  double gain;      // added at the peak to a gain of 1
};

double resonance_gain(std::initializer_list<resonance> hills, double hz) {
  double gain = 1.0;
  for (const resonance& hill : hills) {
    const double distance = (hz - hill.hz) / (0.5 * hill.width_hz);
    gain += hill.gain / (1.0 + distance * distance);
  }
  return gain;
}

// 1 up to 0.7 of the limit, then down to 0 as half a cosine, so that the spectrum has no hard edge.
double fade_to_limit(double hz, double limit_hz) {
  const double x = (hz / limit_hz - 0.7) / 0.3;
  if (x <= 0.0) return 1.0;
  if (x >= 1.0) return 0.0;
  return 0.5 + 0.5 * std::cos(std::acos(-1.0) * x);
}

tone empty_tone(const loop_format& format) {
  return {format.period, root_cycles(format), false, {}};
}

double partial_hz(const loop_format& format, double cycles) {
  return root_frequency_hz(format) * cycles / root_cycles(format);
}

int32_t whole(double cycles) {
  return static_cast<int32_t>(std::lround(cycles));
}

// A pipe organ's principal chorus: ranks of pipes at 8, 4, 2 2/3, 2, 1 1/3 and 1 foot. The ranks are up to 3
// cycles of the loop off each other, as pipes are that were tuned by ear, which keeps the long loop from sounding
// static.
tone organ(const loop_format& format) {
  struct rank {
    double level;
    int32_t harmonic;
    int32_t detune;  // cycles per period, half a hertz each
  };
  constexpr rank ranks[] = {{1.0, 1, 0}, {0.7, 2, -1}, {0.3, 3, 1}, {0.5, 4, -2}, {0.25, 6, 2}, {0.3, 8, -3}};
  constexpr double highest_partial_hz = 9000.0;
  tone sound = empty_tone(format);
  sound.mirrored = true;
  for (const rank& rank : ranks) {
    const int32_t pitch = rank.harmonic * whole(sound.root_cycles) + rank.detune;
    for (int32_t n = 1; partial_hz(format, pitch * n) < highest_partial_hz; ++n) {
      const double level =
          rank.level * std::pow(n, -1.2) * fade_to_limit(partial_hz(format, pitch * n), highest_partial_hz);
      sound.partials.push_back({pitch * n, rank.harmonic * n, level});
    }
  }
  return sound;
}

// Harmonics that are all whole multiples of the same cycle.
template <typename Level>
tone harmonic_tone(const loop_format& format, double limit_hz, Level level) {
  tone sound = empty_tone(format);
  const int32_t pitch = whole(sound.root_cycles);
  for (int32_t n = 1; partial_hz(format, pitch * n) < limit_hz; ++n) {
    const double hz = partial_hz(format, pitch * n);
    sound.partials.push_back({pitch * n, n, level(n, hz) * fade_to_limit(hz, limit_hz)});
  }
  return sound;
}

struct ensemble {
  int32_t players;      // beside the leading one
  double spread_cents;  // largest distance of their pitches
  double share;         // their energy, of the leading one's
  double limit_hz;
};

// A side partial three cycles off takes less energy to move a harmonic's centre than one that is next to it: a vibrato
// of some 20 cents from end to end at 4 to 5 Hz, where the neighbour would be a beating of more than 10 dB.
constexpr int32_t centring_cycles = 3;
constexpr double centred_within_cents = 1.8;

// Adds the partial that brings the centre of `harmonic`, `lead` cycles too high, near enough to the root key.
void centre_harmonic(int32_t harmonic, int32_t lead, double level, tone* sound) {
  const double wanted = sound->root_cycles * harmonic;
  const double allowed = wanted * (std::exp2(centred_within_cents / 1200.0) - 1.0);
  const double excess = std::abs(lead - wanted) - allowed;
  if (excess <= 0.0) return;
  const double energy = excess / (centring_cycles - excess);
  const int32_t side = lead < wanted ? centring_cycles : -centring_cycles;
  sound->partials.push_back({lead + side, harmonic, level * std::sqrt(energy)});
}

// Each harmonic is led by the partial nearest to the root key's own, which keeps the sum from pumping; the other
// players are spread evenly about it, at slightly uneven levels as bows and breaths are.
template <typename Level>
tone ensemble_tone(const loop_format& format, const ensemble& with, random_source* random, Level level) {
  tone sound = empty_tone(format);
  for (int32_t n = 1; partial_hz(format, n * sound.root_cycles) < with.limit_hz; ++n) {
    const double wanted = n * sound.root_cycles;
    const double hz = partial_hz(format, wanted);
    const double amplitude = level(n, hz) * fade_to_limit(hz, with.limit_hz);
    const int32_t lead = whole(wanted);
    sound.partials.push_back({lead, n, amplitude});
    centre_harmonic(n, lead, amplitude, &sound);
    int32_t last = 0;
    for (int32_t player = 0; player < with.players; ++player) {
      const double cents = with.spread_cents * (2.0 * player / (with.players - 1) - 1.0);
      const int32_t cycles = whole(wanted * std::exp2(cents / 1200.0));
      const double player_level = std::sqrt(with.share / with.players) * (0.7 + 0.6 * next_uniform(random));
      if (cycles == lead || cycles == last) continue;
      sound.partials.push_back({cycles, n, amplitude * player_level});
      last = cycles;
    }
  }
  return sound;
}

// Bowed strings: the saw of the string under the bow, through a wooden body with its first resonances about 280 and
// 460 Hz and the hill that the bridge adds about 2.5 kHz (Fletcher and Rossing, "The Physics of Musical Instruments",
// chapter 10).
tone strings(const loop_format& format, random_source* random) {
  return ensemble_tone(format, {6, 9.0, 0.15, 13000.0}, random, [](int32_t n, double hz) {
    return resonance_gain({{280.0, 60.0, 0.6}, {460.0, 120.0, 1.2}, {2500.0, 1800.0, 1.5}}, hz) / n;
  });
}

// A bell, ringing on: the partials that are named hum, prime, tierce, quint and nominal, with prime, nominal, twelfth
// and double octave true to the strike note, and above them a row that is stretched like the modes of a stiff bar.
tone bell(const loop_format& format) {
  struct mode {
    double ratio;
    int32_t harmonic;
    double db;
  };
  constexpr mode modes[] = {{0.5, 0, -16.0}, {1.0, 1, 0.0},  {1.2, 0, -20.0}, {1.5, 0, -17.0},
                            {2.0, 2, -1.0},  {3.0, 3, -4.0}, {4.0, 4, -6.0}};
  constexpr double highest_partial_hz = 15000.0;
  constexpr double stretch = 0.0007;
  tone sound = empty_tone(format);
  const int32_t pitch = whole(sound.root_cycles);
  const auto add = [&](double ratio, int32_t harmonic, double level) {
    const int32_t cycles = whole(ratio * pitch);
    sound.partials.push_back({cycles, harmonic, level});
    // No casting is quite round: each mode is a pair, here a cycle apart, whose beating is the bell's slow warble.
    sound.partials.push_back({cycles + 1, harmonic, 0.2 * level});
  };
  for (const mode& mode : modes) add(mode.ratio, mode.harmonic, std::pow(10.0, mode.db / 20.0));
  for (int32_t n = 5;; ++n) {
    const double ratio = n * std::sqrt((1.0 + stretch * n * n) / (1.0 + stretch * 16.0));
    const double hz = partial_hz(format, ratio * pitch);
    if (hz >= highest_partial_hz) return sound;
    add(ratio, 0, 1.8 / n * fade_to_limit(hz, highest_partial_hz));
  }
}

// A single reed on a cylindrical pipe, closed at one end: odd harmonics lead, and even ones come up above the tone
// holes' cutoff of about 1.5 kHz, half way by 2.2 (A. Benade, "Fundamentals of Musical Acoustics", chapter 21).
tone reed(const loop_format& format) {
  return harmonic_tone(format, 13000.0, [](int32_t n, double hz) {
    const double even = 0.08 + 0.92 * (1.0 - std::exp(-std::pow(hz / 2600.0, 2.0)));
    return (n % 2 == 1 ? 1.0 : even) * std::pow(n, -0.8);
  });
}

// A bass singing a neutral vowel: the larynx's pulse falls by 12 dB an octave, the mouth's radiation gives 6 back, and
// a tube of 17.5 cm, closed at one end, resonates at odd multiples of 500 Hz.
tone voice(const loop_format& format) {
  return harmonic_tone(format, 9000.0, [](int32_t n, double hz) {
    return resonance_gain({{500.0, 160.0, 2.5},
                           {1500.0, 220.0, 2.5},
                           {2500.0, 300.0, 3.0},
                           {3500.0, 400.0, 3.0},
                           {4500.0, 500.0, 2.0}},
                          hz) /
           n;
  });
}

// Men and women on an open "ah", whose formants are the mean of both in G. Peterson and H. Barney, "Control methods
// used in a study of the vowels", JASA 24 (1952), and a singers' formant about 3 kHz.
tone choir(const loop_format& format, random_source* random) {
  return ensemble_tone(format, {6, 12.0, 0.25, 11000.0}, random, [](int32_t n, double hz) {
    return resonance_gain({{790.0, 180.0, 3.0}, {1155.0, 200.0, 2.5}, {2625.0, 400.0, 2.0}, {3200.0, 700.0, 2.0}}, hz) /
           n;
  });
}

}  // namespace

instrument make_instrument(int32_t loop) {
  const loop_format format = format_of_loop(loop);
  random_source random{static_cast<uint64_t>(loop + 1)};
  switch (loop) {
    case 0:
      return {"organ", 9, organ(format)};
    case 1:
      return {"strings", 5, strings(format, &random)};
    case 2:
      return {"bell", 10, bell(format)};
    case 3:
      return {"reed", 4, reed(format)};
    case 4:
      return {"voice", 3, voice(format)};
    default:
      return {"choir", 3, choir(format, &random)};
  }
}
