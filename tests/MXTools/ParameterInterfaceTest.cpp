// The older list of parameters: values of every type, enumerations, texts and stored records.
#include "MXTools/ParameterInterface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "MXTools/FpImage.h"
#include "ParameterMembers.h"
#include "Raised.h"
#include "StreamContent.h"

namespace {

using List = ClParameterInterface;
using ClMembers = ClParameterMembers;

TEST(ParameterInterface, AnEntryReadsAndWritesItsMemberAndNothingAfterIt) {
  ClMembers oMembers;
  for (const char* szName : {"nByte", "nShort", "nAngle", "nInt", "nLong", "dDouble", "fFloat", "nEnum"}) {
    oMembers[szName].SetValue(2.75);
    EXPECT_EQ(oMembers[szName].GetValue(), oMembers[szName].IsFloat() ? 2.75 : 2) << szName;
  }
  oMembers["nInt"].SetValue(-1e30);
  EXPECT_EQ(oMembers.nInt, -2147483647 - 1);
  EXPECT_EQ(oMembers.nBehindInt, 77) << "an int is written as four bytes, also where a long has eight";
  oMembers["nLong"].SetValue(-3.9);
  EXPECT_EQ(oMembers.nLong, -3);
  oMembers["nByte"].SetValue(std::nan(""));
  EXPECT_EQ(oMembers.nByte, 0);
  oMembers["bBool"].SetValue(0.0);
  EXPECT_FALSE(oMembers.bBool);
}

TEST(ParameterInterface, RangesAreCutToTheTypeAndTheMarkerIsAThirdAround) {
  ClMembers oMembers;
  EXPECT_EQ(oMembers["nByte"].Minimum(), 0);
  EXPECT_EQ(oMembers["nByte"].Maximum(), 255);
  EXPECT_EQ(oMembers["nInt"].Maximum(), 2147483647);
  EXPECT_EQ(oMembers["InImage"].Minimum(), 1);
  EXPECT_EQ(oMembers["InImage"].Maximum(), 4);
  EXPECT_EQ(oMembers["dDouble"].Minimum(), 2);
  EXPECT_EQ(oMembers["dDouble"].Maximum(), 4);
  EXPECT_EQ(oMembers["dDouble"].Default(), 3);
  EXPECT_DOUBLE_EQ(oMembers["nShort"].Minimum(), -8.0 / 3)
      << "of a negative value four thirds are the smaller";
  EXPECT_TRUE(oMembers["nLong"].IsFixedRange());
  EXPECT_FALSE(oMembers["nLong"].RangeDefined());
  EXPECT_TRUE(oMembers["fFloat"].RangeDefined());
}

TEST(ParameterInterface, ImagesAreHandedByPointerToImageEntriesOnly) {
  ClMembers oMembers;
  ClImage oImage;
  oMembers["InImage"].SetValue(oImage);
  EXPECT_EQ(oMembers.pImage, &oImage);
  EXPECT_EQ(oMembers["INIMAGE"].GetImage(), &oImage) << "names are found in any case";
  EXPECT_EQ(oMembers["InImage"].GetGraph(), nullptr);
  EXPECT_EQ(NumberOf([&] { oMembers["nInt"].SetValue(&oImage); }), -44);
  EXPECT_EQ(NumberOf([&] { oMembers["InImage"].SetValue(1.0); }), -44);
}

TEST(ParameterInterface, EnumerationsGoByNameByPositionOrByTable) {
  ClMembers oMembers;
  oMembers["nEnum"].SetEnum("two");
  EXPECT_EQ(oMembers.nEnum, 2);
  EXPECT_STREQ(oMembers["nEnum"].EnumToStr(1), "one");
  EXPECT_STREQ(oMembers["nEnum"].EnumToStr(3), "No Enum Val");
  oMembers["bBool"].SetEnum("False");
  EXPECT_FALSE(oMembers.bBool);
  EXPECT_EQ(NumberOf([&] { oMembers["nEnum"].SetEnum("ten"); }), -209);
  EXPECT_EQ(NumberOf([&] { oMembers["nByte"].SetEnum("float"); }), -37);
  oMembers["nByte"].SetEnumList("float\0default\0", nullptr);
  EXPECT_EQ(NumberOf([&] { oMembers["nByte"].SetEnum("float"); }), -37);
  const long aValues[] = {196, 255};
  oMembers["nByte"].SetEnumList("float\0default\0", aValues);
  oMembers["nByte"].SetEnum("float");
  EXPECT_EQ(oMembers.nByte, 196);
  EXPECT_EQ(oMembers["nByte"].szValue(), "float");
}

TEST(ParameterInterface, TextsShowTypeDirectionAndValue) {
  ClMembers oMembers;
  std::string szAll;
  for (List::ClParameter* pEntry = oMembers.oList.FirstParam(); pEntry != nullptr;
       pEntry = oMembers.oList.NextParam())
    szAll += std::string(pEntry->szType()) + " " + pEntry->szDir() + " " + pEntry->szValue() + ";";
  EXPECT_EQ(szAll,
            "eByte eIn 1;eShort eIn -2;eAngle eIn 16384=90.001;eLong eIn 4;eLong eIn 5;eDouble eIn 3.00000;"
            "eFloat eIn 0.50000;eBool eIn True;eEnum eInOut one;eImage eIn Image;Unknown eOptional abc;"
            "Unknown eOut ;");
  char szText[4];
  EXPECT_EQ(NumberOf([&] { oMembers["bBool"].GetszValue(szText, 4); }), -21);
  EXPECT_EQ(NumberOf([&] { oMembers.oList.NextParam(); }), -50);
  EXPECT_EQ(oMembers.oList.GetParam(12), nullptr);
  EXPECT_EQ(oMembers.oList.GetParam(-1), nullptr);
}

TEST(ParameterInterface, ARecordHasTheWidthsOfTheFormat) {
  long nLong = -2;
  List oList;
  oList.AddParameter(&nLong, "n", "", List::eOut, 0, 1);
  ClMemStream oStream;
  oList.WriteToStream(oStream);
  // The name with its length, direction, fixed range; minimum, maximum and default; two flags, type and
  // value.
  const Bytes aBytes = Content(oStream);
  ASSERT_EQ(aBytes.size(), 6u + 2 + 24 + 3 + 4);
  EXPECT_EQ(Bytes(aBytes.begin(), aBytes.begin() + 8), (Bytes{0, 0, 0, 2, 'n', 0, 1, 0}));
  EXPECT_EQ(Bytes(aBytes.begin() + 32, aBytes.end()), (Bytes{0, 0, 3, 0xFF, 0xFF, 0xFF, 0xFE}));

  Bytes aLocked = aBytes;
  aLocked[33] = 1;
  ClMemStream oStored(aLocked.data(), static_cast<unsigned int>(aLocked.size()));
  oList.ReadFromStream(oStored);
  oList.GetParam("n")->SetValue(7.0);
  EXPECT_EQ(nLong, -2) << "a record may lock its value";
}

TEST(ParameterInterface, AStoredListComesBackAndAnotherOneIsRefused) {
  ClMembers oMembers;
  ClMemStream oStream;
  oMembers.oList.WriteToStream(oStream);
  ClMembers oOther;
  for (const char* szName : {"nByte", "nLong", "dDouble", "fFloat"}) oOther[szName].SetValue(0.0);
  oStream.Seek(0u);
  oOther.oList.ReadFromStream(oStream);
  for (const char* szName : {"nByte", "nLong", "dDouble", "fFloat"})
    EXPECT_EQ(oOther[szName].GetValue(), oMembers[szName].GetValue()) << szName;

  // The same names over other types: the member must not be written with the record's width.
  unsigned char aGuarded[2] = {9, 9};
  List oNarrow;
  oNarrow.AddParameter(&aGuarded[0], "nByte", "", List::eIn, 0, 1);
  oNarrow.AddParameter(&aGuarded[1], "nShort", "", List::eIn, 0, 1);
  oStream.Seek(0u);
  EXPECT_EQ(NumberOf([&] { oNarrow.ReadFromStream(oStream); }), -33);
  EXPECT_EQ(aGuarded[1], 9);
  const unsigned int nSize = static_cast<unsigned int>(oStream.Size());
  for (unsigned int nCut = 0; nCut < nSize; ++nCut) {
    ClMemStream oCut(oStream.GetData(), nCut);
    oCut.m_bFailureFlag = true;
    ASSERT_EQ(NumberOf([&] { ClMembers().oList.ReadFromStream(oCut); }), -201) << nCut;
  }
}

}  // namespace
