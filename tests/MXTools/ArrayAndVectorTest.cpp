// The array that grows and the vector of the plane.
#include <gtest/gtest.h>

#include <cmath>

#include "MXTools/TpArrayDynamic.h"
#include "MXTools/Vector.h"

namespace {

TEST(ArrayDynamic, ElevenEntriesOfAStepOfTenTakeTwentyPlaces) {
  TpArrayDynamic<int, 10> aArray;
  for (int n = 0; n < 10; ++n) aArray.Add(n);
  EXPECT_EQ(aArray.Capacity(), 10u);
  aArray.Add(aArray[0]);
  EXPECT_EQ(aArray.Capacity(), 20u);
  EXPECT_EQ(aArray.Entries(), 11u);
  EXPECT_EQ(aArray[9], 9);
  const int* pBlock = aArray.Data();
  aArray.Clear();
  EXPECT_EQ(aArray.Entries(), 0u);
  aArray.Add(5);
  EXPECT_EQ(aArray.Data(), pBlock) << "clearing keeps the block";
}

TEST(Vector, LinesMeetWhereTheyCrossAndParallelOnesDoNot) {
  double t1 = 0, t2 = 0;
  const ClVector oMeet = ClVector::Intersection({0, 0}, {1, 1}, {4, 0}, {0, 2}, t1, t2);
  EXPECT_TRUE(oMeet.IsNear({4, 4}));
  EXPECT_DOUBLE_EQ(t1, 4);
  EXPECT_DOUBLE_EQ(t2, 2);
  EXPECT_TRUE(ClVector::Intersection({0, 0}, {1, 1}, {4, 0}, {2, 2}, t1, t2).IsNear({0, 0}));
  EXPECT_EQ(t1, 0);
  EXPECT_TRUE(std::isinf(ClVector::IntersectionINF({0, 0}, {1, 1}, {4, 0}, {2, 2}, t1, t2).x));
}

}  // namespace
