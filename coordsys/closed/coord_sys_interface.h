/* The C interface of the closed library "CoordSys.dll" as far as it projects.
 *
 * Every conversion has the same form: two coordinates in, two out, and the parameters of the
 * system. Geodetic coordinates are latitude and longitude in radians, north and east positive; grid
 * coordinates are northing and easting in metres. A conversion returns 1 when it was made; for any
 * other result the outputs are untouched (the point lies outside, or the parameters do not suit).
 * A conversion may be called from any thread.
 *
 *   family                   geodetic to grid                   grid to geodetic
 *   System 34, Jutland       latlongWGS84ToXYSys34Jylland       XYSys34Jylland2latlongWGS84
 *   System 34, Zealand       latlongWGS84ToXYSys34Sjlland       XYSys34Sjlland2latlongWGS84
 *   System 45, Bornholm      latlongWGS84ToXYSys45Bornholm      XYSys34Bornholm2latlongWGS84
 *   UTM zone 32 on ED50      latlongWGS84ToXYSys34UTM32ED50     XYSys34UTM32ED502latlongWGS84
 *   Cassini-Soldner          latLong2XY_CassiniSoldner          XY2latLong2_CassiniSoldner
 *   oblique Mercator         latLong2XY_ObliqueMercator         XY2latLong_ObliqueMercator
 *   Hungarian EOV            latLongWGS84ToXY_EOV               EOV_XYToLatLongWGS84
 *
 * The odd spellings are the library's. The first four and the last take WGS84 positions and shift
 * the datum themselves; the Danish ones use no parameters. Eastings of the three System 34 and 45
 * areas are the systems' own x, positive to the west. EOV takes the seven parameters of the shift
 * where they are given and its country-wide set where all are 0.
 */
#ifndef TARVEX_COORDSYS_COORD_SYS_INTERFACE_H
#define TARVEX_COORDSYS_COORD_SYS_INTERFACE_H

#ifdef __cplusplus
extern "C" {
#endif

/* Angles in radians, lengths in metres. */
struct CoordSysParameters {
  double semiMajor;
  double flattening;
  double latitudeOfOrigin; /* or of the centre */
  double centralMeridian;  /* or longitude of the centre */
  double azimuth;
  double rectifiedAngle; /* 0 stands for the azimuth */
  double scaleFactor;
  double falseEasting;
  double falseNorthing;
  double shift[7]; /* dX dY dZ, rX rY rZ (seconds of arc, coordinate frame), scale (ppm) */
};

/* NOLINTNEXTLINE(modernize-use-using): C reads this header too */
typedef int CoordSysConversion(double first, double second, double* firstOut, double* secondOut,
                               const struct CoordSysParameters* parameters);

#ifdef __cplusplus
}
#endif

#endif
