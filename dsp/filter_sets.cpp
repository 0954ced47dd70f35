// MIT License.
#include "dsp/filter_sets.h"

#include <algorithm>
#include <numbers>
#include <span>

namespace {

// --- Taps, in the order of time ---
// Low-pass filters; the taps of each sum to the root of 2 or, in daubechies_76, to its negative.
// Sources: the Daubechies sets of 8 to 20 taps are the minimum-phase factors of maximally flat half-band filters,
// I. Daubechies, "Ten Lectures on Wavelets", 6.1, computed in double precision. Beylkin's set: G. Beylkin, R. Coifman,
// V. Rokhlin, "Fast wavelet transforms and numerical algorithms I", 1991. Pairs named a_b have a taps in analysis and b
// in synthesis; but for the three splines at the end they split a maximally flat half-band filter of a + b - 1 taps
// between the two sides: A. Cohen, I. Daubechies, J.-C. Feauveau, "Biorthogonal bases of compactly supported wavelets",
// 1992.

// clang-format off

constexpr auto half_root = static_cast<float>(std::numbers::sqrt2 / 2.0);
constexpr float haar[] = {half_root, half_root};

constexpr float daubechies_4[] = {
    0.482962906F,  0.836516321F,  0.224143863F, -0.129409522F,
};

constexpr float daubechies_6[] = {
    0.33267054F,    0.806891501F,   0.459877491F,  -0.135011017F,  -0.0854412764F,  0.0352262929F,
};

constexpr float daubechies_8[] = {
    0.230377813F,   0.714846571F,   0.630880768F,  -0.0279837694F,
   -0.187034812F,   0.0308413818F,  0.0328830117F, -0.0105974018F,
};

constexpr float daubechies_10[] = {
    0.160102398F,    0.60382927F,     0.724308528F,    0.138428146F,   -0.242294887F,
   -0.0322448696F,   0.0775714938F,  -0.00624149021F, -0.012580752F,    0.00333572529F,
};

constexpr float daubechies_12[] = {
    0.111540743F,     0.49462389F,      0.751133908F,     0.315250352F,    -0.226264694F,    -0.129766868F,
    0.0975016056F,    0.0275228655F,   -0.0315820393F,    0.000553842201F,  0.00477725751F,  -0.00107730109F,
};

constexpr float daubechies_14[] = {
    0.0778520541F,    0.396539319F,     0.729132091F,     0.469782287F,    -0.143906004F,    -0.224036185F,
    0.0713092193F,    0.0806126092F,   -0.0380299369F,   -0.0165745416F,    0.0125509986F,    0.000429577973F,
   -0.0018016407F,    0.0003537138F,
};

constexpr float daubechies_18[] = {
    0.0380779474F,    0.243834675F,     0.604823124F,     0.657288078F,     0.133197386F,    -0.293273783F,
   -0.0968407832F,    0.148540749F,     0.0307256815F,   -0.0676328291F,    0.000250947115F,  0.0223616621F,
   -0.00472320476F,  -0.00428150368F,   0.00184764688F,   0.000230385764F, -0.000251963189F,  3.93473203e-05F,
};

constexpr float daubechies_20[] = {
    0.0266700579F,    0.1881768F,       0.527201189F,     0.688459039F,     0.281172344F,    -0.249846424F,
   -0.195946274F,     0.12736934F,      0.0930573646F,   -0.0713941472F,   -0.0294575368F,    0.0332126741F,
    0.00360655357F,  -0.0107331755F,    0.00139535175F,   0.0019924053F,   -0.000685856695F, -0.000116466855F,
    9.35886703e-05F, -1.32642029e-05F,
};

// Smallest tap first, and all signs inverted: a step turns its low band over, and the inverse turns it back.
constexpr float daubechies_76[] = {
    1.71615244e-18F, -4.30459695e-17F,  4.40530692e-16F, -2.04509964e-15F,  4.56339741e-16F,  4.24981773e-14F,
   -1.80866119e-13F, -2.62649653e-14F,  2.48478928e-12F, -6.29153717e-12F, -1.10169296e-11F,  8.27825655e-11F,
   -6.73233622e-11F, -5.26113264e-10F,  1.34919775e-09F,  1.4363295e-09F,  -1.0347045e-08F,   5.42427481e-09F,
    4.88475784e-08F, -8.40035099e-08F, -1.39637748e-07F,  5.1877339e-07F,   8.48708765e-08F, -2.14996021e-06F,
    1.55084433e-06F,  6.45673026e-06F, -1.0373592e-05F,  -1.33417616e-05F,  4.17514166e-05F,  1.15540906e-05F,
   -0.000126204337F,  4.55568261e-05F,  0.000303102046F, -0.000281763932F, -0.000581075961F,  0.000942461425F,
    0.000844862661F, -0.00240069767F,  -0.000716982177F,  0.00507131452F,  -0.000562571571F, -0.00921478495F,
    0.00413130643F,   0.0147018824F,   -0.0112904971F,   -0.0209046453F,    0.0231141336F,    0.0268914942F,
   -0.0400549807F,   -0.0319898762F,    0.0617662072F,    0.0366051048F,   -0.0872043967F,   -0.0430958942F,
    0.11473117F,      0.0565864593F,   -0.141414732F,    -0.0856381208F,    0.159912571F,     0.14179568F,
   -0.14998512F,     -0.232125968F,     0.0622665063F,    0.321675628F,     0.182867661F,    -0.213050574F,
   -0.493356079F,    -0.496591181F,    -0.330775768F,    -0.160071999F,    -0.0578899421F,   -0.0156372488F,
   -0.0030830882F,   -0.000421170262F, -3.57625213e-05F, -1.42577665e-06F,
};

constexpr float beylkin_18[] = {
    0.0993057654F,    0.424215361F,     0.699825214F,     0.449718251F,    -0.110927598F,    -0.264497231F,
    0.0269003088F,    0.155538732F,    -0.0175207463F,   -0.0885436306F,    0.019679866F,     0.0429163873F,
   -0.0174604087F,   -0.014365808F,     0.0100404118F,    0.00148423478F,  -0.00273603163F,   0.000640485329F,
};

constexpr float pair_9_7_analysis[] = {
    0.0378284555F, -0.023849465F,  -0.110624404F,   0.377402856F,   0.852698679F,
    0.377402856F,  -0.110624404F,  -0.023849465F,   0.0378284555F,
};

constexpr float pair_9_7_synthesis[] = {
   -0.0645388826F, -0.0406894176F,  0.418092273F,   0.788485616F,   0.418092273F,  -0.0406894176F, -0.0645388826F,
};

constexpr float pair_10_18_analysis[] = {
    0.028852565F,     8.24447823e-05F, -0.157526447F,     0.0767904888F,    0.758907729F,
    0.758907729F,     0.0767904888F,   -0.157526447F,     8.24447823e-05F,  0.028852565F,
};

constexpr float pair_10_18_synthesis[] = {
    0.000954415868F, -2.7271963e-06F,  -0.009452463F,    -0.00252803729F,   0.0308337344F,   -0.0137651348F,
   -0.0856611883F,    0.163368541F,     0.623359641F,     0.623359641F,     0.163368541F,    -0.0856611883F,
   -0.0137651348F,    0.0308337344F,   -0.00252803729F,  -0.009452463F,    -2.7271963e-06F,   0.000954415868F,
};

constexpr float pair_10_10_analysis[] = {
    0.0269134189F, -0.0323033527F, -0.241109817F,   0.0541004218F,  0.89950611F,
    0.89950611F,    0.0541004218F, -0.241109817F,  -0.0323033527F,  0.0269134189F,
};

constexpr float pair_10_10_synthesis[] = {
    0.0198435442F,  0.0238175985F, -0.0232578399F,  0.145570747F,   0.541132732F,
    0.541132732F,   0.145570747F,  -0.0232578399F,  0.0238175985F,  0.0198435442F,
};

constexpr float pair_13_11_analysis[] = {
   -0.00847282774F,  0.00375921032F,  0.0472817528F,  -0.033475081F,   -0.0688781142F,
    0.383269261F,    0.767245159F,    0.383269261F,   -0.0688781142F,  -0.033475081F,
    0.0472817528F,   0.00375921032F, -0.00847282774F,
};

constexpr float pair_13_11_synthesis[] = {
    0.0141821559F,   0.00629231567F, -0.108737365F,   -0.0691627101F,   0.4481086F,      0.83284757F,
    0.4481086F,     -0.0691627101F,  -0.108737365F,    0.00629231567F,  0.0141821559F,
};

constexpr float pair_6_10_analysis[] = {
   -0.129077765F,  0.04769893F,   0.788485616F,  0.788485616F,  0.04769893F,  -0.129077765F,
};

constexpr float pair_6_10_synthesis[] = {
    0.0189142278F,   0.00698949524F, -0.0672369347F,   0.133389226F,    0.615050767F,
    0.615050767F,    0.133389226F,   -0.0672369347F,   0.00698949524F,  0.0189142278F,
};

constexpr float pair_5_3_analysis[] = {
   -0.176776695F,  0.353553391F,  1.06066017F,   0.353553391F, -0.176776695F,
};

constexpr float pair_5_3_synthesis[] = {
    0.353553391F,  0.707106781F,  0.353553391F,
};

constexpr float pair_2_6_analysis[] = {
    0.707106781F,  0.707106781F,
};

constexpr float pair_2_6_synthesis[] = {
   -0.0883883476F,  0.0883883476F,  0.707106781F,   0.707106781F,   0.0883883476F, -0.0883883476F,
};

constexpr float pair_9_3_analysis[] = {
    0.0331456304F, -0.0662912607F, -0.176776695F,   0.419844651F,   0.994368911F,
    0.419844651F,  -0.176776695F,  -0.0662912607F,  0.0331456304F,
};

constexpr float pair_9_3_synthesis[] = {
    0.353553391F,  0.707106781F,  0.353553391F,
};

// clang-format on

// --- Building ---

constexpr wavelet_filter filter_of(std::span<const float> taps, int32_t first_index) {
  wavelet_filter filter;
  filter.size = static_cast<int32_t>(taps.size());
  filter.first_index = first_index;
  filter.center = -first_index;
  std::copy(taps.begin(), taps.end(), filter.coefficients.begin());
  return filter;
}

constexpr wavelet_filter mirror_of(const wavelet_filter& source) {
  wavelet_filter mirror;
  mirror.size = source.size;
  mirror.first_index = 2 - source.first_index - source.size;
  mirror.center = -mirror.first_index;
  float sign = source.first_index % 2 == 0 ? -1.0F : 1.0F;
  for (int32_t i = 0; i < source.size; ++i) {
    mirror.coefficients[static_cast<size_t>(source.size - 1 - i)] = sign * source.coefficients[static_cast<size_t>(i)];
    sign = -sign;
  }
  return mirror;
}

constexpr filter_set orthogonal(int32_t symmetric, const wavelet_filter& low) {
  const wavelet_filter high = mirror_of(low);
  return {symmetric, low, high, low, high};
}

constexpr filter_set biorthogonal(int32_t symmetric, const wavelet_filter& analysis_low,
                                  const wavelet_filter& synthesis_low) {
  return {symmetric, analysis_low, mirror_of(synthesis_low), synthesis_low, mirror_of(analysis_low)};
}

bool in_range(int32_t size, int32_t first_index) {
  return size >= 1 && size <= wavelet_max_taps && first_index > -size && first_index <= 0;
}

std::span<const float> taps_of(const float* taps, int32_t size) {
  return {taps, static_cast<size_t>(size)};
}

// --- The table ---

struct numbered_set {
  int32_t number;
  filter_set set;
};

constexpr numbered_set orthogonal_entry(int32_t number, std::span<const float> low) {
  return {number, orthogonal(0, filter_of(low, 0))};
}

constexpr numbered_set symmetric_entry(int32_t number, std::span<const float> analysis_low, int32_t analysis_first,
                                       std::span<const float> synthesis_low, int32_t synthesis_first) {
  return {number, biorthogonal(1, filter_of(analysis_low, analysis_first), filter_of(synthesis_low, synthesis_first))};
}

// clang-format off
constexpr numbered_set table[] = {
    orthogonal_entry( 1, haar),
    orthogonal_entry( 2, daubechies_4),                                          // mode 12
    orthogonal_entry( 3, daubechies_6),                                          // mode 13
    orthogonal_entry( 4, daubechies_8),
    orthogonal_entry( 5, daubechies_10),
    orthogonal_entry( 6, daubechies_12),
    orthogonal_entry( 7, daubechies_14),
    orthogonal_entry( 8, daubechies_18),
    orthogonal_entry( 9, daubechies_20),
    orthogonal_entry(10, daubechies_76),                                         // modes 13 and 14
    orthogonal_entry(11, beylkin_18),
    symmetric_entry(15, pair_9_7_analysis,   -4, pair_9_7_synthesis,   -3),      // Cohen-Daubechies-Feauveau
    symmetric_entry(16, pair_10_18_analysis, -4, pair_10_18_synthesis, -8),
    symmetric_entry(18, pair_9_7_analysis,   -4, pair_9_7_synthesis,   -3),      // 15 again
    symmetric_entry(19, pair_10_10_analysis, -4, pair_10_10_synthesis, -4),
    symmetric_entry(20, pair_9_7_analysis,   -4, pair_9_7_synthesis,   -3),      // 15 again
    symmetric_entry(21, pair_13_11_analysis, -6, pair_13_11_synthesis, -5),
    symmetric_entry(22, pair_6_10_analysis,  -2, pair_6_10_synthesis,  -4),
    symmetric_entry(23, pair_5_3_analysis,   -2, pair_5_3_synthesis,   -1),      // Le Gall
    symmetric_entry(24, pair_2_6_analysis,    0, pair_2_6_synthesis,   -2),      // Haar analysis
    symmetric_entry(25, pair_9_3_analysis,   -4, pair_9_3_synthesis,   -1),      // spline
};
// clang-format on

}  // namespace

int32_t filter_set_build(int32_t symmetric, const float* analysis_low, int32_t analysis_size, int32_t analysis_first,
                         const float* synthesis_low, int32_t synthesis_size, int32_t synthesis_first, filter_set* set) {
  if (analysis_low == nullptr || !in_range(analysis_size, analysis_first)) return 1;
  const wavelet_filter analysis = filter_of(taps_of(analysis_low, analysis_size), analysis_first);
  if (synthesis_low == nullptr) {
    *set = orthogonal(symmetric, analysis);
    return 0;
  }
  if (!in_range(synthesis_size, synthesis_first)) return 1;
  *set = biorthogonal(symmetric, analysis, filter_of(taps_of(synthesis_low, synthesis_size), synthesis_first));
  return 0;
}

void filter_set_copy(const filter_set& source, filter_set* target) {
  *target = source;
}

void filter_set_release(filter_set* set) {
  *set = {};
}

const filter_set* filter_set_of_number(int32_t number) {
  const auto* const found = std::find_if(std::begin(table), std::end(table),
                                         [number](const numbered_set& entry) { return entry.number == number; });
  return found == std::end(table) ? nullptr : &found->set;
}
