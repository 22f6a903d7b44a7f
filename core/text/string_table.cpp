#include "core/text/string_table.h"

#include <algorithm>
#include <array>

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
constexpr std::array kEntries = {
    Entry{141, "Coordinate system"},
    // Job files
    Entry{1001, "The coordinate file %s cannot be opened for writing: %s."},
    Entry{1002, "The coordinate file %s cannot be created: %s."},
    Entry{1003, "%s is not a coordinate file, or its header is damaged; nothing was changed."},
    Entry{1004, "The older coordinate file %s cannot be converted: %s. It is as before."},
    Entry{1005,
          "An interrupted change of %s cannot be completed: %s. Nothing is lost: remove the "
          "cause and open the job again."},
    Entry{1006, "The coordinate file %s cannot be read: %s."},
    Entry{
        1007,
        "The coordinate file %s was created, but its folder could not be made durable: %s. Should "
        "the power fail, it may be missing."},
    Entry{1008,
          "The last work on %s was interrupted, and it cannot be finished here: %s. Copy the job's "
          "files, the one that ends in .redo among them, to a place where they can be written, and "
          "open the job there."},
    // 10 behind a text: the change was made, but is not durable; 20 behind it: it is pending
    Entry{1011, "Point %s could not be stored in %s: %s."},
    Entry{1012, "Point %s could not be deleted from %s: %s."},
    Entry{1014, "The points could not be stored in %s: %s. The file is as before."},
    Entry{1015, "%s was not changed: %s."},
    Entry{1016,
          "The work on %s is kept in its .redo file but could not be finished: %s. It is finished "
          "when the job is opened again."},
    Entry{
        1021,
        "Point %s is stored in %s, but the folder could not be made durable: %s. Should the power "
        "fail, the point may be lost."},
    Entry{1022,
          "Point %s is deleted from %s, but the folder could not be made durable: %s. Should the "
          "power fail, it may be there again."},
    Entry{1024,
          "The points are stored in %s, but the folder could not be made durable: %s. Should the "
          "power fail, they may be lost."},
    Entry{1031,
          "Point %s is not yet stored in %s: %s. The change waits beside the file and is completed "
          "when the job is opened again."},
    Entry{1032,
          "Point %s is not yet deleted from %s: %s. The change waits beside the file and is "
          "completed when the job is opened again."},
    Entry{1034,
          "The points are not yet stored in %s: %s. The change waits beside the file and is "
          "completed when the job is opened again."},
    // Shift grids
    Entry{1193, "Loading the shift grid..."},
    Entry{1703, "The grids of the Hungarian system cannot be loaded; no grid correction is made."},
    // Coordinate systems
    Entry{2205, "The projection \""},
    Entry{2206, "\" is not known; the projection of the system was left as it was."},
    Entry{2207, "The library %s cannot be loaded: %s"},
    Entry{2208, "The library %s has no entry \"%s\"."},
    Entry{2210, "This system cannot be used: its ellipsoid is missing or is not like the earth."},
    Entry{2211, "This system cannot be used: its scale factor is missing or far from 1."},
    Entry{2212, "This system cannot be used: its central meridian is not a longitude."},
    Entry{2213, "This system cannot be used: its latitude of origin does not suit the projection."},
    Entry{2214,
          "This system cannot be used: its standard parallels are missing or do not suit the "
          "projection."},
    Entry{2215,
          "This system cannot be used: its azimuth is missing or does not suit the projection."},
    Entry{2216, "This system cannot be used: its false easting or northing is out of range."},
    Entry{2217, "This system cannot be used: its national coefficients are missing."},
    Entry{2218, "This system cannot be used: its Denmark area is not known."},
    Entry{2219, "This system cannot be used: its projection type is not known."},
    Entry{2220, "This system cannot be used: its projection is not available."},
    Entry{2221,
          "This system's datum is another than WGS84, and no shift between the two is known."},
    Entry{2230, "The point was converted."},
    Entry{2231, "The point was converted, but a step was left undone."},
    Entry{2232, "The library that computes this projection is not there or lacks its entry."},
    Entry{2233, "A coordinate is not a number."},
    Entry{2234, "No coordinate system is set."},
    Entry{2235, "The coordinate system cannot be used."},
    Entry{2236, "The point lies outside the area where the projection holds."},
    Entry{2237, "The datum shift of the coordinate system is not available."},
    Entry{2238, "A step of the conversion could not be made."},
    Entry{2239, "The height of the point and the geoid did not settle."},
    Entry{2240, "The national grid of this system is not there; its correction was left undone."},
    Entry{2241, "This system needs its national grid, which is not there."},
    Entry{2248, "The position cannot be converted between NAD27 and NAD83; it is left as it was."},
    Entry{2270, "The catalogue was changed."},
    Entry{2271, "The catalogue holds no system of this name."},
    Entry{2272, "The catalogue already holds a system of this name."},
    Entry{2273, "This cannot be the name of a system."},
    Entry{
        2274,
        "This cannot be the definition of a system: it is empty, or longer than 2,048 characters."},
    Entry{2275, "The catalogue file cannot be read or written; it is as it was."},
    Entry{2276, "The catalogue %s cannot be read (%s); its systems are missing."},
    // Ports and NTRIP: 3000 + error number
    Entry{3003, "The caster gave no answer within 60 seconds."},
    Entry{3005, "The port is not open."},
    Entry{3006, "Reading from the port failed."},
    Entry{3007, "Writing to the port failed."},
    Entry{3009, "The line settings (baud rate, data bits, parity, stop bits) could not be set."},
    Entry{3010, "The queue sizes of the port could not be set."},
    Entry{3011, "The time-outs of the port could not be read."},
    Entry{3012, "The time-outs of the port could not be set."},
    Entry{3013, "The number of waiting bytes could not be read from the port."},
    Entry{3014, "The line errors of the port could not be cleared."},
    Entry{3015, "The output of the port could not be discarded."},
    Entry{3016, "The input of the port could not be discarded."},
    Entry{3017, "The output of the port did not leave in time."},
    Entry{3018, "The break could not be sent."},
    Entry{3019, "No connection, caster or stream was given."},
    Entry{3023, "The file for the source table could not be created."},
    Entry{3024, "The port %s could not be opened."},
    Entry{3025, "Only %s of %s bytes arrived within %s ms."},
    Entry{3029, "The system says: %s."},
    Entry{3032, "The line is not a stream or caster record."},
    Entry{3039, "The caster record has no host or no port."},
    Entry{3040, "The caster did not answer the request."},
    Entry{3083, "The caster has disconnected."},
    Entry{3139, "The caster does not accept this user and password."},
    Entry{3233, "Cancelled."},
    Entry{3281, "The connection to the caster could not be opened."},
    Entry{3300,
          "\"%s\" is not a port: give serial:DEVICE[@BAUD], tcp:HOST:PORT, file:LOG or simulated."},
    Entry{3301,
          "The serial port has no device: give serial:DEVICE[@BAUD], as in "
          "serial:/dev/ttyUSB0@115200."},
    Entry{3302, "\"%s\" is not a baud rate from 110 to 256000."},
    Entry{3303,
          "\"%s\" is not HOST:PORT with a port from 1 to 65535, as in tcp:192.168.1.20:9001."},
    Entry{3304, "The log has no name: give file:LOG."},
    Entry{3310, "Connecting to Server"},
    Entry{3311, "Connecting to broadcaster"},
    Entry{3312, "Loading bases"},
    Entry{3320, "Corrections have not been asked for yet."},
    Entry{3321, "Connecting to %s, mountpoint %s."},
    Entry{3322, "Corrections flow from %s, mountpoint %s."},
    Entry{3323, "%s, mountpoint %s, has sent nothing for %s s."},
    Entry{3324, "%s The next try is in %s s."},
    Entry{3325,
          "%s does not accept the user and password for mountpoint %s. Correct them and connect "
          "again; nothing is tried until then."},
    Entry{3326, "%s has no mountpoint %s. Choose one that exists; nothing is tried until then."},
    Entry{3327, "The corrections cannot be written to the receiver; it is tried again in %s s."},
    Entry{3328, "The corrections have been stopped."},
    Entry{3329, "%s cannot be reached: %s."},
    Entry{
        3330,
        "%s has no mountpoint %s; it has %s. Choose one that exists; nothing is tried until then."},
    Entry{3331, "%s, mountpoint %s, has sent nothing for %s s; no position was sent to it."},
    Entry{3332, "The caster closed the connection without an answer that is understood."},
    Entry{3333, "%s, mountpoint %s, sent no corrections: %s"},
    Entry{3334, "The corrections from %s, mountpoint %s, broke off: %s"},
    Entry{3335, "It has %s."},
    Entry{3367, "The bases of the caster could not be loaded."},
    Entry{3368, "The connection to the mountpoint failed."},
    Entry{3378, "The caster does not know the mountpoint."},
    Entry{3395, "The list of streams of the caster cannot be read back from its file."},
    Entry{3396,
          "The caster speaks TLS (encrypted) at this port, which is not supported; ask for its "
          "plain port."},
    Entry{3397, "The caster refused the request: it answered \"%s\"."},
    Entry{3398,
          "The answer is a web page, not corrections; a network may want a login in a browser."},
    Entry{3399, "The list of streams of the caster is too large."},
    // Reading positions: 3400 - result code
    Entry{3400, "The position was declined."},
    Entry{3401,
          "The connection could not be prepared for reading: another reader has the port, or the "
          "port has failed."},
    Entry{3405, "The receiver sends nothing: look at the cable, the address and the baud rate."},
    Entry{3406, "The receiver sends no position sentence of the chosen kind."},
    Entry{3407, "No fix: the receiver has no position, or is not connected."},
    Entry{3408, "The receiver sent invalid data."},
    Entry{3409, "The receiver was set to another datum; read again."},
    Entry{3410, "The receiver was set to send heights above the ellipsoid; read again."},
    Entry{3411, "The link to the receiver is lost."},
    Entry{3412, "The recording has ended."},
    Entry{3420, "Position accepted."},
    Entry{3431, "The position is not measured: the receiver estimates it (dead reckoning)."},
    Entry{3432, "The position is not measured: it was entered into the receiver."},
    Entry{3433, "The position is not measured: the receiver simulates it."},
    Entry{3434,
          "The receiver sends no height with its position; the elevation is that of height 0."},
    Entry{3435,
          "The receiver sends no geoid separation with its position; its height is the one above "
          "the geoid."},
    Entry{3440, "The receiver repeats its last position."},
    Entry{3441, "The position is %s s old; the limit is %s s."},
    Entry{3442, "The solution is %s; it must be %s or better."},
    Entry{3443, "There are %s satellites; there must be %s or more."},
    Entry{3444, "HRMS is %s; the limit is %s."},
    Entry{3445, "VRMS is %s; the limit is %s."},
    Entry{3446, "PDOP is %s; the limit is %s."},
    Entry{3447, "The age of the corrections is %s s; the limit is %s s."},
    Entry{3448, "The solution is %s; it must be %s."},
    Entry{3450, "unknown"},
    // Keeping what a receiver sends
    Entry{3460, "The stream log %s cannot be created: %s."},
    Entry{3461, "The stream log %s cannot be written any more: %s."},
    Entry{4000,
          "The definition is not well formed: brackets, quotes or commas do not match at \"%s\"."},
    Entry{4001, "The definition is longer than 2,048 characters; the rest of it is not read."},
    Entry{4002, "The definition holds no projected coordinate system (PROJCS)."},
    Entry{4003, "The definition names no datum (DATUM)."},
    Entry{4004,
          "The definition gives no ellipsoid with its semi-major axis and inverse flattening "
          "(SPHEROID)."},
    Entry{4005, "The definition names no projection (PROJECTION)."},
    Entry{4006, "The projection \"%s\" is not known."},
    Entry{4007,
          "The unit of lengths is \"%s\", but lengths are taken as metres: give the false easting "
          "and northing in metres."},
    Entry{4008, "The unit of angles is \"%s\", but angles are taken as degrees."},
    Entry{4009, "The prime meridian is %s, but longitudes are taken from Greenwich."},
    Entry{4010, "The axis %s: northings grow to the north and eastings to the east here."},
    Entry{4011, "The parameter \"%s\", which this projection needs, is missing."},
    Entry{4012, "The parameter \"%s\" is not known and is not used."},
    Entry{4013, "The value of the parameter \"%s\" is not a number."},
    Entry{4014,
          "The definition does not say how its datum lies against WGS84 (TOWGS84): jobs on it need "
          "a datum shift of their own."},
    Entry{4015, "The eastings of System 34 are its own x: they grow to the west."},
    Entry{4016, "The datum shift %s is not three or seven numbers."},
    Entry{4017, "The parameter \"%s\" is given twice."},
    // Datum shifts, grids and localization
    Entry{4100, "The grid file %s does not exist."},
    Entry{4101, "The grid file %s cannot be read: %s."},
    Entry{4102, "%s is not a grid file of this kind: %s."},
    Entry{4103, "The grid file %s is cut short: %s."},
    Entry{4104, "The grid file %s goes on after its last node: %s."},
    Entry{4105, "The grid file %s gives a size that no grid has: %s."},
    Entry{4106, "The grid file %s holds a bad value: %s."},
    Entry{4107, "The grid files %s and %s do not cover the same nodes."},
    Entry{4110, "this is not a localization file: %s"},
    Entry{4111, "the point has no value \"%s\""},
    Entry{4112, "the value of \"%s\" cannot be read: \"%s\""},
    Entry{4113, "the value of \"%s\" is out of range: %s"},
    Entry{4114, "this is not a localization: the record \"%s\" with the units \"%s\" is missing"},
    Entry{4115, "the file cannot be read: %s"},
    Entry{4120, "%s horizontally, scale %s ppm from 1, turned %s clockwise"},
    Entry{4121, "%s vertically, shift %s m, tilt %s ppm to the north, %s ppm to the east"},
    Entry{4130, "With %s the horizontal fit has no check: a blunder in a point cannot be seen."},
    Entry{4131,
          "The control points lie almost on a line: away from it the fit is only as good as the "
          "scale."},
    Entry{
        4132,
        "The control points lie within %s of each other: errors grow with the distance from them."},
    Entry{4133,
          "The scale is %s ppm from 1: check the units, the projection and the points, or fix the "
          "scale."},
    Entry{4134,
          "%s lies %s from the place that the other points give it: check it, or leave it out."},
    Entry{4135,
          "%s of %s points of the job lie outside of the control points, the farthest by %s."},
    Entry{4136, "With %s the vertical fit has no check."},
    Entry{4137, "An inclined plane takes three points: a plain shift was fitted instead."},
    Entry{4138,
          "The points lie on a line, so that the tilt across it is not known: a plain shift was "
          "fitted instead of a plane."},
    Entry{4139,
          "The plane would be steeper than 100 ppm: a plain shift was fitted instead. Check the "
          "elevations and whether a geoid model is missing."},
    Entry{4140, "%s has a large residual: %s horizontally."},
    Entry{4141,
          "The scale is %s ppm from 1, and ground distances here would make it %s ppm: check the "
          "units, the projection and the points, or fix the scale."},
    Entry{4142, "%s has a large residual: %s vertically."},
    Entry{4150, "The library that shifts the datum is missing, or cannot do it in this direction."},
    Entry{4151, "The point lies outside of the grid."},
    Entry{4152, "The grid has no value at this point."},
    Entry{4153, "The datum shift cannot be made."},
    Entry{4154, "none, as chosen: WGS84 latitude and longitude are taken as they are"},
    Entry{4155, "seven parameters: %s, %s, %s m; %s, %s, %s\" (coordinate frame); %s ppm"},
    Entry{4156, "NAD27 by the NADCON grids %s in %s (nadconv)"},
    Entry{4157, "NTv2 grid %s, %s to %s"},
    Entry{4158, "geocentric translations of the grid %s"},
    Entry{4160, "The point lies outside of the geoid model."},
    Entry{4161, "The geoid model is missing or damaged."},
    Entry{4162, "The shift grid is missing or damaged; no grid correction is made."},
    Entry{4163, "There is no datum shift \"%s\"."},
    Entry{4164, "The definition gives no TOWGS84 that the datum could be shifted by."},
    Entry{4165,
          "\"%s\" is not a datum shift: TOWGS84= takes dX,dY,dZ in metres, and behind them "
          "rX,rY,rZ in "
          "seconds of arc and the scale in ppm, or nothing."},
    Entry{4166,
          "This projection takes WGS84 positions and shifts the datum itself: no shift can be "
          "named."},
    Entry{4167, "There are no NADCON grids (.las and .los) in %s: NAD27 positions are refused."},
    Entry{4168, "(none)"},
    Entry{4170, "Packing the grid..."},
    Entry{4171, "The grid of the east correction has no value at this point; it is taken as 0."},
    Entry{4172, "The grid of the north correction has no value at this point; it is taken as 0."},
    Entry{4173,
          "The grids of the east and north corrections have no value at this point; both are taken "
          "as 0."},
    Entry{4174, "The grid of the height correction has no value at this point; it is taken as 0."},
    Entry{4175,
          "The grids of the east and height corrections have no value at this point; both are "
          "taken as 0."},
    Entry{4176,
          "The grids of the north and height corrections have no value at this point; both are "
          "taken as 0."},
    Entry{4177, "The grid's correction changes so much here that no place on the plane has it."},
    Entry{4178, "The grids \"%s\" belong to another country than this projection."},
    Entry{4179,
          "The datum is WGS84, or as good as WGS84: \"%s\" shifts from an older datum and would "
          "move every point."},
    // Roads
    Entry{5000, "the line is too short to be a record: %s"},
    Entry{5001, "the point id is negative: %s"},
    Entry{5002, "fields are missing: %s"},
    Entry{5003, "the record kind \"%s\" is not known; taken as a plain vertex"},
    Entry{5004, "a number is out of range: %s"},
    Entry{5005, "the file ends where the radius line should follow"},
    Entry{5006, "taken as a radius line, though it does not say so: %s"},
    Entry{5007, "Line %s: the file holds more key points than a centerline may have."},
    Entry{5008, "%s is too large to be a road file."},
    Entry{5009, "the last key point was dropped: the file lacks its closing record \"0,0,L,0,0\""},
    Entry{5010,
          "The key points carry displayed stations: they were counted through the equations."},
    Entry{5011,
          "Station equation %s falls back or lies outside the alignment; no equation is used."},
    Entry{5012, "All key points carry the same station: restation the file from its coordinates."},
    Entry{5013, "The station of %s is suspect: it looks %s too %s, both neighbours miss it alike."},
    Entry{5014, "The coordinates of %s are suspect: it misses its arc by %s, and both neighbours."},
    Entry{5015, "The centre of the curve at %s is suspect: its end misses the radius by %s."},
    Entry{5016, "%s to %s: by coordinates %s %s than by the stations."},
    Entry{5017, "The station falls before %s."},
    Entry{5018, "The arc at %s turns %s more than the angle of its radius line."},
    Entry{5019, "At %s the centre lies to the %s, the sign of the angle says the other side."},
    Entry{5020, "The azimuth field of %s is suspect: it is %s off the spiral's own tangent."},
    Entry{5021, "At %s the azimuth jumps by %s."},
    Entry{5022, "The curve at %s has no usable centre; it is drawn as its chord."},
    Entry{5023, "The TS at %s lacks its SC and CS; it is drawn as a chord."},
    Entry{5024, "The spiral record %s does not fit its own chord; it is drawn as a chord."},
    Entry{5025, "The spiral at %s does not fit between its key points; it is drawn as a chord."},
    Entry{5030, "the section is not known; its lines are kept but not used: %s"},
    Entry{5031, "the key is not known here; the line is kept but not used: %s"},
    Entry{5040, "centerline"},
    Entry{5041, "template"},
    Entry{5042, "level across from the centerline"},
    Entry{5043, "entered"},
    Entry{5044, "no finished grade"},
    Entry{5045, "outside the profile"},
    Entry{5046, "an offset without a template"},
    Entry{5047, "outside the template's surface"},
    Entry{5050, "large"},
    Entry{5051, "small"},
    Entry{5052, "longer"},
    Entry{5053, "shorter"},
    Entry{5054, "right"},
    Entry{5055, "left"},
    // LandXML and pictures
    Entry{5100, "Line %s: %s."},
    Entry{5101, "there is no XML in this file"},
    Entry{5102, "the XML cannot be read: %s"},
    Entry{5103, "this is no LandXML document"},
    Entry{5104, "the document holds no alignment"},
    Entry{5105, "the document holds no alignment with geometry"},
    Entry{5106, "the document holds several alignments: %s"},
    Entry{5107, "no alignment is called \"%s\"; there is none"},
    Entry{5108, "no alignment is called \"%s\"; there is %s"},
    Entry{5109, "the alignment \"%s\" has no profile"},
    Entry{5110, "a job cannot have the unit \"%s\""},
    Entry{5111, "a centerline cannot hold the element \"%s\""},
    Entry{5112, "the alignment has too many elements"},
    Entry{5113, "%s lacks rot=\"cw\" or \"ccw\""},
    Entry{5114, "a centerline holds no transition curve of the type \"%s\""},
    Entry{5115, "the element starts %s away from the end of the one before"},
    Entry{5116, "a centerline cannot hold stations that decrease behind an equation"},
    Entry{5117, "there are too many station equations"},
    Entry{5118, "%s has no usable \"%s\""},
    Entry{5119, "%s has no usable %s point"},
    Entry{5120, "%s has no usable station and elevation"},
    Entry{5121, "the profile's stations do not rise"},
    Entry{5122, "the vertical curve overlaps the one before"},
    Entry{5123, "the vertical curve is at an end of the profile or has no usable length"},
    Entry{5130, "The document names no unit; metres were assumed."},
    Entry{5131,
          "The unit is \"foot\", the international foot; some programs write it for survey feet."},
    Entry{5132, "Line %s: the %s of the curve is %s by its points, but says %s."},
    Entry{5133, "Line %s: the element starts at %s by the lengths before it, but says %s."},
    Entry{5134, "Line %s: alignment \"%s\" has no start station; it starts at 0."},
    Entry{5135,
          "Line %s: alignment \"%s\" has a start station that is no number (\"%s\"); it starts at "
          "0."},
    Entry{5136, "Line %s: the back station of the equation does not fit its internal station."},
    Entry{5137, "The ground profile \"%s\" was left out."},
    Entry{5138, "The further profile \"%s\" of alignment \"%s\" was left out; \"%s\" was taken."},
    Entry{5139, "The profile \"%s\" has fewer than two points and was left out."},
    Entry{5140, "heights and widths in one scale"},
    Entry{5141, "heights %s times"},
    Entry{5142, "cut"},
    Entry{5143, "fill"},
    Entry{5223, "The centerline file %s could not be opened."},
};

static_assert(std::adjacent_find(kEntries.begin(), kEntries.end(),
                                 [](const Entry& a, const Entry& b) {
                                   return a.number >= b.number;
                                 }) == kEntries.end());

std::string_view BuiltInText(int number) {
  const auto at = std::lower_bound(kEntries.begin(), kEntries.end(), number,
                                   [](const Entry& entry, int key) { return entry.number < key; });
  return at != kEntries.end() && at->number == number ? at->text : std::string_view();
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
