#include "planning/run_plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

#include "interface/face_recognition.h"
#include "support/log_capture.h"
#include "support/scripted_closed_libs.h"
#include "support/similarities.h"

namespace {

using testing_support::scripted;
using testing_support::taggedFeature;

// Faces are tagged features; tags with the same tens digit are one person
// (comparator score 0.9), all other pairs score -0.4.
class RunPlanTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(handle.itf_xvk_Init("/models"), 960);
    scripted().fallback = testing_support::tensDigitPeople;
  }
  void TearDown() override { handle.itf_xvk_Release(); }

  // Plans `tags` and checks what every plan must hold: each face once, runs
  // within the size bound and adding up, comparator calls within n^2 / 8.
  RunPlan Plan(const std::vector<float>& rows, int runSize) {
    const int n = static_cast<int>(rows.size() / 960);
    scripted().comparisons.clear();
    RunPlan plan;
    const int runs = planFaceRuns(&handle, rows.data(), n, runSize, &plan);
    EXPECT_EQ(runs, static_cast<int>(plan.runSizes.size()));
    std::vector<int> sorted = plan.order;
    std::sort(sorted.begin(), sorted.end());
    std::vector<int> all(n);
    std::iota(all.begin(), all.end(), 0);
    EXPECT_EQ(sorted, all);
    for (int size : plan.runSizes) EXPECT_TRUE(size >= 1 && size <= runSize) << size;
    EXPECT_EQ(std::accumulate(plan.runSizes.begin(), plan.runSizes.end(), 0), n);
    EXPECT_LE(static_cast<int64_t>(scripted().comparisons.size()), int64_t{n} * n / 8);
    EXPECT_EQ(plan.comparisons, static_cast<int64_t>(scripted().comparisons.size()));
    return plan;
  }
  // The run each tag landed in.
  static std::vector<std::pair<int, int>> RunOfTags(const RunPlan& plan,
                                                    const std::vector<int>& tags) {
    std::vector<std::pair<int, int>> runOf;  // (tag, run)
    std::size_t offset = 0;
    for (std::size_t run = 0; run < plan.runSizes.size(); ++run)
      for (int k = 0; k < plan.runSizes[run]; ++k)
        runOf.emplace_back(tags[plan.order[offset++]], static_cast<int>(run));
    return runOf;
  }

  FaceRecognition handle;
};

// 1200 faces of 120 people in shuffled order: large enough for the profile
// grouping, whose flat profiles under this comparator leave most faces to
// the pivots.
TEST_F(RunPlanTest, PeopleLandInOneRunWithinTheComparisonBound) {
  for (int faces : {14, 1200}) {
    std::vector<int> tags(faces);
    for (int i = 0; i < faces; ++i) tags[i] = (i * 7919) % faces;  // a fixed shuffle
    const RunPlan plan = Plan(testing_support::taggedFeatures(tags), kDefaultRunSize);
    std::vector<int> runOfPerson(faces / 10 + 1, -1);
    for (const auto& [tag, run] : RunOfTags(plan, tags)) {
      int& expected = runOfPerson[tag / 10];
      if (expected < 0) expected = run;
      EXPECT_EQ(run, expected) << "tag " << tag << " of " << faces;
    }
  }
}

TEST_F(RunPlanTest, StrangersOnlyStayWithinTheBound) {
  scripted().fallback = [](const float*, const float*) { return -0.4f; };
  std::vector<int> tags(100);
  for (int i = 0; i < 100; ++i) tags[i] = i * 10;
  const RunPlan plan = Plan(testing_support::taggedFeatures(tags), 7);
  EXPECT_EQ(plan.runSizes.size(), 15u);  // 100 faces alone, in runs of 7
}

// The same set of features in another order gives the same plan, duplicates,
// NaN and infinite values included.
TEST_F(RunPlanTest, PlanDependsOnTheFeaturesNotTheirOrder) {
  std::vector<int> tags = {31, 10, 45, 11, 30, 12, 44, 10, 32, 13, 33, 46, 60, 61};
  std::vector<float> rows = testing_support::taggedFeatures(tags);
  rows[2 * 960 + 1] = std::numeric_limits<float>::quiet_NaN();
  rows[12 * 960 + 2] = std::numeric_limits<float>::infinity();
  const RunPlan first = Plan(rows, 4);

  std::vector<int> permutation(tags.size());
  std::iota(permutation.begin(), permutation.end(), 0);
  std::reverse(permutation.begin(), permutation.end());
  std::rotate(permutation.begin(), permutation.begin() + 5, permutation.end());
  std::vector<float> permuted;
  std::vector<int> permutedTags;
  for (int i : permutation) {
    permuted.insert(permuted.end(), rows.begin() + i * 960, rows.begin() + (i + 1) * 960);
    permutedTags.push_back(tags[i]);
  }
  const RunPlan second = Plan(permuted, 4);
  EXPECT_EQ(RunOfTags(first, tags), RunOfTags(second, permutedTags));
}

TEST_F(RunPlanTest, BadInputFailsWithOneLineAndLeavesThePlan) {
  const std::vector<float> rows = testing_support::taggedFeatures({10, 11, 12});
  FaceRecognition notReady;
  struct Case {
    FaceRecognition* handle;
    const float* features;
    int count, runSize;
    RunPlan* plan;
  };
  RunPlan plan;
  plan.order = {7};
  const Case cases[] = {
      {nullptr, rows.data(), 3, 4, &plan},   {&handle, nullptr, 3, 4, &plan},
      {&handle, rows.data(), 0, 4, &plan},   {&handle, rows.data(), 3, 1, &plan},
      {&notReady, rows.data(), 3, 4, &plan}, {&handle, rows.data(), 3, 4, nullptr}};
  for (const Case& c : cases) {
    testing_support::LogCapture log;
    EXPECT_EQ(planFaceRuns(c.handle, c.features, c.count, c.runSize, c.plan), -1);
    EXPECT_EQ(log.lines.size(), 1u);
    EXPECT_EQ(plan.order, std::vector<int>{7});
  }
}

}  // namespace
