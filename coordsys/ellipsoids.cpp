#include "coordsys/ellipsoids.h"

#include <cstddef>
#include <iterator>

namespace tarvex {
namespace {

constexpr Ellipsoid kTable[] = {
    {6377563.396, 0.00334085064038},  //  0 Airy 1830
    {6377340.189, 0.00334085064038},  //  1 Airy (modified)
    {6378160.0, 0.00335289186924},    //  2 1/f = 298.25
    {6377397.155, 0.00334277318217},  //  3 Bessel 1841
    kClarke1866,                      //  4
    {6378249.145, 0.0034075613787},   //  5 Clarke 1880
    {6377276.345, 0.00332444929666},  //  6 Everest 1830
    {6377298.556, 0.00332444929666},  //  7 Everest (1948)
    {6377304.063, 0.00332444929666},  //  8 Everest (modified)
    kGrs80,                           //  9
    {6378200.0, 0.00335232986926},    // 10 Helmert 1906
    {6378270.0, 0.003367003367},      // 11 Hough
    {6378388.0, 0.003367003367},      // 12 International 1924
    {6378160.0, 0.00335289186924},    // 13 the same again as 2
    {6378135.0, 0.00335277945417},    // 14 WGS 72
};

}  // namespace

void LookUpEllipsoid(int code, double& semiMajorM, double& flattening) {
  if (code == kUserEllipsoid) return;
  const bool listed = code >= 0 && code < static_cast<int>(std::size(kTable));
  const Ellipsoid& found = listed ? kTable[static_cast<std::size_t>(code)] : kWgs84;
  semiMajorM = found.semiMajorM;
  flattening = found.flattening;
}

}  // namespace tarvex
