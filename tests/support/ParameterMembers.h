// Members of every type, described by a parameter list.
#pragma once

#include "MXTools/ParameterInterface.h"

class ClImage;

struct ClParameterMembers {
  using List = ClParameterInterface;

  unsigned char nByte = 1;
  short nShort = -2;
  unsigned short nAngle = 16384;
  int nInt = 4;
  int nBehindInt = 77;
  long nLong = 5;
  double dDouble = 3;
  float fFloat = 0.5f;
  bool bBool = true;
  int nEnum = 1;
  ClImage* pImage = nullptr;
  char szText[8] = "abc";
  List oList;

  ClParameterMembers() {
    oList.AddParameter(&nByte, "nByte", "a byte", List::eIn, -10, 1000);
    oList.AddParameter(&nShort, "nShort", "", List::eIn, 1, -1);
    oList.AddParameter(&nAngle, "nAngle", "", List::eIn, 0, 65535);
    oList.AddParameter(&nInt, "nInt", "", List::eIn, 0, 1e12);
    oList.AddParameter(&nLong, "nLong", "", List::eIn, 7, 7);
    oList.AddParameter(&dDouble, "dDouble", "", List::eIn, 1, -1);
    oList.AddParameter(&fFloat, "fFloat", "", List::eIn, 0, 1);
    oList.AddBool(&bBool, "bBool", "", List::eIn);
    oList.AddEnum(&nEnum, "nEnum", "", "zero\0one\0two\0", List::eInOut);
    oList.AddParameter(&pImage, "InImage", "In: Original Image", List::eIn, 1, 4);
    oList.AddParameterString(szText, sizeof(szText), "szText", "", List::eOptional);
    oList.AddComment("note");
  }
  List::ClParameter& operator[](const char* szName) { return *oList.GetParam(szName); }
};
