#!/usr/bin/env python3
"""Builds data/Predef1.csl and coordsys/catalogue/state_plane_table.cpp from the tables in data/tables.

    scripts/build_catalogue.py            write both
    scripts/build_catalogue.py --check    fail when one of them is not what the tables give
"""

import csv
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TABLES = ROOT / "data" / "tables"
CATALOGUE = ROOT / "data" / "Predef1.csl"
ZONES = ROOT / "coordsys" / "catalogue" / "state_plane_table.cpp"
FAMILIES = ROOT / "coordsys" / "projections" / "projection_families.cpp"


def projection_families():
    """The rows of the program's table of families: its own name of a type to (number, definition name)."""
    rows = re.findall(r'\{\.type = (\w+),\s+\.name = "([^"]+)"', FAMILIES.read_text(encoding="utf-8"))
    return {family: (number, name) for number, (family, name) in enumerate(rows)}


TYPES = projection_families()
PROJECTIONS = [name for _, name in TYPES.values()]
LCC2, LCC27, TM, TM27 = (TYPES[family][0] for family in (
    "LambertConformalConic2SP", "LambertConformalConic27", "TransverseMercator", "TransverseMercator27"))
LCC1, ALASKA, CASS, S34, OSTN02, RD2000, RD2004 = (TYPES[family][0] for family in (
    "LambertConformalConic1SP", "TransverseMercatorAlaska27", "CassiniSoldner", "TransverseMercator34",
    "TransverseMercatorOstn02", "ObliqueStereographicRd2000", "ObliqueStereographicRd2004"))
HOM, HOM27, HOM83 = (TYPES[family][0] for family in ("ObliqueMercator", "ObliqueMercator27", "ObliqueMercator83"))

# Datums that are realisations of ITRF to a metre or better, for which EPSG lists no shift to WGS 84.
GEOCENTRIC = ("CGCS2000", "NAD83", "SRGI2013", "GDM2000", "CR-SIRGAS", "ONGD17", "REDGEOMIN", "SIRGAS")

CLARKE_1866 = ("Clarke 1866", "6378206.4", "294.978698213898")
GRS_1980 = ("GRS 1980", "6378137", "298.257222101")
WGS_84 = ("WGS 84", "6378137", "298.257223563")
BESSEL = ("Bessel 1841", "6377397.155", "299.1528128")
INTERNATIONAL = ("International 1924", "6378388", "297")
NO_SHIFT = ["0"] * 7

# Alaska zones 2 to 9 on NAD27: false easting (US survey feet), central meridian (seconds of arc, west).
ALASKA_CONSTANTS = {n: (c, cm) for n, c, cm in [
    (2, 500000, 511200), (3, 500000, 525600), (4, 500000, 540000), (5, 500000, 554400),
    (6, 500000, 568800), (7, 700000, 583200), (8, 500000, 597600), (9, 600000, 612000)]}


def rows_of(name):
    with open(TABLES / name, encoding="utf-8", newline="") as file:
        return list(csv.DictReader((line for line in file if not line.startswith("#")),
                                   delimiter="\t", quoting=csv.QUOTE_NONE))


def number(value):
    """The shortest decimals that read back to the same double."""
    text = repr(float(value) + 0.0)
    if "e" in text:
        text = f"{float(value):.12f}".rstrip("0").rstrip(".")
    return text[:-2] if text.endswith(".0") else text


def scale(row):
    """The defining ratio where there is one: 1-1/15000."""
    if row.get("k0_fraction"):
        return number(1 - 1 / float(row["k0_fraction"].split("/")[1]))
    return number(row["k0"])


def plain(name):
    return name.replace('"', "'").replace(",", ";")


def definition(name, system, datum, ellipsoid, shift, projection, parameters, code=None):
    spheroid = f'SPHEROID["{ellipsoid[0]}",{number(ellipsoid[1])},{number(ellipsoid[2])}]'
    towgs84 = ",TOWGS84[" + ",".join(number(v) for v in shift) + "]" if shift else ""
    text = (f'PROJCS["{plain(name)}",GEOGCS["{plain(system)}",DATUM["{plain(datum)}",{spheroid}{towgs84}],'
            f'PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],PROJECTION["{PROJECTIONS[projection]}"]')
    for keyword, value in parameters:
        text += f',PARAMETER["{keyword}",{number(value)}]'
    text += ',UNIT["metre",1]'
    if code:
        text += f',AUTHORITY["EPSG","{code}"]'
    return text + "]"


def parameters(kind, lat0, lon0, lat1, lat2, k0, azimuth, rectified, fe, fn):
    result = [("latitude_of_origin", lat0), ("central_meridian", lon0)]
    if kind in (LCC2, LCC27):
        result += [("standard_parallel_1", lat1 or lat0), ("standard_parallel_2", lat2 or lat0)]
        if float(k0) != 1:
            result.append(("scale_factor", k0))
    elif kind in (HOM83, HOM27, HOM):
        result += [("azimuth", azimuth), ("rectified_grid_angle", rectified), ("scale_factor", k0)]
    elif kind != CASS:
        result.append(("scale_factor", k0))
    return result + [("false_easting", fe), ("false_northing", fn)]


# --- the tables, as systems (name, definition) ---------------------------------------------------

def epsg_type(row):
    if row["method_code"] == "9812":  # false origin at the natural origin
        return HOM27 if row["proj_type"] == "8" else HOM83
    return int(row["proj_type"])


def epsg_shift(row):
    if row["towgs84_dx"]:
        return [row["towgs84_" + k] for k in ("dx", "dy", "dz", "rx_pv", "ry_pv", "rz_pv", "ppm")]
    geocentric = row["name"].startswith(GEOCENTRIC) and row["ellipsoid"] in ("GRS 1980", "WGS 84", "CGCS2000")
    return NO_SHIFT if geocentric else None


def epsg_definition(row, name=None):
    kind = epsg_type(row)
    system = row["name"].split(" / ")[0]
    k0 = number(float(row["k0"] or 1) * float(row["ell_scale"] or 1))
    values = parameters(kind, row["lat0"], row["lon0"], row["lat1"], row["lat2"], k0, row["azimuth"],
                        row["rect_angle"], row["fe_m"], row["fn_m"])
    if kind == ALASKA:
        c, cm = ALASKA_CONSTANTS[int(row["zone"].split()[-1])]
        values += [("C", c), ("CM", cm)]
    return definition(name or row["name"], system, row["datum"], (row["ellipsoid"], row["a"], row["inv_f"]),
                      epsg_shift(row), kind, values, row["epsg"])


def epsg_name(row):
    system = row["name"].split(" / ")[0] if " / " in row["name"] else row["datum"]
    return "/".join(part.replace("/", "-") for part in (row["country"].upper(), system, row["zone"]))


def state_plane_kind(row, nad27):
    kind = int(row["proj_type"])
    if nad27 and row["state"] == "Alaska" and kind in (TM, TM27, ALASKA):
        return ALASKA
    if nad27:
        return {LCC2: LCC27, LCC1: LCC27, TM: TM27, HOM83: HOM27}.get(kind, kind)
    return kind


def exact_azimuth(row):
    """Alaska zone 1 lies at the arc tangent of -3/4; tables print it to ten digits."""
    return "323.130102354156" if row["azimuth_deg"] else ""


def state_plane_values(row, nad27):
    kind = state_plane_kind(row, nad27)
    k0 = number(float(scale(row)) * float(row["ell_scale"]))
    azimuth = exact_azimuth(row)
    fe, fn = row["fe_m"], row["fn_m"]
    if kind == HOM27:
        fe, fn = "5000000", "-5000000"
    values = parameters(kind, row["lat0_deg"], row["lon0_deg"], row["lat1_deg"], row["lat2_deg"], k0, azimuth,
                        azimuth, fe, fn)
    if kind == ALASKA:
        c, cm = ALASKA_CONSTANTS[int(row["fips"][2:])]
        values += [("C", c), ("CM", cm)]
    return kind, values


def state_plane_systems(nad27, epsg):
    system = "NAD27" if nad27 else "NAD83"
    datum = "North_American_Datum_1927" if nad27 else "North_American_Datum_1983"
    for row in rows_of("state_plane_nad27.tsv" if nad27 else "state_plane_nad83.tsv"):
        kind, values = state_plane_values(row, nad27)
        known = epsg.get(row["epsg"])
        own_datum = known["datum"] if nad27 and known else datum
        shift = epsg_shift(known) if nad27 and known else NO_SHIFT
        ellipsoid = CLARKE_1866 if nad27 else GRS_1980
        name = f"USA/{system}/{row['name'].replace('/', '-')}"
        text = definition(f"{system} / {row['name']}", system, own_datum, ellipsoid, shift, kind, values)
        yield name, text


UTM_GROUPS = [("wgs84", "WGS84"), ("nad83", "NAD83"), ("nad27", "NAD27"), ("ed50", "ED50"), ("etrs89", "ETRS89"),
              ("wgs72", "WGS72"), ("sirgas2000", "SIRGAS2000"), ("gda94", "GDA94"), ("gda2020", "GDA2020")]


def utm_systems(epsg):
    for column, label in UTM_GROUPS:
        for row in rows_of("utm.tsv"):
            code = row["epsg_" + column]
            if not code or code not in epsg:
                continue
            south = " South" if row["hemisphere"] == "S" else ""
            yield code, (f"UTM/UTM {label} Zone {row['zone']}{south}", epsg_definition(epsg[code]))


def national_systems(epsg):
    """The systems of the projection types that belong to one country each."""
    danish = [("latitude_of_origin", 0), ("central_meridian", 9), ("scale_factor", 0.9996), ("false_easting", 500000),
              ("false_northing", 0)]
    for area, name in enumerate(("System34 Jutland", "System34 Seeland", "System34 Bornholm", "UTM zone 32")):
        yield f"DENMARK/ED50/{name}", definition(name, "ED50", "European Datum 1950", INTERNATIONAL, NO_SHIFT, S34,
                                                 danish + [("denmark_area", area)])
    yield "FRANCE/RGF93/Lambert-93", epsg_definition(epsg["2154"], "RGF93 / Lambert-93")
    grid = epsg["27700"]
    values = parameters(OSTN02, grid["lat0"], grid["lon0"], "", "", grid["k0"], "", "", grid["fe_m"], grid["fn_m"])
    yield "GREAT BRITAIN/OSGB36/National Grid OSTN02", definition(
        "OSGB36 / National Grid OSTN02", "OSGB36", grid["datum"], (grid["ellipsoid"], grid["a"], grid["inv_f"]),
        epsg_shift(grid), OSTN02, values)
    rd = epsg["28992"]
    values = parameters(RD2000, rd["lat0"], rd["lon0"], "", "", rd["k0"], "", "", rd["fe_m"], rd["fn_m"])
    for year, kind, shift in (
            ("RD2000", RD2000, (565.04, 49.91, 465.84, -0.409394387439, 0.359705195614, -1.86849100035, 4.0772)),
            ("RD2004", RD2004, (565.2369, 50.0087, 465.658, -0.406857330322, 0.350732676543, -1.87034738361, 4.0812))):
        yield f"NETHERLANDS/Amersfoort/{year}", definition(f"Amersfoort / {year}", "Amersfoort", rd["datum"], BESSEL,
                                                           shift, kind, values)


def all_systems():
    """Name to definition and area; the area is empty where the name says it."""
    epsg = {row["epsg"]: row for row in rows_of("epsg_systems.tsv")}
    systems, used = {}, {"2154"}
    for nad27 in (False, True):
        used |= {row["epsg"] for row in rows_of("state_plane_nad27.tsv" if nad27 else "state_plane_nad83.tsv")}
        systems.update((name, (text, "")) for name, text in state_plane_systems(nad27, epsg))
    for code, (name, text) in utm_systems(epsg):
        used.add(code)
        systems[name] = text, epsg[code]["area"]
    systems.update((name, (text, "")) for name, text in national_systems(epsg))
    for code, row in epsg.items():
        if code in used:
            continue
        name = epsg_name(row)
        if name in systems:
            name += f" (EPSG {code})"
        assert name not in systems, name
        systems[name] = epsg_definition(row), row["area"]
    return systems


def catalogue_text():
    lines = ["# Predefined coordinate systems, built by scripts/build_catalogue.py; edit data/tables instead.",
             "# Name TAB definition TAB area. Data marked EPSG: EPSG Dataset v10.076, owned by IOGP (see data/README.md)."]
    systems = all_systems()
    for name, (text, area) in sorted(systems.items()):
        assert len(text.encode()) <= 2048 and "\t" not in name + text + area, name
        lines.append(f"{name}\t{text}" + (f"\t{area}" if area else ""))
    lines.append("# end")  # a copy without it was cut short
    return "\n".join(lines) + "\n"


# --- the built-in zones --------------------------------------------------------------------------

FIELDS = ("latitude_of_origin", "central_meridian", "standard_parallel_1", "standard_parallel_2", "azimuth",
          "scale_factor", "false_easting", "false_northing", "C", "CM")


def zone_line(row, nad27):
    kind, values = state_plane_values(row, nad27)
    values = dict(values)
    shared = values.get("standard_parallel_2", values.get("azimuth", 0))
    numbers = [values["latitude_of_origin"], values["central_meridian"], values.get("standard_parallel_1", 0), shared,
               values.get("azimuth", 0), values.get("scale_factor", 0), values["false_easting"],
               values["false_northing"], values.get("C", 0), values.get("CM", 0)]
    head = f'    {{{int(row["fips"])}, {kind}, "{row["state"]}", "{row["name"].replace("/", "-")}",'
    return head + "\n     " + ", ".join(number(n) for n in numbers) + "},"


def zones_text():
    out = ["// Built by scripts/build_catalogue.py from data/tables; edit those instead.",
           '#include "coordsys/catalogue/state_plane_table.h"', "", "namespace tarvex {", "namespace {", "",
           "// clang-format off"]
    for nad27, name in ((False, "kNad83"), (True, "kNad27")):
        rows = rows_of("state_plane_nad27.tsv" if nad27 else "state_plane_nad83.tsv")
        out.append(f"constexpr StatePlaneRow {name}[] = {{")
        out += [zone_line(row, nad27) for row in rows]
        out.append("};")
    out += ["// clang-format on", "", "}  // namespace", "",
            "const std::span<const StatePlaneRow> kNad83StatePlane = kNad83;",
            "const std::span<const StatePlaneRow> kNad27StatePlane = kNad27;", "", "}  // namespace tarvex", ""]
    return "\n".join(out)


def main():
    check = sys.argv[1:] == ["--check"]
    stale = []
    for path, text in ((CATALOGUE, catalogue_text()), (ZONES, zones_text())):
        if check:
            if not path.exists() or path.read_text(encoding="utf-8") != text:
                stale.append(path.name)
        else:
            path.write_text(text, encoding="utf-8")
            print(f"{path.name}: {text.count(chr(10))} lines")
    if stale:
        sys.exit(f"not what data/tables give: {', '.join(stale)}; run scripts/build_catalogue.py")


if __name__ == "__main__":
    main()
