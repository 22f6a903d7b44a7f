#include "core/text/string_table.h"

#include <algorithm>
#include <iterator>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kKeyPrefix = "IDS_STRING";

struct Entry {
  int number;
  std::string_view text;
};

// In ascending order of number. Each room names its numbers: core/text/core_texts.h,
// coordsys/coordsys_texts.h, gnss/gnss_texts.h, roads/road_texts.h, exchange/exchange_texts.h.
constexpr Entry kEntries[] = {
    {141, "Coordinate system"},
    // Job files
    {1001, "The coordinate file %s cannot be opened for writing: %s."},
    {1002, "The coordinate file %s cannot be created: %s."},
    {1003, "%s is not a coordinate file, or its header is damaged; nothing was changed."},
    {1004, "The older coordinate file %s cannot be converted: %s. It is as before."},
    {1005,
     "An interrupted change of %s cannot be completed: %s. Nothing is lost: remove the "
     "cause and open the job again."},
    {1006, "The coordinate file %s cannot be read: %s."},
    {1007,
     "The coordinate file %s was created, but its folder could not be made durable: %s. Should "
     "the power fail, it may be missing."},
    {1008,
     "The last work on %s was interrupted, and it cannot be finished here: %s. Copy the job's "
     "files, the one that ends in .redo among them, to a place where they can be written, and "
     "open the job there."},
    // 10 behind a text: the change was made, but is not durable; 20 behind it: it is pending
    {1011, "Point %s could not be stored in %s: %s."},
    {1012, "Point %s could not be deleted from %s: %s."},
    {1014, "The points could not be stored in %s: %s. The file is as before."},
    {1015, "%s was not changed: %s."},
    {1016,
     "The work on %s is kept in its .redo file but could not be finished: %s. It is finished "
     "when the job is opened again."},
    {1021,
     "Point %s is stored in %s, but the folder could not be made durable: %s. Should the power "
     "fail, the point may be lost."},
    {1022,
     "Point %s is deleted from %s, but the folder could not be made durable: %s. Should the "
     "power fail, it may be there again."},
    {1024,
     "The points are stored in %s, but the folder could not be made durable: %s. Should the "
     "power fail, they may be lost."},
    {1031,
     "Point %s is not yet stored in %s: %s. The change waits beside the file and is completed "
     "when the job is opened again."},
    {1032,
     "Point %s is not yet deleted from %s: %s. The change waits beside the file and is "
     "completed when the job is opened again."},
    {1034,
     "The points are not yet stored in %s: %s. The change waits beside the file and is "
     "completed when the job is opened again."},
    // Shift grids
    {1193, "Loading the shift grid..."},
    {1703, "The grids of the Hungarian system cannot be loaded; no grid correction is made."},
    // Coordinate systems
    {2205, "The projection \""},
    {2206, "\" is not known; the projection of the system was left as it was."},
    {2207, "The library %s cannot be loaded: %s"},
    {2208, "The library %s has no entry \"%s\"."},
    {2210, "This system cannot be used: its ellipsoid is missing or is not like the earth."},
    {2211, "This system cannot be used: its scale factor is missing or far from 1."},
    {2212, "This system cannot be used: its central meridian is not a longitude."},
    {2213, "This system cannot be used: its latitude of origin does not suit the projection."},
    {2214,
     "This system cannot be used: its standard parallels are missing or do not suit the "
     "projection."},
    {2215, "This system cannot be used: its azimuth is missing or does not suit the projection."},
    {2216, "This system cannot be used: its false easting or northing is out of range."},
    {2217, "This system cannot be used: its national coefficients are missing."},
    {2218, "This system cannot be used: its Denmark area is not known."},
    {2219, "This system cannot be used: its projection type is not known."},
    {2220, "This system cannot be used: its projection is not available."},
    {2221, "This system's datum is another than WGS84, and no shift between the two is known."},
    {2230, "The point was converted."},
    {2231, "The point was converted, but a step was left undone."},
    {2232, "The library that computes this projection is not there or lacks its entry."},
    {2233, "A coordinate is not a number."},
    {2234, "No coordinate system is set."},
    {2235, "The coordinate system cannot be used."},
    {2236, "The point lies outside the area where the projection holds."},
    {2237, "The datum shift of the coordinate system is not available."},
    {2238, "A step of the conversion could not be made."},
    {2239, "The height of the point and the geoid did not settle."},
    {2240, "The national grid of this system is not there; its correction was left undone."},
    {2241, "This system needs its national grid, which is not there."},
    {2248, "The position cannot be converted between NAD27 and NAD83; it is left as it was."},
    {2270, "The catalogue was changed."},
    {2271, "The catalogue holds no system of this name."},
    {2272, "The catalogue already holds a system of this name."},
    {2273, "This cannot be the name of a system."},
    {2274,
     "This cannot be the definition of a system: it is empty, or longer than 2,048 characters."},
    {2275, "The catalogue file cannot be read or written; it is as it was."},
    {2276, "The catalogue %s cannot be read (%s); its systems are missing."},
    // Ports and NTRIP: 3000 + error number
    {3003, "The caster gave no answer within 60 seconds."},
    {3005, "The port is not open."},
    {3006, "Reading from the port failed."},
    {3007, "Writing to the port failed."},
    {3009, "The line settings (baud rate, data bits, parity, stop bits) could not be set."},
    {3010, "The queue sizes of the port could not be set."},
    {3011, "The time-outs of the port could not be read."},
    {3012, "The time-outs of the port could not be set."},
    {3013, "The number of waiting bytes could not be read from the port."},
    {3014, "The line errors of the port could not be cleared."},
    {3015, "The output of the port could not be discarded."},
    {3016, "The input of the port could not be discarded."},
    {3017, "The output of the port did not leave in time."},
    {3018, "The break could not be sent."},
    {3019, "No connection, caster or stream was given."},
    {3023, "The file for the source table could not be created."},
    {3024, "The port %s could not be opened."},
    {3025, "Only %s of %s bytes arrived within %s ms."},
    {3029, "The system says: %s."},
    {3032, "The line is not a stream or caster record."},
    {3039, "The caster record has no host or no port."},
    {3040, "The caster did not answer the request."},
    {3083, "The caster has disconnected."},
    {3139, "The caster does not accept this user and password."},
    {3233, "Cancelled."},
    {3281, "The connection to the caster could not be opened."},
    {3300,
     "\"%s\" is not a port: give serial:DEVICE[@BAUD], tcp:HOST:PORT, file:LOG or simulated."},
    {3301,
     "The serial port has no device: give serial:DEVICE[@BAUD], as in "
     "serial:/dev/ttyUSB0@115200."},
    {3302, "\"%s\" is not a baud rate from 110 to 921600."},
    {3303, "\"%s\" is not HOST:PORT with a port from 1 to 65535, as in tcp:192.168.1.20:9001."},
    {3304, "The log has no name: give file:LOG."},
    {3310, "Connecting to Server"},
    {3311, "Connecting to broadcaster"},
    {3312, "Loading bases"},
    {3320, "Corrections have not been asked for yet."},
    {3321, "Connecting to %s, mountpoint %s."},
    {3322, "Corrections flow from %s, mountpoint %s."},
    {3323, "%s, mountpoint %s, has sent nothing for %s s."},
    {3324, "%s The next try is in %s s."},
    {3325,
     "%s does not accept the user and password for mountpoint %s. Correct them and connect "
     "again; nothing is tried until then."},
    {3326, "%s has no mountpoint %s. Choose one that exists; nothing is tried until then."},
    {3327, "The corrections cannot be written to the receiver; it is tried again in %s s."},
    {3328, "The corrections have been stopped."},
    {3329, "%s cannot be reached: %s."},
    {3330,
     "%s has no mountpoint %s; it has %s. Choose one that exists; nothing is tried until then."},
    {3331, "%s, mountpoint %s, has sent nothing for %s s; no position was sent to it."},
    {3332, "The caster closed the connection without an answer that is understood."},
    {3333, "%s, mountpoint %s, sent no corrections: %s"},
    {3334, "The corrections from %s, mountpoint %s, broke off: %s"},
    {3335, "It has %s."},
    // Casters that are reached by TLS
    {3340, "this installation has no TLS (%s): install libssl3, or build it anew with libssl-dev"},
    {3341, "the server at this port does not speak TLS (it says \"%s\"): ask for its TLS port"},
    {3342, "it broke off the TLS handshake"},
    {3343, "it does not answer the TLS handshake: it may be a plain port"},
    {3344, "the file of authorities cannot be used (%s)"},
    {3345, "its certificate is for %s, not for %s"},
    {3346, "its certificate has expired (%s)"},
    {3347, "its certificate is valid from %s on only: look at the date of this machine"},
    {3348,
     "its certificate (%s) is signed by itself, not by an authority: give the certificate as an "
     "authority of your own if you know it to be right"},
    {3349,
     "its certificate is signed by %s, who is not known as an authority here: give the "
     "authority's certificate if you know it to be right"},
    {3350, "its certificate is not accepted (%s)"},
    {3351, "the TLS connection failed (%s)"},
    {3367, "The bases of the caster could not be loaded."},
    {3368, "The connection to the mountpoint failed."},
    {3378, "The caster does not know the mountpoint."},
    {3395, "The list of streams of the caster cannot be read back from its file."},
    {3396,
     "The caster speaks TLS (encrypted) at this port: give ntrips:// in front of its name, or ask "
     "for its plain port."},
    {3397, "The caster refused the request: it answered \"%s\"."},
    {3398, "The answer is a web page, not corrections; a network may want a login in a browser."},
    {3399, "The list of streams of the caster is too large."},
    // Reading positions: 3400 - result code
    {3400, "The position was declined."},
    {3401,
     "The connection could not be prepared for reading: another reader has the port, or the "
     "port has failed."},
    {3405, "The receiver sends nothing: look at the cable, the address and the baud rate."},
    {3406, "The receiver sends no position sentence of the chosen kind."},
    {3407, "No fix: the receiver has no position, or is not connected."},
    {3408, "The receiver sent invalid data."},
    {3409, "The receiver was set to another datum; read again."},
    {3410, "The receiver was set to send heights above the ellipsoid; read again."},
    {3411, "The link to the receiver is lost."},
    {3412, "The recording has ended."},
    {3420, "Position accepted."},
    {3431, "The position is not measured: the receiver estimates it (dead reckoning)."},
    {3432, "The position is not measured: it was entered into the receiver."},
    {3433, "The position is not measured: the receiver simulates it."},
    {3434, "The receiver sends no height with its position; the elevation is that of height 0."},
    {3435,
     "The receiver sends no geoid separation with its position; its height is the one above "
     "the geoid."},
    {3440, "The receiver repeats its last position."},
    {3441, "The position is %s s old; the limit is %s s."},
    {3442, "The solution is %s; it must be %s or better."},
    {3443, "There are %s satellites; there must be %s or more."},
    {3444, "HRMS is %s; the limit is %s."},
    {3445, "VRMS is %s; the limit is %s."},
    {3446, "PDOP is %s; the limit is %s."},
    {3447, "The age of the corrections is %s s; the limit is %s s."},
    {3448, "The solution is %s; it must be %s."},
    {3450, "unknown"},
    // Keeping what a receiver sends
    {3460, "The stream log %s cannot be created: %s."},
    {3461, "The stream log %s cannot be written any more: %s."},
    {4000, "The definition is not well formed: brackets, quotes or commas do not match at \"%s\"."},
    {4001, "The definition is longer than 2,048 characters; the rest of it is not read."},
    {4002, "The definition holds no projected coordinate system (PROJCS)."},
    {4003, "The definition names no datum (DATUM)."},
    {4004,
     "The definition gives no ellipsoid with its semi-major axis and inverse flattening "
     "(SPHEROID)."},
    {4005, "The definition names no projection (PROJECTION)."},
    {4006, "The projection \"%s\" is not known."},
    {4007,
     "The unit of lengths is \"%s\", but lengths are taken as metres: give the false easting "
     "and northing in metres."},
    {4008, "The unit of angles is \"%s\", but angles are taken as degrees."},
    {4009, "The prime meridian is %s, but longitudes are taken from Greenwich."},
    {4010, "The axis %s: northings grow to the north and eastings to the east here."},
    {4011, "The parameter \"%s\", which this projection needs, is missing."},
    {4012, "The parameter \"%s\" is not known and is not used."},
    {4013, "The value of the parameter \"%s\" is not a number."},
    {4014,
     "The definition does not say how its datum lies against WGS84 (TOWGS84): jobs on it need "
     "a datum shift of their own."},
    {4015, "The eastings of System 34 are its own x: they grow to the west."},
    {4016, "The datum shift %s is not three or seven numbers."},
    {4017, "The parameter \"%s\" is given twice."},
    // Datum shifts, grids and localization
    {4100, "The grid file %s does not exist."},
    {4101, "The grid file %s cannot be read: %s."},
    {4102, "%s is not a grid file of this kind: %s."},
    {4103, "The grid file %s is cut short: %s."},
    {4104, "The grid file %s goes on after its last node: %s."},
    {4105, "The grid file %s gives a size that no grid has: %s."},
    {4106, "The grid file %s holds a bad value: %s."},
    {4107, "The grid files %s and %s do not cover the same nodes."},
    {4110, "this is not a localization file: %s"},
    {4111, "the point has no value \"%s\""},
    {4112, "the value of \"%s\" cannot be read: \"%s\""},
    {4113, "the value of \"%s\" is out of range: %s"},
    {4114, "this is not a localization: the record \"%s\" with the units \"%s\" is missing"},
    {4115, "the file cannot be read: %s"},
    {4120, "%s horizontally, scale %s ppm from 1, turned %s clockwise"},
    {4121, "%s vertically, shift %s m, tilt %s ppm to the north, %s ppm to the east"},
    {4130, "With %s the horizontal fit has no check: a blunder in a point cannot be seen."},
    {4131,
     "The control points lie almost on a line: away from it the fit is only as good as the "
     "scale."},
    {4132,
     "The control points lie within %s of each other: errors grow with the distance from them."},
    {4133,
     "The scale is %s ppm from 1: check the units, the projection and the points, or fix the "
     "scale."},
    {4134, "%s lies %s from the place that the other points give it: check it, or leave it out."},
    {4135, "%s of %s points of the job lie outside of the control points, the farthest by %s."},
    {4136, "With %s the vertical fit has no check."},
    {4137, "An inclined plane takes three points: a plain shift was fitted instead."},
    {4138,
     "The points lie on a line, so that the tilt across it is not known: a plain shift was "
     "fitted instead of a plane."},
    {4139,
     "The plane would be steeper than 100 ppm: a plain shift was fitted instead. Check the "
     "elevations and whether a geoid model is missing."},
    {4140, "%s has a large residual: %s horizontally."},
    {4141,
     "The scale is %s ppm from 1, and ground distances here would make it %s ppm: check the "
     "units, the projection and the points, or fix the scale."},
    {4142, "%s has a large residual: %s vertically."},
    {4150, "The library that shifts the datum is missing, or cannot do it in this direction."},
    {4151, "The point lies outside of the grid."},
    {4152, "The grid has no value at this point."},
    {4153, "The datum shift cannot be made."},
    {4154, "none, as chosen: WGS84 latitude and longitude are taken as they are"},
    {4155, "seven parameters: %s, %s, %s m; %s, %s, %s\" (coordinate frame); %s ppm"},
    {4156, "NAD27 by the NADCON grids %s in %s (nadconv)"},
    {4157, "NTv2 grid %s, %s to %s"},
    {4158, "geocentric translations of the grid %s"},
    {4160, "The point lies outside of the geoid model."},
    {4161, "The geoid model is missing or damaged."},
    {4162, "The shift grid is missing or damaged; no grid correction is made."},
    {4163, "There is no datum shift \"%s\"."},
    {4164, "The definition gives no TOWGS84 that the datum could be shifted by."},
    {4165,
     "\"%s\" is not a datum shift: TOWGS84= takes dX,dY,dZ in metres, and behind them "
     "rX,rY,rZ in "
     "seconds of arc and the scale in ppm, or nothing."},
    {4166,
     "This projection takes WGS84 positions and shifts the datum itself: no shift can be "
     "named."},
    {4167, "There are no NADCON grids (.las and .los) in %s: NAD27 positions are refused."},
    {4168, "(none)"},
    {4170, "Packing the grid..."},
    {4171, "The grid of the east correction has no value at this point; it is taken as 0."},
    {4172, "The grid of the north correction has no value at this point; it is taken as 0."},
    {4173,
     "The grids of the east and north corrections have no value at this point; both are taken "
     "as 0."},
    {4174, "The grid of the height correction has no value at this point; it is taken as 0."},
    {4175,
     "The grids of the east and height corrections have no value at this point; both are "
     "taken as 0."},
    {4176,
     "The grids of the north and height corrections have no value at this point; both are "
     "taken as 0."},
    {4177, "The grid's correction changes so much here that no place on the plane has it."},
    {4178, "The grids \"%s\" belong to another country than this projection."},
    {4179,
     "The datum is WGS84, or as good as WGS84: \"%s\" shifts from an older datum and would "
     "move every point."},
    // Roads
    {5000, "the line is too short to be a record: %s"},
    {5001, "the point id is negative: %s"},
    {5002, "fields are missing: %s"},
    {5003, "the record kind \"%s\" is not known; taken as a plain vertex"},
    {5004, "a number is out of range: %s"},
    {5005, "the file ends where the radius line should follow"},
    {5006, "taken as a radius line, though it does not say so: %s"},
    {5007, "Line %s: the file holds more key points than a centerline may have."},
    {5008, "%s is too large to be a road file."},
    {5009, "the last key point was dropped: the file lacks its closing record \"0,0,L,0,0\""},
    {5010, "The key points carry displayed stations: they were counted through the equations."},
    {5011, "Station equation %s falls back or lies outside the alignment; no equation is used."},
    {5012, "All key points carry the same station: restation the file from its coordinates."},
    {5013, "The station of %s is suspect: it looks %s too %s, both neighbours miss it alike."},
    {5014, "The coordinates of %s are suspect: it misses its arc by %s, and both neighbours."},
    {5015, "The centre of the curve at %s is suspect: its end misses the radius by %s."},
    {5016, "%s to %s: by coordinates %s %s than by the stations."},
    {5017, "The station falls before %s."},
    {5018, "The arc at %s turns %s more than the angle of its radius line."},
    {5019, "At %s the centre lies to the %s, the sign of the angle says the other side."},
    {5020, "The azimuth field of %s is suspect: it is %s off the spiral's own tangent."},
    {5021, "At %s the azimuth jumps by %s."},
    {5022, "The curve at %s has no usable centre; it is drawn as its chord."},
    {5023, "The TS at %s lacks its SC and CS; it is drawn as a chord."},
    {5024, "The spiral record %s does not fit its own chord; it is drawn as a chord."},
    {5025, "The spiral at %s does not fit between its key points; it is drawn as a chord."},
    {5030, "the section is not known; its lines are kept but not used: %s"},
    {5031, "the key is not known here; the line is kept but not used: %s"},
    {5040, "centerline"},
    {5041, "template"},
    {5042, "level across from the centerline"},
    {5043, "entered"},
    {5044, "no finished grade"},
    {5045, "outside the profile"},
    {5046, "an offset without a template"},
    {5047, "outside the template's surface"},
    {5050, "large"},
    {5051, "small"},
    {5052, "longer"},
    {5053, "shorter"},
    {5054, "right"},
    {5055, "left"},
    // LandXML and pictures
    {5100, "Line %s: %s."},
    {5101, "there is no XML in this file"},
    {5102, "the XML cannot be read: %s"},
    {5103, "this is no LandXML document"},
    {5104, "the document holds no alignment"},
    {5105, "the document holds no alignment with geometry"},
    {5106, "the document holds several alignments: %s"},
    {5107, "no alignment is called \"%s\"; there is none"},
    {5108, "no alignment is called \"%s\"; there is %s"},
    {5109, "the alignment \"%s\" has no profile"},
    {5110, "a job cannot have the unit \"%s\""},
    {5111, "a centerline cannot hold the element \"%s\""},
    {5112, "the alignment has too many elements"},
    {5113, "%s lacks rot=\"cw\" or \"ccw\""},
    {5114, "a centerline holds no transition curve of the type \"%s\""},
    {5115, "the element starts %s away from the end of the one before"},
    {5116, "a centerline cannot hold stations that decrease behind an equation"},
    {5117, "there are too many station equations"},
    {5118, "%s has no usable \"%s\""},
    {5119, "%s has no usable %s point"},
    {5120, "%s has no usable station and elevation"},
    {5121, "the profile's stations do not rise"},
    {5122, "the vertical curve overlaps the one before"},
    {5123, "the vertical curve is at an end of the profile or has no usable length"},
    {5130, "The document names no unit; metres were assumed."},
    {5131, "The unit is \"foot\", the international foot; some programs write it for survey feet."},
    {5132, "Line %s: the %s of the curve is %s by its points, but says %s."},
    {5133, "Line %s: the element starts at %s by the lengths before it, but says %s."},
    {5134, "Line %s: alignment \"%s\" has no start station; it starts at 0."},
    {5135,
     "Line %s: alignment \"%s\" has a start station that is no number (\"%s\"); it starts at "
     "0."},
    {5136, "Line %s: the back station of the equation does not fit its internal station."},
    {5137, "The ground profile \"%s\" was left out."},
    {5138, "The further profile \"%s\" of alignment \"%s\" was left out; \"%s\" was taken."},
    {5139, "The profile \"%s\" has fewer than two points and was left out."},
    {5140, "heights and widths in one scale"},
    {5141, "heights %s times"},
    {5142, "cut"},
    {5143, "fill"},
    {5223, "The centerline file %s could not be opened."},
};

static_assert(std::adjacent_find(std::begin(kEntries), std::end(kEntries),
                                 [](const Entry& a, const Entry& b) {
                                   return a.number >= b.number;
                                 }) == std::end(kEntries));

std::string_view BuiltInText(int number) {
  const auto at = std::lower_bound(std::begin(kEntries), std::end(kEntries), number,
                                   [](const Entry& entry, int key) { return entry.number < key; });
  return at != std::end(kEntries) && at->number == number ? at->text : std::string_view();
}

}  // namespace

std::string StringTable::Text(int number) const {
  if (const auto own = overridden_.find(number); own != overridden_.end()) return own->second;
  const std::string_view text = BuiltInText(number);
  return text.empty() ? std::string(kKeyPrefix) + std::to_string(number) : std::string(text);
}

std::string StringTable::Text(int number, std::initializer_list<std::string_view> arguments) const {
  const std::string form = Text(number);
  std::string text;
  auto next = arguments.begin();
  for (std::size_t i = 0; i < form.size(); ++i) {
    if (next != arguments.end() && form.compare(i, 2, "%s") == 0) {
      text += *next++;
      ++i;
    } else {
      text += form[i];
    }
  }
  return text;
}

void StringTable::Override(std::string_view languageFile) {
  while (const auto line = TakeLine(languageFile)) {
    const std::size_t equals = line->find('=');
    if (!line->starts_with(kKeyPrefix) || equals == std::string_view::npos) continue;
    const auto number = ParseInteger(line->substr(kKeyPrefix.size(), equals - kKeyPrefix.size()));
    if (number) overridden_[static_cast<int>(*number)] = line->substr(equals + 1);
  }
}

StringTable& Strings() {
  static StringTable table;
  return table;
}

}  // namespace tarvex
