#include "tools/report.h"

#include <gtest/gtest.h>

#include "html_check.h"
#include "tools/charts.h"

namespace tool {
namespace {

ClusterRecord Cluster(int id, const std::vector<int>& faces) {
  if (id < 0) return {id, faces, -1, {}};
  return {id, faces, faces[0], std::vector<float>(kFeatureDim, 0.0f)};
}

TEST(ClusterOrderTest, ClustersFirstThenUnclusteredThenTheRest) {
  // Rows hold face ids 10..15; 99 has no features here (an earlier run's face).
  const std::vector<int> faceIds = {10, 11, 12, 13, 14, 15};
  const std::vector<ClusterRecord> clusters = {Cluster(-1, {14}), Cluster(0, {12, 99, 10}),
                                               Cluster(1, {13, 11, 12})};
  const ClusterOrder order = orderByCluster(clusters, faceIds, 100);
  // Face 12 is shown with the first cluster that lists it; 15 is in none.
  EXPECT_EQ(order.rows, (std::vector<int>{2, 0, 3, 1, 4, 5}));
  EXPECT_EQ(order.blocks, (std::vector<int>{2, 2}));

  // Thinned to every second face of that layout: rows 2, 3, 4.
  const ClusterOrder thin = orderByCluster(clusters, faceIds, 3);
  EXPECT_EQ(thin.rows, (std::vector<int>{2, 3, 4}));
  EXPECT_EQ(thin.blocks, (std::vector<int>{1, 1}));
}

TEST(ReportTest, WellFormedEscapedPageWithAHeatMapInClusterOrderAndClustersOutlined) {
  ReportData data;
  data.title = "xvkfc cluster <b>&\"x\".npy";
  data.clusters = {Cluster(-1, {13}), Cluster(0, {10, 12}), Cluster(1, {11, 14, 15})};
  const std::vector<int> faceIds = {10, 11, 12, 13, 14, 15};
  data.view.order = orderByCluster(data.clusters, faceIds, 100);
  data.view.facesWithFeatures = 6;
  for (int row : data.view.order.rows) data.view.faceIds.push_back(faceIds[row]);
  // Distinct scores, asymmetric on purpose so that a transposed map shows.
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j)
      data.view.similarities.push_back(i == j ? 1023 : 400 + 100 * i + 7 * j);
  }

  const std::string html = renderReport(data);
  EXPECT_EQ(tool_test::htmlProblem(html), "");
  EXPECT_NE(html.find("xvkfc cluster &lt;b&gt;&amp;&quot;x&quot;.npy"), std::string::npos);
  EXPECT_EQ(html.find("<b>"), std::string::npos);

  const std::vector<tool_test::InlineImage> images = tool_test::inlineImages(html);
  ASSERT_EQ(images.size(), 2u);  // the heat map and the histogram of cluster sizes
  const tool_test::InlineImage& heat = images[0];
  ASSERT_EQ(heat.width, heat.height);
  ASSERT_EQ(heat.width % 6, 0);
  const int cell = heat.width / 6;
  auto pixel = [&](int x, int y) {
    const uint8_t* p = &heat.rgb[(static_cast<size_t>(y) * heat.width + x) * 3];
    return std::vector<int>{p[0], p[1], p[2]};
  };
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) {
      const Rgb expected = heatColor(data.view.similarities[i * 6 + j]);
      EXPECT_EQ(pixel(j * cell + cell / 2, i * cell + cell / 2),
                (std::vector<int>{expected.r, expected.g, expected.b}))
          << i << "," << j;
    }
  }
  // Cluster 0 (two faces) is outlined; the unclustered face, last, is not.
  EXPECT_EQ(pixel(0, cell), (std::vector<int>{255, 64, 64}));
  EXPECT_NE(pixel(5 * cell, 5 * cell + cell / 2), (std::vector<int>{255, 64, 64}));
}

}  // namespace
}  // namespace tool
