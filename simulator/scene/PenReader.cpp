// Reads the pen of a scene file.
#include "scene/PenReader.h"

namespace Simulator {
namespace {

constexpr size_t cnMostStrokes = 200;
constexpr size_t cnMostPoints = 200;
constexpr double cdLongestPause = 3600.0;
constexpr double cdLatestStroke = 1e6;

/// [x, y], or [x, y, pause].
ClPenPoint ReadPoint(const nlohmann::json& oJson, const std::string& sPlace) {
  // Only numbers are printed: anything else may be nested too deeply for the stack.
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
  if (!(oPoint.dPause >= 0.0 && oPoint.dPause <= cdLongestPause))
    Fail("the pause must lie between 0 and 3600");
  return oPoint;
}

ClStrokeDescription ReadStroke(ClObject o) {
  ClStrokeDescription oStroke;
  oStroke.dAt = o.Number("at", oStroke.dAt, 0.0, cdLatestStroke);
  oStroke.dAfter = o.Number("after", oStroke.dAfter, 0.0, cdLatestStroke);
  oStroke.dSpeed = o.Number("speed", oStroke.dSpeed, 0.1, 10000.0);
  oStroke.bCurve = o.Choice("line", 0, {"curve", "straight"}) == 0;
  o.Each("points", cnMostPoints, [&](const nlohmann::json& oPoint, const std::string& sWhere) {
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
  o.Each("strokes", cnMostStrokes, [&](const nlohmann::json& oStroke, const std::string& sWhere) {
    oPen.aStrokes.push_back(ReadStroke(ClObject(oStroke, sWhere)));
  });
  o.Done();
  return oPen;
}

}  // namespace Simulator
