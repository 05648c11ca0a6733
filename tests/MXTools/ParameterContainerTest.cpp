// Trees of parameters: names, paths, walks and copies.
#include <gtest/gtest.h>

#include "MXTools/ParameterContainer.h"
#include "Raised.h"

namespace {

/// A root that holds the container "a" with the leaf "b", and the leaf "z".
class ParameterTree : public testing::Test {
 protected:
  ParameterTree() { m_pLast = m_oRoot.AddNumeric("z", &m_nLast); }

  ClParameterContainer m_oRoot;
  int m_nValue = 1;
  int m_nLast = 2;
  ClParameterContainer* m_pInner = m_oRoot.AddContainer("a");
  ClParameter* m_pLeaf = m_pInner->AddNumeric("b", &m_nValue);
  ClParameter* m_pLast = nullptr;
};

TEST_F(ParameterTree, FindsByPath) {
  for (const char* szPath : {"a.b", "A.B", ".a.b", "a.b.c"})
    EXPECT_EQ(m_oRoot.Find(szPath), m_pLeaf) << szPath;
  EXPECT_EQ(m_pInner->Find(".a.b"), m_pLeaf);
  EXPECT_EQ(m_pInner->Find("b"), m_pLeaf);
  EXPECT_EQ(m_oRoot.Find("a"), m_pInner);
  EXPECT_EQ(m_pInner->Find("."), &m_oRoot);
  for (const char* szPath : {"zz", "", "a.", "a.zz", "root.a"})
    EXPECT_EQ(m_oRoot.Find(szPath), nullptr) << szPath;
  EXPECT_EQ(m_oRoot.Find(nullptr), nullptr);
  m_oRoot.SetName("root");
  EXPECT_EQ(m_oRoot.Find("root.a.b"), m_pLeaf);
  EXPECT_EQ(m_oRoot.Find("Root.a.b"), nullptr) << "the name of the root stands with its case";
  EXPECT_EQ(m_oRoot.Find("root"), nullptr);
  EXPECT_EQ(m_pLeaf->GetPathName(), "root.a.b");
}

TEST_F(ParameterTree, RefusesAPartOf255CharactersButWalksAPathOfAnyLengthWithoutRecursion) {
  EXPECT_EQ(m_oRoot.Find(("a." + std::string(254, 'x')).c_str()), nullptr);
  EXPECT_EQ(NumberOf([&] { m_oRoot.Find(("a." + std::string(255, 'x')).c_str()); }), -101);
  EXPECT_EQ(m_oRoot.Find((std::string(100000, '.') + "a.b").c_str()), m_pLeaf);
}

TEST_F(ParameterTree, ReportsThePathOfANode) {
  unsigned int nSize = 3;
  char szPath[5] = "****";
  EXPECT_FALSE(m_pLeaf->GetPathName(szPath, nSize));
  EXPECT_EQ(nSize, 4u);
  EXPECT_STREQ(szPath, "****");
  EXPECT_TRUE(m_pLeaf->GetPathName(nullptr, nSize));
  EXPECT_TRUE(m_pLeaf->GetPathName(szPath, nSize));
  EXPECT_STREQ(szPath, "a.b");
  m_oRoot.SetName("top");
  m_pInner->SetName(nullptr);
  EXPECT_EQ(m_pLeaf->GetPathName(), "b") << "a container without a name ends the path";
  m_pInner->SetName(std::string(300, 'n').c_str());
  EXPECT_EQ(m_pLeaf->GetPathName().size(), 306u) << "top + 300 + b and two dots";
}

TEST_F(ParameterTree, WalksItsLeavesInOrderAcrossEmptyContainers) {
  m_oRoot.AddContainer("empty")->AddContainer("emptier");
  int nTail = 0;
  ClParameter* pTail = m_oRoot.AddNumeric("tail", &nTail);
  std::vector<ClParameter*> aSeen;
  for (ClParameter* p = m_oRoot.GetFirstParameter(); p != nullptr; p = m_oRoot.GetNextParameter(p))
    aSeen.push_back(p);
  EXPECT_EQ(aSeen, (std::vector<ClParameter*>{m_pLeaf, m_pLast, pTail}));
  EXPECT_EQ(m_oRoot.GetNextParameter(static_cast<ClParameter*>(nullptr)), m_pLeaf);
  EXPECT_EQ(m_oRoot.GetNextParameter(4u), nullptr);
  EXPECT_EQ(NumberOf([&] { m_pInner->GetNextParameter(&m_oRoot); }), -701) << "the root has no parent";
}

TEST_F(ParameterTree, RefusesANameInUseAndLeavesTheParameterToItsOwner) {
  int nOther = 0;
  EXPECT_EQ(NumberOf([&] { m_oRoot.AddNumeric("Z", &nOther); }), -46);
  EXPECT_EQ(NumberOf([&] { m_oRoot.AddContainer("A"); }), -46);
  TpParameterNumeric<int, ClParameter> oMine;
  EXPECT_EQ(NumberOf([&] { m_oRoot.AddParameter("z", &oMine); }), -46);
  EXPECT_EQ(m_oRoot.Entries(), 2u);
}

TEST_F(ParameterTree, CloningReplacesWhatTheDestinationHeld) {
  int nOld = 0;
  ClParameterContainer oCopy("copy");
  oCopy.AddNumeric("old", &nOld);
  m_oRoot.CloneDataTo(&oCopy);
  EXPECT_EQ(oCopy.Find("old"), nullptr);
  ClParameter* pLeaf = oCopy.Find("a.b");
  ASSERT_NE(pLeaf, nullptr);
  EXPECT_NE(pLeaf, m_pLeaf);
  EXPECT_EQ(pLeaf->GetRoot(), &oCopy);
  pLeaf->SetValue("17");
  EXPECT_EQ(m_nValue, 17) << "a clone stays bound to the variable";
  EXPECT_EQ(NumberOf([&] { m_oRoot.CloneDataTo(m_pLeaf); }), -701);
  EXPECT_EQ(NumberOf([&] { m_oRoot.CloneDataTo(nullptr); }), -701);
  m_oRoot.CloneDataTo(&m_oRoot);
  EXPECT_EQ(m_oRoot.Find("a.b"), m_pLeaf);
}

TEST_F(ParameterTree, OperationsReachEveryLeafOfATreeOfTheSameShape) {
  m_oRoot.SetName("tree");
  std::unique_ptr<ClParameterBase> pClone(m_oRoot.Clone());
  EXPECT_STREQ(pClone->GetName(), "tree");
  EXPECT_TRUE(m_oRoot.IsDefault());
  m_nValue = 5;
  EXPECT_FALSE(m_oRoot.IsDefault());
  pClone->CopyDefaultFromValue(&m_oRoot);
  EXPECT_EQ(pClone->GetContainerInterface()->Find("a.b")->GetDefaultValue(), "5");
  m_oRoot.SetToDefault();
  EXPECT_EQ(m_nValue, 1);
  m_oRoot.SetToDefaultFrom(pClone.get());
  EXPECT_EQ(m_nValue, 5);
  m_oRoot.SwapDefaultAndValue();
  EXPECT_EQ(m_nValue, 1);
  EXPECT_EQ(m_pLeaf->GetDefaultValue(), "5");
  ClParameterContainer oEmpty;
  EXPECT_EQ(NumberOf([&] { m_oRoot.CopyValuesFrom(&oEmpty, false); }), -701) << "too few children";
}

}  // namespace
