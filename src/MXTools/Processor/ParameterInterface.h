// The older description of a processor's parameters: a list of entries that point at its members.
#pragma once

#include <boost/noncopyable.hpp>
#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

class ClGraph;
class ClImage;
class ClStream;

/// Ownership  owns its entries; the members that they point at are the processor's and must outlive the list.
/// Threads    thread-bound.
/// Errors     ClExKelvarin -33 for a stored list that is another one; ClException -50 for NextParam without
///            an iteration.
class ClParameterInterface : private boost::noncopyable {
 public:
  enum EType : int {
    eByte = 0,
    eShort = 1,
    eAngle = 2,  ///< unsigned, the full range of 16 bits is a turn
    eLong = 3,
    eDouble = 4,
    eFloat = 5,
    eVoid = 6,
    eImage = 7,
    eBool = 8,
    eEnum = 9,
    eString = 11,
    eGraph = 12,
    eComment = 13
  };
  enum EDirection : int { eIn = 0, eOut = 1, eInOut = 2, eOptional = 3 };

  /// One entry.
  ///
  /// Range   numbers are truncated and limited to what the member holds. In a stream an eLong has 32 bits.
  /// Errors  -21 "The buffer size is too small."; -37 for a name of an enumeration that is not there; -44 for
  ///         a value of another kind; -209 for a name that the enumeration has not.
  class ClParameter {
   public:
    ClParameter() = default;
    ClParameter(const ClParameter& oOther) { *this = oOther; }
    virtual ~ClParameter() = default;
    /// Copies everything but the position in a list.
    ClParameter& operator=(const ClParameter& oOther);

    virtual void WriteToStream(ClStream& oStream) const;
    /// 0; with the entry as it was, -33 for the record of another parameter and -201 for one cut short.
    virtual long ReadFromStream(ClStream& oStream);

    const char* GetName() const { return m_szName.c_str(); }
    const char* GetDescription() const { return m_szDescription.c_str(); }
    /// Names, each ended by a zero, the list by a further one; NULL when there are none.
    const char* GetEnumList() const { return m_szEnumList.empty() ? nullptr : m_szEnumList.data(); }
    EType Type() const { return m_eType; }
    EDirection Direction() const { return m_eDirection; }
    double Minimum() const { return m_dMinimum; }
    double Maximum() const { return m_dMaximum; }
    double Default() const { return m_dDefault; }
    bool IsFixedRange() const { return m_bFixedRange; }
    const char* szType() const;
    const char* szDir() const;
    std::string szValue() const;
    /// The value as text: its number, the name of its enumeration, "Image" or "Graph".
    void GetszValue(char* szText, unsigned int nSize) const;

    void SetName(const char* szName) { m_szName = szName != nullptr ? szName : ""; }
    void SetDescription(const char* szText) { m_szDescription = szText != nullptr ? szText : ""; }
    /// Without pValues the names stand for 0, 1, 2 and so on.
    void SetEnumList(const char* szList, const long* pValues);
    /// Equal limits mean a fixed range.
    void SetRange(double dMinimum, double dMaximum);
    bool RangeDefined() const { return m_dMinimum != m_dMaximum; }
    bool IsFloat() const { return m_eType == eDouble || m_eType == eFloat; }

    double GetValue() const;
    void SetValue(double dValue);
    void SetValue(ClImage* pImage);
    void SetValue(ClImage& oImage) { SetValue(&oImage); }
    void SetValue(ClGraph* pGraph);
    ClImage* GetImage() const;
    ClGraph* GetGraph() const;
    void SetEnum(long nValue) { SetValue(static_cast<double>(nValue)); }
    void SetEnum(const char* szName);
    /// "No Enum Val" for a value that the list has not.
    const char* EnumToStr(long nValue) const;
    void FmtInt(char* szText, unsigned int nSize, long nValue) const;

   private:
    friend class ClParameterInterface;

    void SetValue(void* pTarget, double dValue) const;
    void SetPointer(EType eType, const void* pValue);
    const void* GetPointer(EType eType) const;
    void WriteValue(ClStream& oStream) const;

    EType m_eType = eVoid;
    EDirection m_eDirection = eInOut;
    bool m_bFixedRange = false;
    double m_dMinimum = 0;
    double m_dMaximum = 0;
    double m_dDefault = 0;
    void* m_pValue = nullptr;
    unsigned int m_nValueSize = 0;  ///< bytes of the member; an eLong may be an int or a long
    std::string m_szEnumList;
    std::vector<int> m_aEnumValues;
    bool m_bMarked = false;
    bool m_bLocked = false;  ///< set by a stored record alone: the value stays as it is
    std::string m_szName;
    std::string m_szDescription;
    std::unique_ptr<ClParameter> m_pNext;
  };

  ClParameterInterface() = default;
  virtual ~ClParameterInterface() { Clear(); }

  virtual void WriteToStream(ClStream& oStream) const;
  /// The records stand in the order of the list.
  virtual void ReadFromStream(ClStream& oStream);

  /// All forms append an entry and give it back.
  ClParameter* AddParameter(void** pMember, const char* szName, const char* szDescription,
                            EDirection eDirection, EType eType, bool bFixedRange);
  /// A number of type unsigned char, short, unsigned short (an angle), int, long, float or double; its value
  /// now is the default. The limits 1.0 and -1.0 stand for a third around it; limits saturate to the range of
  /// T.
  template <typename T>
  ClParameter* AddParameter(T* pMember, const char* szName, const char* szDescription, EDirection eDirection,
                            double dMinimum, double dMaximum) {
    ClParameter* pEntry = Append(pMember, sizeof(T), szName, szDescription, eDirection, TypeOf<T>());
    SetNumericRange(pEntry, dMinimum, dMaximum, static_cast<double>(std::numeric_limits<T>::lowest()),
                    static_cast<double>(std::numeric_limits<T>::max()));
    return pEntry;
  }
  ClParameter* AddParameter(ClImage** pMember, const char* szName, const char* szDescription,
                            EDirection eDirection, double dMinimum, double dMaximum);
  ClParameter* AddParameter(ClGraph** pMember, const char* szName, const char* szDescription,
                            EDirection eDirection, double dMinimum, double dMaximum);
  ClParameter* AddParameterString(char* szBuffer, long nSize, const char* szName, const char* szDescription,
                                  EDirection eDirection);
  ClParameter* AddBool(bool* pMember, const char* szName, const char* szDescription, EDirection eDirection);
  /// The member has 32 bits.
  ClParameter* AddEnum(void* pMember, const char* szName, const char* szDescription, const char* szEnumList,
                       EDirection eDirection);
  ClParameter* AddComment(const char* szText);

  long Count() const { return m_nCount; }
  /// The first entry, which starts an iteration; NULL for an empty list.
  ClParameter* FirstParam();
  /// The next one; after the last it is NULL, and the iteration has ended.
  ClParameter* NextParam();
  /// NULL when there is none. Names are compared without regard to case.
  ClParameter* GetParam(long nIndex) const;
  ClParameter* GetParam(const char* szName) const;
  ClParameter* GetParameter(long nIndex) const { return GetParam(nIndex); }
  void Clear();

  /// Replaces the limits 1.0 and -1.0 by two and four thirds of the value, the smaller one first.
  static void ProcessRanges(double dValue, double& rdMinimum, double& rdMaximum);

 private:
  template <typename T>
  static constexpr EType TypeOf() {
    if constexpr (std::is_same_v<T, unsigned char>) return eByte;
    if constexpr (std::is_same_v<T, short>) return eShort;
    if constexpr (std::is_same_v<T, unsigned short>) return eAngle;
    if constexpr (std::is_same_v<T, int> || std::is_same_v<T, long>) return eLong;
    if constexpr (std::is_same_v<T, float>) return eFloat;
    static_assert(std::is_same_v<T, unsigned char> || std::is_same_v<T, short> ||
                      std::is_same_v<T, unsigned short> || std::is_same_v<T, int> ||
                      std::is_same_v<T, long> || std::is_same_v<T, float> || std::is_same_v<T, double>,
                  "a number that a parameter can be");
    return eDouble;
  }
  ClParameter* Append(void* pMember, size_t nValueSize, const char* szName, const char* szDescription,
                      EDirection eDirection, EType eType);
  static void SetNumericRange(ClParameter* pEntry, double dMinimum, double dMaximum, double dLowest,
                              double dHighest);

  std::unique_ptr<ClParameter> m_pFirst;
  ClParameter* m_pLast = nullptr;
  ClParameter* m_pActEntry = nullptr;
  long m_nCount = 0;
};
