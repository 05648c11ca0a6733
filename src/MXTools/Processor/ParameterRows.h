// One row for each parameter of a processor, from which both of its descriptions are made.
#pragma once

#include "MXTools/ParameterContainer.h"
#include "MXTools/ParameterInterface.h"

/// Takes a provider's parameters row by row and adds them to the container or to the older list that it was
/// made for: published name, name and description in the older list, member. Rows without an older name are
/// for the container alone.
///
/// Ownership  as that of the container or the list.
/// Threads    thread-bound.
class ClParameterRows {
 public:
  struct StChoice {
    long nValue;
    const char* szName;
  };

  explicit ClParameterRows(ClParameterContainer& oPublished) : m_pPublished(&oPublished) {}
  explicit ClParameterRows(ClParameterInterface& oOlder) : m_pOlder(&oOlder) {}

  bool IsOlder() const { return m_pOlder != nullptr; }
  /// The published parameters of the rows from here on have descriptions as well.
  void DescribeBoth() { m_bDescribeBoth = true; }

  /// Connectors of images: access 5 for an input, 6 for an output.
  void Input(const char* szName, const char* szOlderName, const char* szDescription, ClImage** ppImage);
  void Output(const char* szName, const char* szOlderName, const char* szDescription, ClImage** ppImage);
  void Input(const char* szName, ClImage** ppImage) { Input(szName, nullptr, nullptr, ppImage); }
  void Output(const char* szName, ClImage** ppImage) { Output(szName, nullptr, nullptr, ppImage); }
  /// "InImage" and "OutImage", as most processors with one of each have them.
  void InOutImages(ClImage** ppIn, ClImage** ppOut);

  /// The limits are those of the older list, as AddParameter takes them; the published number has none.
  template <typename T>
  void Number(const char* szName, const char* szOlderName, const char* szDescription, T* pMember,
              double dMinimum = 1.0, double dMaximum = -1.0) {
    if (m_pPublished != nullptr) Describe(m_pPublished->AddNumeric(szName, pMember), szDescription);
    if (m_pOlder != nullptr)
      m_pOlder->AddParameter(pMember, szOlderName, szDescription, ClParameterInterface::eIn, dMinimum,
                             dMaximum);
  }
  template <typename T>
  void Number(const char* szName, T* pMember) {
    if (m_pPublished != nullptr) m_pPublished->AddNumeric(szName, pMember);
  }

  /// A bool, an enumeration of 32 bits, or a number whose values have names, with limits in the older list.
  template <typename T, size_t N>
  void Choice(const char* szName, const char* szOlderName, const char* szDescription, T* pMember,
              const StChoice (&aChoices)[N], double dMinimum = 0, double dMaximum = 0) {
    if (m_pPublished != nullptr) {
      auto* pParameter = m_pPublished->AddParam<TpParameterEnumPointer<T, ClParameter>>(szName);
      pParameter->BindVariable(pMember);
      for (const StChoice& oChoice : aChoices) {
        pParameter->AddValue(static_cast<T>(oChoice.nValue), oChoice.szName);
      }
      Describe(pParameter, szDescription);
      return;
    }
    constexpr auto eIn = ClParameterInterface::eIn;
    ClParameterInterface::ClParameter* pEntry = nullptr;
    if constexpr (std::is_same_v<T, bool>) {
      pEntry = m_pOlder->AddBool(pMember, szOlderName, szDescription, eIn);
    } else if constexpr (std::is_enum_v<T>) {
      static_assert(sizeof(T) == sizeof(int), "the older list reads and writes 32 bits");
      pEntry = m_pOlder->AddEnum(pMember, szOlderName, szDescription, nullptr, eIn);
    } else {
      pEntry = m_pOlder->AddParameter(pMember, szOlderName, szDescription, eIn, dMinimum, dMaximum);
    }
    SetNames(*pEntry, aChoices, N);
  }
  /// A choice between "False" and "True".
  void Flag(const char* szName, const char* szOlderName, const char* szDescription, bool* pbMember);
  /// "OutImageType": the eight element types and "default".
  void OutImageType(unsigned char* pnType);

 private:
  void Describe(ClParameter* pParameter, const char* szDescription) const;
  void Image(const char* szName, const char* szOlderName, const char* szDescription, ClImage** ppImage,
             bool bOutput);
  static void SetNames(ClParameterInterface::ClParameter& oEntry, const StChoice* pChoices, size_t nCount);

  ClParameterContainer* m_pPublished = nullptr;
  ClParameterInterface* m_pOlder = nullptr;
  bool m_bDescribeBoth = false;
};
