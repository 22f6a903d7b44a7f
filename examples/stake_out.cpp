// Station and offset of a point along the centerline of a road.
#include <cstdio>

#include "tarvex/roads/alignment.h"
#include "tarvex/roads/centerline_file.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: stake_out ROAD.cl\n");
    return 1;
  }
  tarvex::Road road;
  const auto loaded = tarvex::LoadCenterline(tarvex::SystemFiles(), road, argv[1]);
  if (!loaded) {
    std::fprintf(stderr, "%s is no centerline\n", argv[1]);
    return 1;
  }
  const auto made = tarvex::Alignment::FromChain((*loaded)->elements);
  if (!made) return 1;
  const auto& first = (*loaded)->elements.front();
  const auto place =
      made->Closest({.northing = first.northing + 25.0, .easting = first.easting + 40.0});
  if (!place) return 1;
  std::printf("station %.3f offset %+.3f\n", place->station, place->offset);
}
