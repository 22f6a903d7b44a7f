// The alignments of a LandXML document.
#include <cstdio>

#include "tarvex/exchange/landxml.h"

int main() {
  const auto document = tarvex::ReadLandXml(
      "<LandXML xmlns='http://www.landxml.org/schema/LandXML-1.2'>"
      "<Units><Metric linearUnit='meter'/></Units><Alignments>"
      "<Alignment name='Access road' length='100' staStart='50'><CoordGeom>"
      "<Line><Start>5236000 466000</Start><End>5236100 466000</End></Line>"
      "</CoordGeom></Alignment></Alignments></LandXML>");
  if (!document) {
    std::fprintf(stderr, "%s\n", document.failure().text.c_str());
    return 1;
  }
  for (const tarvex::LandXmlAlignment& alignment : document->alignments) {
    const auto& elements = alignment.centerline.elements;
    std::printf("%s: %zu key points, station %.3f to %.3f\n", alignment.name.c_str(),
                elements.size(), elements.front().station, elements.back().station);
  }
}
