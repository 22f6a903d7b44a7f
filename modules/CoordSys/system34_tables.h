// The tables of the Danish polynomials (system34_tables.cpp).
#pragma once

#include <span>

namespace tarvex {

/// out_north = sum_i e^i sum_j north[i][j] n^j and out_east = sum_i n^i sum_j east[i][j] e^j with
/// n and e taken from the origin and i + j up to the degree; the coefficients are row by row.
struct System34Polynomial {
  int degree = 0;
  double originNorth = 0.0;
  double originEast = 0.0;
  const double* north = nullptr;
  const double* east = nullptr;
};

struct GridVertex {
  double north = 0.0;
  double east = 0.0;
};

// "To" starts from TC32, the transverse Mercator of central meridian 9 east on ED50.
extern const System34Polynomial kToJutland;
extern const System34Polynomial kFromJutland;
extern const System34Polynomial kToZealand;
extern const System34Polynomial kFromZealand;
extern const System34Polynomial kToBornholm;
extern const System34Polynomial kFromBornholm;
extern const System34Polynomial kToUtm32Land;
extern const System34Polynomial kFromUtm32Land;
extern const System34Polynomial kToUtm32Bornholm;
extern const System34Polynomial kFromUtm32Bornholm;

// In TC32.
extern const std::span<const GridVertex> kJutlandArea;
extern const std::span<const GridVertex> kZealandArea;
extern const std::span<const GridVertex> kBornholmArea;
extern const std::span<const GridVertex> kLandArea;

}  // namespace tarvex
