// Feeds names and texts of properties: a text that is taken reads back and is taken again, a refused one
// changes nothing.
#include "MXTools/HandleProperties.h"
#include "StreamBytes.h"

namespace {

enum ELight { eLightOff = 0, eLightOn = 5 };

class ClProperties : public ClHandleProperties {
 public:
  void OnQueryPropertys(ClParameterContainer& oContainer) override {
    oContainer.AddNumeric("i", &m_nInt);
    oContainer.AddNumeric("u", &m_nUnsigned);
    oContainer.AddNumeric("l", &m_nLong);
    oContainer.AddNumeric("b", &m_nByte);
    oContainer.AddNumeric("w", &m_nShort);
    oContainer.AddNumeric("d", &m_dDouble);
    ClParameterContainer& oInner = *oContainer.AddContainer("in");
    auto* pStrict = oInner.AddNumeric("s", &m_nStrict);
    pStrict->SetLowerBoundary(-10);
    pStrict->SetUpperBoundary(10);
    pStrict->SetFlags(static_cast<unsigned char>(pStrict->GetFlags() | ClParameter::cnStrict));
    auto* pClamped = oInner.AddNumeric("c", &m_nClamped);
    pClamped->SetLowerBoundary(1);
    pClamped->SetUpperBoundary(9);
    pClamped->SetFlags(static_cast<unsigned char>(pClamped->GetFlags() | ClParameter::cnClamp));
    oInner.AddParam<TpParameterString<char*, ClParameter, sizeof(m_szText)>>("t")->BindVariable(&m_pText);
    auto* pLight = oInner.AddParam<TpParameterEnumPointer<ELight, ClParameter>>("e");
    pLight->AddValue(eLightOff, "off");
    pLight->AddValue(eLightOn, "on");
    pLight->BindVariable(&m_eLight);
  }
  void CheckLimits() const {
    Require(m_nStrict >= -10 && m_nStrict <= 10, "strict limits hold");
    Require(m_nClamped >= 1 && m_nClamped <= 9, "clamped limits hold");
  }

 protected:
  const char* VersionText() const override { return "1.0"; }

 private:
  int m_nInt = 0;
  unsigned int m_nUnsigned = 0;
  long m_nLong = 0;
  unsigned char m_nByte = 0;
  unsigned short m_nShort = 0;
  double m_dDouble = 0;
  int m_nStrict = 0;
  int m_nClamped = 5;
  char m_szText[12] = "abc";
  char* m_pText = m_szText;
  ELight m_eLight = eLightOff;
};

/// The text of a property; empty when there is none.
std::string TextOf(ClProperties& oProperties, const std::string& sName) {
  char szText[512] = "";
  unsigned int nSize = sizeof(szText);
  Refused([&] { oProperties.GetProperty(sName.c_str(), szText, &nSize); });
  return szText;
}

}  // namespace

std::vector<Bytes> Seeds() {
  std::vector<Bytes> aSeeds;
  for (const char* szSeed :
       {"i -12", "u 0xFF", "l 9223372036854775807", "b 255", "w 1e3", "d -2.5e-3", "d inf", "l nan", "u -0",
        "d 0", "in.s 10", ".in.c 11", "in.t text", "in.e On", "Version 2", "in ", "nothing.at.all 1"})
    aSeeds.push_back(BytesOf(szSeed, ' '));
  return aSeeds;
}

void Feed(const Bytes& aInput) {
  ClFuzzInput oInput(aInput);
  ClProperties oProperties;
  while (!oInput.IsEmpty()) {
    const std::string sName = oInput.Text();
    const std::string sValue = oInput.Text();
    const std::string sBefore = TextOf(oProperties, sName);
    const bool bRefused = Refused([&] { oProperties.SetProperty(sName.c_str(), sValue.c_str()); });
    const std::string sAfter = TextOf(oProperties, sName);
    oProperties.CheckLimits();
    if (bRefused) {
      Require(sAfter == sBefore, "a refused text changes nothing");
      continue;
    }
    oProperties.SetProperty(sName.c_str(), sAfter.c_str());
    Require(TextOf(oProperties, sName) == sAfter, "a text that was read is taken as the same value");
    long nValue = 0;
    Refused([&] {
      oProperties.GetPropertyLong(sName.c_str(), &nValue);
      oProperties.SetPropertyLong(sName.c_str(), nValue);
    });
    double dValue = 0;
    Refused([&] {
      oProperties.GetPropertyDouble(sName.c_str(), &dValue);
      oProperties.SetPropertyDouble(sName.c_str(), dValue);
    });
    Require(TextOf(oProperties, sName) == sAfter, "a number that was read is taken as the same value");
  }
}
