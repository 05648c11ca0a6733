// What all calibration records of the geometric family have in common: tags, and reading and writing them
// whole.
#pragma once

class ClStream;

/// Three tags before a record that a derived class defines.
///
/// Domain   seekable streams, big-endian whatever their setting, which is restored.
/// Threads  thread-bound.
/// Errors   ClExKelvarin -40 for foreign tags; ClExStreamUnexpectedEnd -201 for a record that is cut short,
///          whatever the stream's failure flag says. The object then holds what was read so far.
class ClCalibrateDataBase {
 public:
  virtual ~ClCalibrateDataBase() = default;
  /// True when there is calibration data in the object.
  virtual bool IsValid() const = 0;
  /// Drops the data, keeps the tags.
  virtual void Clear() = 0;

  void Read(ClStream& oStream);
  void Read(const char* szPath);
  void Write(ClStream& oStream) const;
  void Write(const char* szPath) const;

  /// The version text of the last read: four bytes, which need not end in a zero.
  const char (&ReadVersion() const)[4] { return m_szReadVersion; }

  /// True when the three tags and the version of the last read agree.
  bool operator==(const ClCalibrateDataBase& oOther) const;

 protected:
  ClCalibrateDataBase() = default;
  ClCalibrateDataBase(const ClCalibrateDataBase&) = default;
  ClCalibrateDataBase& operator=(const ClCalibrateDataBase&) = default;

  /// The record itself, on a stream that is set up for it.
  virtual void ReadStream(ClStream& oStream);
  virtual void WriteStream(ClStream& oStream) const;

  char m_szMagic[4] = "CAL";
  char m_szType[4] = "NOT";
  char m_szVersion[4] = "SET";
  char m_szReadVersion[4] = {};
};
