/* The C interface of the closed library "CoordSys.dll" as far as it transforms points between
 * datums.
 *
 *   xform_3D_7Param   rotate and scale, then translate:  X' = T + m (X - r x X)
 *   xform3D_Pt        translate, then rotate back and scale, the exact inverse of the first when
 * all of T and r are given negated and m as its reciprocal: W = X + T,  X' = m (W - r x W + r (r .
 * W)) / (1 + r . r)
 *
 * Earth-centred coordinates and translations in metres, rotations in radians in the
 * coordinate-frame sense, the scale as a factor near 1. The point is transformed in place; 1 is
 * returned when that was done, and for any other result the point is untouched. Both are linear in
 * the point: a system is prepared once from what they do to four points. May be called from any
 * thread.
 */
#ifndef TARVEX_COORDSYS_SEVEN_PARAMETER_INTERFACE_H
#define TARVEX_COORDSYS_SEVEN_PARAMETER_INTERFACE_H

#ifdef __cplusplus
extern "C" {
#endif

typedef int SevenParameterEntry(double dx, double dy, double dz, double rx, double ry, double rz,
                                double scale, double* x, double* y, double* z);

#ifdef __cplusplus
}
#endif

#endif
