// What reads the objects of a scene file, key by key.
#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "scene/SimError.h"

namespace Simulator {

/// Reads one JSON object. Each key is asked for once; Done refuses keys that nobody asked for.
class ClObject {
 public:
  using Json = nlohmann::json;

  ClObject(const Json& oJson, std::string sPlace) : m_oJson(oJson), m_sPlace(std::move(sPlace)) {
    if (!oJson.is_object()) Fail("must be an object");
  }

  const Json* Find(const char* szKey) {
    m_aKnown.emplace_back(szKey);
    const auto it = m_oJson.find(szKey);
    return it == m_oJson.end() ? nullptr : &*it;
  }

  std::string Text(const char* szKey, const std::string& sDefault) {
    const Json* p = Find(szKey);
    if (!p) return sDefault;
    if (!p->is_string()) Fail("must be a text", szKey);
    return p->get<std::string>();
  }

  bool Flag(const char* szKey, bool bDefault) {
    const Json* p = Find(szKey);
    if (!p) return bDefault;
    if (!p->is_boolean()) Fail("must be true or false", szKey);
    return p->get<bool>();
  }

  double Number(const char* szKey, double dDefault, double dLow, double dHigh) {
    const Json* p = Find(szKey);
    if (!p) return dDefault;
    if (!p->is_number()) Fail("must be a number", szKey);
    const double d = p->get<double>();
    if (!(d >= dLow && d <= dHigh)) FailRange(szKey, p->dump(), dLow, dHigh);
    return d;
  }

  int64_t Whole(const char* szKey, int64_t nDefault, int64_t nLow, int64_t nHigh) {
    const Json* p = Find(szKey);
    if (!p) return nDefault;
    if (!p->is_number_integer()) Fail("must be a whole number", szKey);
    const double d = p->get<double>();
    if (!(d >= static_cast<double>(nLow) && d <= static_cast<double>(nHigh)))
      FailRange(szKey, p->dump(), static_cast<double>(nLow), static_cast<double>(nHigh));
    return p->get<int64_t>();
  }

  /// The position of a text in a list.
  size_t Choice(const char* szKey, size_t nDefault, const std::vector<std::string>& aChoices) {
    const std::string sText = Text(szKey, aChoices[nDefault]);
    std::string sList;
    for (size_t i = 0; i < aChoices.size(); ++i) {
      if (aChoices[i] == sText) return i;
      sList += (i ? ", \"" : "\"") + aChoices[i] + "\"";
    }
    Fail("is \"" + sText + "\" and must be one of " + sList, szKey);
  }

  void Each(const char* szKey, size_t nMost,
            const std::function<void(const Json&, const std::string&)>& fnRead) {
    const Json* p = Find(szKey);
    if (!p) return;
    if (!p->is_array()) Fail("must be a list", szKey);
    if (p->size() > nMost)
      Fail("has " + std::to_string(p->size()) + " entries; at most " + std::to_string(nMost) + " are allowed",
           szKey);
    for (size_t i = 0; i < p->size(); ++i) fnRead((*p)[i], Place(szKey) + "[" + std::to_string(i) + "]");
  }

  void Done() const {
    for (const auto& oItem : m_oJson.items()) {
      bool bKnown = false;
      for (const std::string& sKey : m_aKnown) bKnown = bKnown || sKey == oItem.key();
      if (!bKnown) Fail("is not a known key", oItem.key().c_str());
    }
  }

  std::string Place(const char* szKey = nullptr) const {
    if (!szKey) return m_sPlace.empty() ? "scene" : m_sPlace;
    return m_sPlace.empty() ? szKey : m_sPlace + "." + szKey;
  }

  [[noreturn]] void Fail(const std::string& sReason, const char* szKey = nullptr) const {
    throw ClSimError(eBadValue, "scene: \"" + Place(szKey) + "\" " + sReason);
  }

 private:
  [[noreturn]] void FailRange(const char* szKey, const std::string& sValue, double dLow, double dHigh) const {
    std::ostringstream oText;
    oText << "is " << sValue << " and must lie between " << dLow << " and " << dHigh;
    Fail(oText.str(), szKey);
  }

  const Json& m_oJson;
  std::string m_sPlace;
  std::vector<std::string> m_aKnown;
};

}  // namespace Simulator
