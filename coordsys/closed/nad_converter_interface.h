/* The C interface of the closed library "nadconv.dll".
 *
 *   ConvertNAD27ToNAD83   NAD27 latitude and longitude to NAD83
 *   ConvertNAD83ToNAD27   the way back
 *   CloseNADConverter     gives back what the library holds
 *
 * Angles are decimal degrees, north and east positive. `dataFolder` is the folder of the shift
 * grids, with its trailing separator. 1 is success; for any other result the outputs are untouched:
 * 0 when no grid of the folder can be loaded, -1 when the position lies outside of every grid.
 * May be called from any thread.
 */
#ifndef TARVEX_COORDSYS_NAD_CONVERTER_INTERFACE_H
#define TARVEX_COORDSYS_NAD_CONVERTER_INTERFACE_H

#ifdef __cplusplus
extern "C" {
#endif

typedef int NadConversionEntry(double latitude, double longitude, double* latitudeOut,
                               double* longitudeOut, const char* dataFolder);
typedef void NadCloseEntry(void);

#ifdef __cplusplus
}
#endif

#endif
