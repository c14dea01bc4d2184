#pragma once

// Constants of elementary.cpp. Written by tools/elementary_tables.py.

#include <cstdint>

namespace tfl_rng::elementary {

inline constexpr std::int64_t kLogStartBits = 0x3fe5800000000000;        // of 0.671875
inline constexpr std::int64_t kExponentBits = -(std::int64_t{1} << 52);  // sign and exponent
inline constexpr std::int64_t kHighHalf = -(std::int64_t{1} << 27);      // 26 significant bits
inline constexpr double kRoundToInteger = 0x1.8p+52;

inline constexpr double kLn2High = 0x1.62e42fefa3800p-1;  // a multiple of 2^-42
inline constexpr double kLn2Low = 0x1.ef35793c76730p-45;

// Row i serves the i-th of 16 intervals of [0.671875, 1.34375), the one around 1 with c = 1.
// c: reciprocal of a point of the interval, in 10 bits.
// high + low = -log(c); high is a multiple of 2^-42.
inline constexpr struct {
  double c[16], high[16], low[16];
} kLogTable = {
    {0x1.7480000000000p+0, 0x1.6400000000000p+0, 0x1.5580000000000p+0, 0x1.4780000000000p+0,
     0x1.3b00000000000p+0, 0x1.2f80000000000p+0, 0x1.2480000000000p+0, 0x1.1a80000000000p+0,
     0x1.1100000000000p+0, 0x1.0880000000000p+0, 0x1.0000000000000p+0, 0x1.e200000000000p-1,
     0x1.c700000000000p-1, 0x1.af00000000000p-1, 0x1.9a00000000000p-1, 0x1.8600000000000p-1},
    {-0x1.800f9f3dc9000p-2, -0x1.51aad872e0000p-2, -0x1.27161913f8000p-2, -0x1.f871b28956000p-3,
     -0x1.a8becfc882000p-3, -0x1.5c94007598000p-3, -0x1.10f8e42254000p-3, -0x1.9375e55594000p-4,
     -0x1.0759835990000p-4, -0x1.0b94f7c198000p-5, 0x0.0p+0, 0x1.eea31c0068000p-5,
     0x1.e3707ee304000p-4, 0x1.60b3100b0a000p-3, 0x1.c6ffbc6f00000p-3, 0x1.16b5ccbad0000p-2},
    {-0x1.32bcfe6ddc8a2p-44, 0x1.f4bd8db0a7cc1p-44, -0x1.4f4f1f61564b4p-44, 0x1.f75fd6a526efep-44,
     -0x1.e3185cf21b9cfp-44, 0x1.a8d948cd23322p-44, 0x1.93b3843396307p-45, -0x1.eddc37380c364p-44,
     0x1.b8ecfe4b59987p-44, 0x1.e89896f022783p-45, 0x0.0p+0, 0x1.c3dd83606d891p-44,
     0x1.0f684e6766abdp-45, -0x1.71456c988f814p-44, 0x1.ee138d3a69d43p-44, -0x1.23299042d74bfp-44},
};
// |m * c - 1| reaches 0.03125.

// 2^(j/32) = high[j] + low[j].
inline constexpr struct {
  double high[32], low[32];
} kExpTable = {
    {0x1.0000000000000p+0, 0x1.059b0d3158574p+0, 0x1.0b5586cf9890fp+0, 0x1.11301d0125b51p+0,
     0x1.172b83c7d517bp+0, 0x1.1d4873168b9aap+0, 0x1.2387a6e756238p+0, 0x1.29e9df51fdee1p+0,
     0x1.306fe0a31b715p+0, 0x1.371a7373aa9cbp+0, 0x1.3dea64c123422p+0, 0x1.44e086061892dp+0,
     0x1.4bfdad5362a27p+0, 0x1.5342b569d4f82p+0, 0x1.5ab07dd485429p+0, 0x1.6247eb03a5585p+0,
     0x1.6a09e667f3bcdp+0, 0x1.71f75e8ec5f74p+0, 0x1.7a11473eb0187p+0, 0x1.82589994cce13p+0,
     0x1.8ace5422aa0dbp+0, 0x1.93737b0cdc5e5p+0, 0x1.9c49182a3f090p+0, 0x1.a5503b23e255dp+0,
     0x1.ae89f995ad3adp+0, 0x1.b7f76f2fb5e47p+0, 0x1.c199bdd85529cp+0, 0x1.cb720dcef9069p+0,
     0x1.d5818dcfba487p+0, 0x1.dfc97337b9b5fp+0, 0x1.ea4afa2a490dap+0, 0x1.f50765b6e4540p+0},
    {0x0.0p+0,
     0x1.d73e2a475b465p-55,
     0x1.8a62e4adc610bp-54,
     -0x1.6c51039449b3ap-54,
     -0x1.19041b9d78a76p-55,
     0x1.e016e00a2643cp-54,
     0x1.9b07eb6c70573p-54,
     0x1.612e8afad1255p-55,
     0x1.6f46ad23182e4p-55,
     -0x1.63aeabf42eae2p-54,
     0x1.ada0911f09ebcp-55,
     0x1.89b7a04ef80d0p-59,
     0x1.d4397afec42e2p-56,
     -0x1.07abe1db13cadp-55,
     0x1.6324c054647adp-54,
     -0x1.383c17e40b497p-54,
     -0x1.bdd3413b26456p-54,
     -0x1.16e4786887a99p-55,
     -0x1.41577ee04992fp-55,
     -0x1.d4c1dd41532d8p-54,
     0x1.6e9f156864b27p-54,
     -0x1.75fc781b57ebcp-57,
     0x1.c7c46b071f2bep-56,
     -0x1.d2f6edb8d41e1p-54,
     0x1.7a1cd345dcc81p-54,
     -0x1.5584f7e54ac3bp-56,
     0x1.11065895048ddp-55,
     0x1.503cbd1e949dbp-56,
     0x1.2ed02d75b3707p-55,
     -0x1.1a5cd4f184b5cp-54,
     -0x1.e9c23179c2893p-54,
     0x1.9d3e12dd8a18bp-54},
};
inline constexpr double kExpSteps = 0x1.71547652b82fep+5;     // 32 / log(2)
inline constexpr double kExpStepHigh = 0x1.62e42fefa0000p-6;  // a multiple of 2^-42
inline constexpr double kExpStepLow = 0x1.cf79abc9e3b3ap-45;

}  // namespace tfl_rng::elementary
