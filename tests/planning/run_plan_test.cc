#include "planning/run_plan.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "support/ready_handle.h"

namespace {

using testing_support::scripted;

// Faces are tagged features; tags with the same tens digit are one person.
class RunPlanTest : public testing_support::ReadyHandle {
 protected:
  // The run of each tag, in the order of the tags, after checking what every
  // plan holds: each face once, runs within the size and adding up, and the
  // comparator calls it reports, at most 74 per face.
  std::vector<int> RunOfTags(const std::vector<int>& tags, std::vector<float> rows, int runSize) {
    const int n = static_cast<int>(tags.size());
    scripted().comparisons.clear();
    RunPlan plan;
    const int runs = planFaceRuns(&handle, rows.data(), n, runSize, &plan);
    EXPECT_EQ(runs, static_cast<int>(plan.runSizes.size()));
    EXPECT_EQ(plan.comparisons, static_cast<int64_t>(scripted().comparisons.size()));
    EXPECT_LE(plan.comparisons, int64_t{n} * 74);
    std::vector<int> runOf(n, -1);
    std::size_t offset = 0;
    for (std::size_t run = 0; run < plan.runSizes.size(); ++run) {
      EXPECT_TRUE(plan.runSizes[run] >= 1 && plan.runSizes[run] <= runSize);
      for (int k = 0; k < plan.runSizes[run] && offset < plan.order.size(); ++k) {
        int& slot = runOf.at(plan.order[offset++]);
        EXPECT_EQ(slot, -1) << "a face planned twice";
        slot = static_cast<int>(run);
      }
    }
    EXPECT_EQ(offset, static_cast<std::size_t>(n));
    EXPECT_EQ(std::count(runOf.begin(), runOf.end(), -1), 0);
    return runOf;
  }
};

std::vector<int> Shuffled(int faces) {
  std::vector<int> tags(faces);
  for (int i = 0; i < faces; ++i) tags[i] = (i * 7919) % faces;  // a fixed shuffle
  return tags;
}

// 14 faces are scored pair by pair; 160 (16 people) through profiles, at
// well under the n(n-1)/2 calls of every pair.
TEST_F(RunPlanTest, PeopleLandInOneRun) {
  for (int faces : {14, 160}) {
    const std::vector<int> tags = Shuffled(faces);
    const std::vector<int> runOf =
        RunOfTags(tags, testing_support::taggedFeatures(tags), kDefaultRunSize);
    std::vector<int> runOfPerson(faces / 10 + 1, -1);
    for (int i = 0; i < faces; ++i) {
      int& expected = runOfPerson[tags[i] / 10];
      if (expected < 0) expected = runOf[i];
      EXPECT_EQ(runOf[i], expected) << "tag " << tags[i] << " of " << faces;
    }
  }
}

TEST_F(RunPlanTest, StrangersAreAllPlanned) {
  scripted().fallback = [](const float*, const float*) { return -0.4f; };
  std::vector<int> tags(160);
  for (int i = 0; i < 160; ++i) tags[i] = i * 10;
  const std::vector<int> runOf = RunOfTags(tags, testing_support::taggedFeatures(tags), 7);
  EXPECT_EQ(*std::max_element(runOf.begin(), runOf.end()), 160 / 7);  // runs of 7, all alone
}

// The same set of features in another order gives the same plan, duplicates,
// NaN and infinite values included.
TEST_F(RunPlanTest, PlanDependsOnTheFeaturesNotTheirOrder) {
  const int faces = 160;
  std::vector<int> tags = Shuffled(faces);
  tags[3] = tags[4];  // a duplicate
  std::vector<float> rows = testing_support::taggedFeatures(tags);
  rows[2 * 960 + 1] = std::numeric_limits<float>::quiet_NaN();
  rows[12 * 960 + 2] = std::numeric_limits<float>::infinity();
  const std::vector<int> byTag = RunOfTags(tags, rows, 4);

  std::vector<int> permutation(faces);  // reversed, then rotated by 5
  for (int i = 0; i < faces; ++i) permutation[i] = (faces - 6 - i + faces) % faces;
  std::vector<float> permuted;
  std::vector<int> permutedTags, expected;
  for (int i : permutation) {
    permuted.insert(permuted.end(), rows.begin() + i * 960, rows.begin() + (i + 1) * 960);
    permutedTags.push_back(tags[i]);
    expected.push_back(byTag[i]);
  }
  const std::vector<int> runOf = RunOfTags(permutedTags, permuted, 4);
  // Of the two bit-identical faces either may come first.
  for (int i = 0; i < faces; ++i) {
    if (permutation[i] == 3 || permutation[i] == 4) continue;
    EXPECT_EQ(runOf[i], expected[i]) << i;
  }
}

}  // namespace
