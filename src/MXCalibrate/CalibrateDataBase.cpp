// The settings of the stream around a calibration record, and its tags.
#include "MXCalibrate/CalibrateDataBase.h"

#include <cstring>

#include "MXTools/Exception.h"
#include "MXTools/FileStream.h"
#include "MXTools/NewFile.h"

namespace {

/// Makes the stream big-endian and short transfers raise, for its own lifetime.
class ClCalibrationSettings {
 public:
  explicit ClCalibrationSettings(ClStream& oStream)
      : m_oStream(oStream),
        m_bRead(oStream.SetBigEndian4Read(true)),
        m_bWrite(oStream.SetBigEndian4Write(true)),
        m_bFailureFlag(oStream.m_bFailureFlag) {
    oStream.m_bFailureFlag = true;
  }
  ~ClCalibrationSettings() {
    m_oStream.SetBigEndian4Read(m_bRead);
    m_oStream.SetBigEndian4Write(m_bWrite);
    m_oStream.m_bFailureFlag = m_bFailureFlag;
  }
  ClCalibrationSettings(const ClCalibrationSettings&) = delete;
  ClCalibrationSettings& operator=(const ClCalibrationSettings&) = delete;

 private:
  ClStream& m_oStream;
  bool m_bRead;
  bool m_bWrite;
  bool m_bFailureFlag;
};

void ReadTag(ClStream& oStream, const char (&szExpected)[4]) {
  char szTag[4];
  oStream.Read(szTag, sizeof(szTag));
  if (std::strncmp(szTag, szExpected, sizeof(szTag)) != 0) KLV_RAISE_NUMBER(-40);
}

}  // namespace

void ClCalibrateDataBase::Read(ClStream& oStream) {
  const ClCalibrationSettings oSettings(oStream);
  ReadStream(oStream);
}

void ClCalibrateDataBase::Read(const char* szPath) {
  ClFileStream oStream(szPath, "rb");
  Read(oStream);
}

void ClCalibrateDataBase::Write(ClStream& oStream) const {
  const ClCalibrationSettings oSettings(oStream);
  WriteStream(oStream);
}

void ClCalibrateDataBase::Write(const char* szPath) const {
  ClNewFile oFile(szPath);
  ClFileStream oStream(oFile.WrittenName(), "wb");
  Write(oStream);
  // The last bytes are written here, where a failure still raises.
  oStream.Close();
  oFile.Keep();
}

void ClCalibrateDataBase::ReadStream(ClStream& oStream) {
  ReadTag(oStream, m_szMagic);
  ReadTag(oStream, m_szType);
  oStream.Read(m_szReadVersion, sizeof(m_szReadVersion));
}

void ClCalibrateDataBase::WriteStream(ClStream& oStream) const {
  oStream.Write(m_szMagic, sizeof(m_szMagic));
  oStream.Write(m_szType, sizeof(m_szType));
  oStream.Write(m_szVersion, sizeof(m_szVersion));
}

bool ClCalibrateDataBase::operator==(const ClCalibrateDataBase& oOther) const {
  return std::strncmp(m_szMagic, oOther.m_szMagic, sizeof(m_szMagic)) == 0 &&
         std::strncmp(m_szType, oOther.m_szType, sizeof(m_szType)) == 0 &&
         std::strncmp(m_szVersion, oOther.m_szVersion, sizeof(m_szVersion)) == 0 &&
         std::strncmp(m_szReadVersion, oOther.m_szReadVersion, sizeof(m_szReadVersion)) == 0;
}
