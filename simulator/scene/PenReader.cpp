// Reads the pen of a scene file.
#include "scene/PenReader.h"

namespace Simulator {
namespace {

constexpr size_t g_cnMostStrokes = 200;
constexpr size_t g_cnMostPoints = 200;
constexpr double g_cdLongestPause = 3600.0;
constexpr double g_cdLatestStroke = 1e6;

/// [x, y], or [x, y, pause].
ClPenPoint ReadPoint(const nlohmann::json& oJson, const std::string& sPlace) {
  // Told only of numbers: anything else may be nested deeper than there is stack to print it.
  const auto FailShape = [&](const std::string& sReason) {
    throw ClSimError(eBadValue, "scene: \"" + sPlace + "\" " + sReason);
  };
  if (!oJson.is_array() || oJson.size() < 2 || oJson.size() > 3) FailShape("must be [x, y] or [x, y, pause]");
  for (const nlohmann::json& oNumber : oJson)
    if (!oNumber.is_number()) FailShape("must hold numbers only");
  const auto Fail = [&](const std::string& sReason) {
    throw ClSimError(eBadValue, "scene: \"" + sPlace + "\" is " + oJson.dump() + " and " + sReason);
  };
  ClPenPoint oPoint{oJson[0].get<double>(), oJson[1].get<double>(), 0.0};
  if (oJson.size() == 3) oPoint.dPause = oJson[2].get<double>();
  for (const double d : {oPoint.dXMm, oPoint.dYMm})
    if (!(d >= -50.0 && d <= 130.0)) Fail("x and y must lie between -50 and 130");
  if (!(oPoint.dPause >= 0.0 && oPoint.dPause <= g_cdLongestPause))
    Fail("the pause must lie between 0 and 3600");
  return oPoint;
}

ClStrokeDescription ReadStroke(ClObject o) {
  ClStrokeDescription oStroke;
  oStroke.dAt = o.Number("at", oStroke.dAt, 0.0, g_cdLatestStroke);
  oStroke.dAfter = o.Number("after", oStroke.dAfter, 0.0, g_cdLatestStroke);
  oStroke.dSpeed = o.Number("speed", oStroke.dSpeed, 0.1, 10000.0);
  oStroke.bCurve = o.Choice("line", 0, {"curve", "straight"}) == 0;
  o.Each("points", g_cnMostPoints, [&](const nlohmann::json& oPoint, const std::string& sWhere) {
    oStroke.aPoints.push_back(ReadPoint(oPoint, sWhere));
  });
  if (oStroke.aPoints.empty()) o.Fail("must have at least one point", "points");
  o.Done();
  return oStroke;
}

}  // namespace

ClPenDescription ReadPen(ClObject o) {
  ClPenDescription oPen;
  oPen.dDiameterMm = o.Number("diameter", oPen.dDiameterMm, 0.1, 10.0);
  oPen.dStrength = o.Number("strength", oPen.dStrength, 0.0, 1.0);
  o.Each("strokes", g_cnMostStrokes, [&](const nlohmann::json& oStroke, const std::string& sWhere) {
    oPen.aStrokes.push_back(ReadStroke(ClObject(oStroke, sWhere)));
  });
  o.Done();
  return oPen;
}

}  // namespace Simulator
