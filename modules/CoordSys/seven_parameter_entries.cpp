// The entry points of CoordSys that transform points between datums; the interface is described in
// coordsys/closed/seven_parameter_interface.h.
#include "coordsys/closed/seven_parameter_interface.h"

#include <cmath>

#include "coordsys/datum/seven_parameters.h"

namespace {

using namespace tarvex;

int Store(const Geocentric& made, double* x, double* y, double* z) {
  if (!std::isfinite(made.xM) || !std::isfinite(made.yM) || !std::isfinite(made.zM)) return 0;
  *x = made.xM;
  *y = made.yM;
  *z = made.zM;
  return 1;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) SevenParameterEntry xform_3D_7Param;
__attribute__((visibility("default"))) SevenParameterEntry xform3D_Pt;

int xform_3D_7Param(double dx, double dy, double dz, double rx, double ry, double rz, double scale,
                    double* x, double* y, double* z) {
  return Store(RotateScaleTranslate({dx, dy, dz, rx, ry, rz, scale}, {*x, *y, *z}), x, y, z);
}

int xform3D_Pt(double dx, double dy, double dz, double rx, double ry, double rz, double scale,
               double* x, double* y, double* z) {
  return Store(TranslateUnrotateScale({dx, dy, dz, rx, ry, rz, scale}, {*x, *y, *z}), x, y, z);
}

}  // extern "C"
