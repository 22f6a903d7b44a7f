// The plane similarity that leads from a grid to a site's own coordinates, fitted to control
// points.
#include <cstdio>
#include <numbers>

#include "tarvex/coordsys/localization/horizontal_fit.h"

int main() {
  const tarvex::ControlPoints points = {
      {.name = "A",
       .grid = {.northingM = 5236000.000, .eastingM = 466000.000, .elevationM = 0.0},
       .local = {.northingM = 1000.000, .eastingM = 5000.000, .elevationM = 0.0}},
      {.name = "B",
       .grid = {.northingM = 5236200.000, .eastingM = 466000.000, .elevationM = 0.0},
       .local = {.northingM = 1200.004, .eastingM = 5000.000, .elevationM = 0.0}},
      {.name = "C",
       .grid = {.northingM = 5236000.000, .eastingM = 466300.000, .elevationM = 0.0},
       .local = {.northingM = 1000.000, .eastingM = 5300.008, .elevationM = 0.0}},
  };
  const tarvex::HorizontalFit fit =
      tarvex::FitHorizontal(points, tarvex::HorizontalMethod::Similarity);
  if (fit.result != tarvex::FitResult::Fitted) return 1;

  std::printf("scale %.8f rotation %.6f deg\n", fit.similarity.scale(),
              fit.similarity.rotationRad() * 180.0 / std::numbers::pi);
  for (const tarvex::ControlPoint& point : points) {
    const tarvex::PlanePoint local = fit.similarity.ToLocal(
        {.northingM = point.grid.northingM, .eastingM = point.grid.eastingM});
    std::printf("%s dN %+.4f dE %+.4f\n", point.name.c_str(),
                local.northingM - point.local.northingM, local.eastingM - point.local.eastingM);
  }
}
