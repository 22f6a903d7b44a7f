// Coordinate systems: every projection family forward and inverse beside PROJ on the same points,
// in batches and point by point, and the search in the catalogue. Times are of 1024 points.
#include <benchmark/benchmark.h>
#include <proj.h>

#include <array>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "coordsys/catalogue/system_catalogue.h"
#include "coordsys/definition/definition_reader.h"
#include "coordsys/projections/cassini_soldner.h"
#include "coordsys/projections/lanes.h"
#include "coordsys/projections/oblique_cylindrical.h"
#include "coordsys/projections/oblique_mercator.h"
#include "coordsys/projections/projection.h"
#include "core/units/units.h"

namespace tarvex {
namespace {

constexpr std::size_t kPoints = 1024;

struct Job {
  const char* name;
  const char* proj;
  const char* projection;
  const char* parameters;
  double south, north, west, east;
};

constexpr Job kJobs[] = {
    {"transverse Mercator", "+proj=utm +zone=32 +ellps=bessel", "Transverse_Mercator",
     R"(PARAMETER["latitude_of_origin",0],PARAMETER["central_meridian",9],PARAMETER["scale_factor",0.9996],PARAMETER["false_easting",500000],PARAMETER["false_northing",0])",
     45, 55, 6, 12},
    {"Lambert",
     "+proj=lcc +lat_0=46.5 +lon_0=3 +lat_1=49 +lat_2=44 +x_0=700000 +y_0=6600000 +ellps=bessel",
     "Lambert_Conformal_Conic_2SP",
     R"(PARAMETER["latitude_of_origin",46.5],PARAMETER["central_meridian",3],PARAMETER["standard_parallel_1",49],PARAMETER["standard_parallel_2",44],PARAMETER["false_easting",700000],PARAMETER["false_northing",6600000])",
     41, 51, -5, 9},
    {"double stereographic",
     "+proj=sterea +lat_0=52.156160556 +lon_0=5.387638889 +k=0.9999079 +x_0=155000 +y_0=463000 "
     "+ellps=bessel",
     "Oblique_Stereographic",
     R"(PARAMETER["latitude_of_origin",52.156160556],PARAMETER["central_meridian",5.387638889],PARAMETER["scale_factor",0.9999079],PARAMETER["false_easting",155000],PARAMETER["false_northing",463000])",
     50.5, 53.7, 3.2, 7.3},
    {"polar stereographic",
     "+proj=stere +lat_0=90 +lon_0=0 +k=0.994 +x_0=2000000 +y_0=2000000 +ellps=bessel",
     "Stereographic",
     R"(PARAMETER["latitude_of_origin",90],PARAMETER["central_meridian",0],PARAMETER["scale_factor",0.994],PARAMETER["false_easting",2000000],PARAMETER["false_northing",2000000])",
     70, 89, -170, 170},
    {"oblique stereographic", "+proj=stere +lat_0=47 +lon_0=20 +k=0.9999 +ellps=bessel",
     "Stereographic",
     R"(PARAMETER["latitude_of_origin",47],PARAMETER["central_meridian",20],PARAMETER["scale_factor",0.9999],PARAMETER["false_easting",0],PARAMETER["false_northing",0])",
     44, 50, 16, 24},
    {"oblique Mercator A",
     "+proj=omerc +no_uoff +lat_0=57 +lonc=-133.6666666667 +alpha=-36.869897645844 "
     "+gamma=-36.869897645844 +k=0.9999 +x_0=5000000 +y_0=-5000000 +ellps=bessel",
     "Oblique_Mercator_83",
     R"(PARAMETER["latitude_of_origin",57],PARAMETER["central_meridian",-133.6666666667],PARAMETER["azimuth",-36.869897645844],PARAMETER["rectified_grid_angle",-36.869897645844],PARAMETER["scale_factor",0.9999],PARAMETER["false_easting",5000000],PARAMETER["false_northing",-5000000])",
     54.6, 60, -141, -130},
};

// Kernels that our module serves behind the closed library's interface, measured directly and
// through it.
constexpr Job kLibraryJobs[] = {
    {"Cassini",
     "+proj=cass +lat_0=10.4416666667 +lon_0=-61.3333333333 +x_0=86501 +y_0=65379 +ellps=bessel",
     "Cassini_Soldner",
     R"(PARAMETER["latitude_of_origin",10.4416666667],PARAMETER["central_meridian",-61.3333333333],PARAMETER["false_easting",86501],PARAMETER["false_northing",65379])",
     9.8, 11.1, -62, -60.5},
    {"oblique Mercator B",
     "+proj=omerc +lat_0=4 +lonc=115 +alpha=53.3158204722 +gamma=53.1301023611 +k=0.99984 "
     "+x_0=590476 +y_0=442857 +ellps=bessel",
     "Oblique_Mercator",
     R"(PARAMETER["latitude_of_origin",4],PARAMETER["central_meridian",115],PARAMETER["azimuth",53.3158204722],PARAMETER["rectified_grid_angle",53.1301023611],PARAMETER["scale_factor",0.99984],PARAMETER["false_easting",590476],PARAMETER["false_northing",442857])",
     1, 7, 109, 119},
    {"double cylindrical (EOV)",
     "+proj=somerc +lat_0=47.1443937222 +lon_0=19.0485717778 +k_0=0.99993 +x_0=650000 +y_0=200000 "
     "+ellps=bessel",
     "Oblique_Mercator_EOV",
     R"(PARAMETER["latitude_of_origin",47.1443937222],PARAMETER["central_meridian",19.0485717778],PARAMETER["scale_factor",0.99993],PARAMETER["false_easting",650000],PARAMETER["false_northing",200000])",
     45.8, 48.5, 16.2, 22.8},
};

struct Points {
  std::vector<double> latitude;
  std::vector<double> longitude;
  std::vector<double> northing = std::vector<double>(kPoints);
  std::vector<double> easting = std::vector<double>(kPoints);

  explicit Points(const Job& job) {
    std::mt19937 random(17);
    std::uniform_real_distribution<double> lat(job.south, job.north);
    std::uniform_real_distribution<double> lon(job.west, job.east);
    for (std::size_t i = 0; i < kPoints; ++i) {
      latitude.push_back(lat(random) * kRadiansPerDegree);
      longitude.push_back(lon(random) * kRadiansPerDegree);
    }
  }
};

ProjectionRecord RecordOf(const Job& job) {
  const std::string definition =
      std::string(
          R"(PROJCS["",GEOGCS["",DATUM["",SPHEROID["",6377397.155,299.1528128]]],PROJECTION[")") +
      job.projection + "\"]," + job.parameters + "]";
  ProjectionRecord record;
  DefinitionFacts facts;
  ReadDefinition(definition, record, facts, nullptr);
  return record;
}

using Maker = MadeProjection (*)(const ProjectionParameters&);

std::shared_ptr<const Projection> ProjectionOf(const Job& job, Maker maker) {
  const ProjectionRecord record = RecordOf(job);
  return maker ? maker(ParametersOf(record)).value() : MakeProjection(record).value();
}

struct DestroyPj {
  void operator()(PJ* pj) const { proj_destroy(pj); }
};
using Pj = std::unique_ptr<PJ, DestroyPj>;

void Project(const Pj& pj, PJ_DIRECTION direction, std::vector<double>& x, std::vector<double>& y) {
  proj_trans_generic(pj.get(), direction, x.data(), sizeof(double), x.size(), y.data(),
                     sizeof(double), y.size(), nullptr, 0, 0, nullptr, 0, 0);
}

// A job of the same kind both ways: our run of a projection, PROJ's run.
struct Way {
  std::string name;
  std::function<void(benchmark::State&, const Projection&)> ours;
  std::function<void(benchmark::State&)> peer;
};

void Add(const std::string& job, const std::shared_ptr<const Projection>& projection,
         const Way& way) {
  benchmark::RegisterBenchmark(
      (job + way.name + "/tarvex").c_str(),
      [way, projection](benchmark::State& state) { way.ours(state, *projection); });
  benchmark::RegisterBenchmark((job + way.name + "/PROJ").c_str(), way.peer);
}

std::array<Way, 2> Arrays(const std::shared_ptr<Points>& points, const std::shared_ptr<Pj>& pj) {
  const auto forth = [=](benchmark::State& state, const Projection& projection) {
    Points own = *points;
    for (auto _ : state) {
      benchmark::DoNotOptimize(
          projection.Forward(own.latitude, own.longitude, own.northing, own.easting));
      benchmark::ClobberMemory();
    }
  };
  const auto forthPeer = [=](benchmark::State& state) {
    Points own = *points;
    for (auto _ : state) {
      own.easting = points->longitude;
      own.northing = points->latitude;
      Project(*pj, PJ_FWD, own.easting, own.northing);
      benchmark::ClobberMemory();
    }
  };
  const auto back = [=](benchmark::State& state, const Projection& projection) {
    Points own = *points;
    for (auto _ : state) {
      benchmark::DoNotOptimize(
          projection.Inverse(own.northing, own.easting, own.latitude, own.longitude));
      benchmark::ClobberMemory();
    }
  };
  const auto backPeer = [=](benchmark::State& state) {
    Points own = *points;
    for (auto _ : state) {
      own.longitude = points->easting;
      own.latitude = points->northing;
      Project(*pj, PJ_INV, own.longitude, own.latitude);
      benchmark::ClobberMemory();
    }
  };
  return {{{"", forth, forthPeer}, {", back", back, backPeer}}};
}

// One position a call: what collecting and staking do.
std::array<Way, 2> SinglePoints(const std::shared_ptr<Points>& points,
                                const std::shared_ptr<Pj>& pj) {
  const auto forth = [=](benchmark::State& state, const Projection& projection) {
    for (auto _ : state) {
      for (std::size_t i = 0; i < kPoints; ++i) {
        PlanePoint point;
        benchmark::DoNotOptimize(
            projection.Forward(LatLon{points->latitude[i], points->longitude[i]}, point));
        benchmark::DoNotOptimize(point);
      }
    }
  };
  const auto back = [=](benchmark::State& state, const Projection& projection) {
    for (auto _ : state) {
      for (std::size_t i = 0; i < kPoints; ++i) {
        LatLon position;
        benchmark::DoNotOptimize(
            projection.Inverse(PlanePoint{points->northing[i], points->easting[i]}, position));
        benchmark::DoNotOptimize(position);
      }
    }
  };
  const auto peer = [=](PJ_DIRECTION direction, const std::vector<double>& x,
                        const std::vector<double>& y) {
    return [=, &x, &y](benchmark::State& state) {
      for (auto _ : state) {
        for (std::size_t i = 0; i < kPoints; ++i) {
          benchmark::DoNotOptimize(
              proj_trans(pj->get(), direction, proj_coord(x[i], y[i], 0.0, 0.0)));
        }
      }
    };
  };
  return {{{", single", forth, peer(PJ_FWD, points->longitude, points->latitude)},
           {", single, back", back, peer(PJ_INV, points->easting, points->northing)}}};
}

void SearchCatalogue(benchmark::State& state) {
  for (auto _ : state) {
    const SystemCatalogue catalogue(SystemFiles(), std::string(TARVEX_DATA) + "/");
    benchmark::DoNotOptimize(catalogue.Search("texas south"));
  }
}
BENCHMARK(SearchCatalogue)
    ->Name("open the catalogue and search/tarvex")
    ->Unit(benchmark::kMillisecond);

void AddFamily(const Job& job, Maker maker) {
  const auto points = std::make_shared<Points>(job);
  const auto pj = std::make_shared<Pj>(proj_create(nullptr, job.proj));
  const auto projection = ProjectionOf(job, maker);
  WithoutFourLanes(true);
  const auto onTwoLanes = ProjectionOf(job, maker);
  WithoutFourLanes(false);
  if (projection->Forward(points->latitude, points->longitude, points->northing, points->easting)) {
    std::abort();
  }
  const std::string name = job.name;
  for (const Way& way : Arrays(points, pj)) Add(name, projection, way);
  for (const Way& way : Arrays(points, pj)) Add(name + ", without AVX2", onTwoLanes, way);
  for (const Way& way : SinglePoints(points, pj)) Add(name, projection, way);
}

const bool kAdded = [] {
  for (const Job& job : kJobs) AddFamily(job, nullptr);
  AddFamily(kLibraryJobs[0], MakeCassiniSoldner);
  AddFamily(kLibraryJobs[1], MakeObliqueMercatorB);
  AddFamily(kLibraryJobs[2], MakeObliqueCylindrical);
  return true;
}();

}  // namespace
}  // namespace tarvex
