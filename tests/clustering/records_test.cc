#include "clustering/records.h"

#include <gtest/gtest.h>

namespace {

TEST(ClusterInit, ResetsMembershipButKeepsTheCarriedFields) {
  Cluster c;
  c.id = 3;
  c.members = {1, 2};
  c.feature = {0.5f};
  c.repFaceId = 9;
  c.flag = true;
  c.name = "kept";
  c.idListA = {4};
  c.nameListB = {"also kept"};

  c.init(5);

  EXPECT_EQ(c.id, 5);
  EXPECT_TRUE(c.members.empty());
  EXPECT_TRUE(c.feature.empty());
  EXPECT_EQ(c.repFaceId, 0);
  EXPECT_FALSE(c.flag);
  EXPECT_EQ(c.name, "kept");
  EXPECT_EQ(c.idListA, Vec<int>({4}));
  EXPECT_EQ(c.nameListB, std::vector<std::string>({"also kept"}));
}

TEST(Records, NewRecordsStartEmpty) {
  Face f;
  EXPECT_EQ(f.clusterId, 0);
  EXPECT_FALSE(f.valid);
  for (int x : f.extraInts) EXPECT_EQ(x, 0);
  Cluster c;
  EXPECT_EQ(c.id, 0);
  EXPECT_EQ(c.repFaceId, 0);
  EXPECT_FALSE(c.flag);
}

}  // namespace
