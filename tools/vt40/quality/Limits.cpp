// Limits of Appendix F of the electronic biometric transmission specification.
#include "quality/Limits.h"

#include <array>

namespace {

using Row = StQualityRow;

constexpr unsigned int cnLimited = 500;
constexpr std::array<double, cnFrequencies> cadSine = {0.905, 0.797, 0.694, 0.598, 0.513,
                                                       0.437, 0.371, 0.312, 0.255, 0.200};
constexpr double cdMostResponse = 1.05;
constexpr double cdMostAlong = 406.4;  // micrometres: 0.016 inch
constexpr double cdMostOffLine = 7.65;
constexpr double cdMostNoise = 3.5;
constexpr double cdLeastWithin = 0.999;
constexpr double cdLeastGreys = 200;
// Of the bright and of the dark sheet.
constexpr double cadMostRows[] = {2, 1}, cadMostAreas[] = {12, 3};

void Add(std::vector<Row>& aRows, const std::string& sName, const char* szUnit, unsigned int nDpi,
         double dMeasured, Row::EBound eBound, double dLimit) {
  aRows.push_back({sName, szUnit, nDpi, dMeasured, nDpi == cnLimited ? eBound : Row::eNone, dLimit});
}

const char* DirectionOf(bool bAlongX) {
  return bAlongX ? " across" : " down";
}

}  // namespace

double StQualityRow::Margin() const {
  return eBound == eNone ? 0 : eBound == eLeast ? dMeasured - dLimit : dLimit - dMeasured;
}

double LeastResponse(ESheetKind eKind, double dFrequency) {
  if (eKind == eBars) return 3.04105e-4 * dFrequency * dFrequency - 7.99095e-2 * dFrequency + 1.02774;
  return cadSine[static_cast<size_t>(dFrequency) - 1];
}

void AddRows(const StResponse& oResponse, unsigned int nDpi, std::vector<Row>& aRows) {
  const std::string sName = caszSheetNames[oResponse.eKind] + std::string(DirectionOf(oResponse.bAlongX));
  if (oResponse.aPlaces.empty()) {
    // A pattern that is not seen keeps nothing of its contrast.
    Add(aRows, sName + ", least", "", nDpi, 0, Row::eLeast, LeastResponse(oResponse.eKind, 1));
    return;
  }
  double dMost = 0;
  for (size_t n = 0; n < oResponse.aFrequencies.size(); ++n) {
    const double dFrequency = oResponse.aFrequencies[n];
    dMost = std::max(dMost, oResponse.Most(n));
    Add(aRows, sName + ", " + std::to_string(static_cast<int>(dFrequency)) + " per mm", "", nDpi,
        oResponse.Least(n), Row::eLeast, LeastResponse(oResponse.eKind, dFrequency));
  }
  Add(aRows, sName + ", most", "", nDpi, dMost, Row::eMost, cdMostResponse);
}

void AddRows(const StGeometry& oGeometry, unsigned int nDpi, std::vector<Row>& aRows) {
  const std::string sName = std::string("lines") + DirectionOf(oGeometry.bAlongX);
  Add(aRows, sName + ", distances by what is allowed", "", nDpi, oGeometry.dAcross, Row::eMost, 1);
  Add(aRows, sName + ", distances", "um", nDpi, oGeometry.dAcrossMicrometres, Row::eNone, 0);
  Add(aRows, sName + ", distances", "pixels", nDpi, oGeometry.dAcrossMicrometres / 25400 * nDpi, Row::eNone,
      0);
  Add(aRows, sName + ", straightness", "um", nDpi, oGeometry.dAlong, Row::eMost, cdMostAlong);
  Add(aRows, sName + ", straightness", "pixels", nDpi, oGeometry.dAlong / 25400 * nDpi, Row::eNone, 0);
}

void AddRows(const StLinearity& oLinearity, unsigned int nDpi, std::vector<Row>& aRows) {
  Add(aRows, "steps, off the line", "greys", nDpi, oLinearity.dWorst, Row::eMost, cdMostOffLine);
  Add(aRows, "steps, greys from dark to bright", "greys", nDpi, oLinearity.dSlope, Row::eNone, 0);
}

void AddRows(const StEvenness& oEvenness, ESheetKind eKind, double dSwing, unsigned int nDpi,
             std::vector<Row>& aRows) {
  const std::string sName = caszSheetNames[eKind];
  const size_t n = eKind == eBright ? 0 : 1;
  Add(aRows, sName + ", noise", "greys", nDpi, oEvenness.dNoise, Row::eMost, cdMostNoise);
  if (dSwing > 0 && oEvenness.dNoise > 0)
    Add(aRows, sName + ", signal to noise", "", nDpi, dSwing / oEvenness.dNoise, Row::eNone, 0);
  Add(aRows, sName + ", neighbouring rows", "greys", nDpi, oEvenness.dRows, Row::eMost, cadMostRows[n]);
  Add(aRows, sName + ", neighbouring columns", "greys", nDpi, oEvenness.dColumns, Row::eMost, cadMostRows[n]);
  Add(aRows, sName + ", pixels near their area's mean", "", nDpi, oEvenness.dWithin, Row::eLeast,
      cdLeastWithin);
  Add(aRows, sName + ", between areas", "greys", nDpi, oEvenness.dMostArea - oEvenness.dLeastArea, Row::eMost,
      cadMostAreas[n]);
}

void AddGreyRange(unsigned int nGreys, const char* szStage, unsigned int nDpi, std::vector<Row>& aRows) {
  Add(aRows, std::string(szStage) + ", grey values", "", nDpi, nGreys, Row::eLeast, cdLeastGreys);
  Add(aRows, std::string(szStage) + ", share of all greys", "", nDpi, nGreys / 256.0, Row::eNone, 0);
}
