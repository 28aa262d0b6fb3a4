#include "tools/report/report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "evaluation/synthetic_gallery.h"
#include "html_check.h"
#include "tools/report/charts.h"
#include "tools/report/cluster_doubts.h"

namespace tool {
namespace {

ClusterRecord Cluster(int id, const std::vector<int>& faces) {
  if (id < 0) return {id, faces, -1, {}};
  return {id, faces, faces[0], std::vector<float>(kFeatureDim, 0.0f)};
}

// Faces 10..15 (rows 0..5) as clusters 0 {10, 12} and 1 {11, 14, 15} and the
// unclustered 13, measured on the similarities `scores` given in cluster
// order (10 12 | 11 14 15 | 13).
ReportData Sample(const std::vector<int>& scores, const std::map<int, int>& identities = {}) {
  ReportData data;
  data.identities = identities;
  data.clusters = {Cluster(-1, {13}), Cluster(0, {10, 12}), Cluster(1, {11, 14, 15})};
  const std::vector<int> faceIds = {10, 11, 12, 13, 14, 15};
  data.order = orderByCluster(data.clusters, faceIds);
  std::vector<int> position(6);
  for (int i = 0; i < 6; ++i) position[data.order.rows[i]] = i;
  const RowScore score = [&](int a, int b) { return scores[position[a] * 6 + position[b]]; };
  data.view = sampleSimilarities(data.order, 100, score);
  data.figures = measureGallery(data.order, faceIds, data.identities, 0.74, 10, score);
  return data;
}

TEST(ClusterOrderTest, ClustersFirstThenUnclusteredThenTheRest) {
  // Rows hold face ids 10..15; 99 has no features here (an earlier run's face).
  const std::vector<int> faceIds = {10, 11, 12, 13, 14, 15};
  const std::vector<ClusterRecord> clusters = {
      Cluster(-1, {14}), Cluster(0, {12, 99, 10}), {1, {13, 11, 12}, 11, {}}};
  const ClusterOrder order = orderByCluster(clusters, faceIds);
  // Face 12 is shown with the first cluster that lists it; 15 is in none.
  EXPECT_EQ(order.rows, (std::vector<int>{2, 0, 3, 1, 4, 5}));
  EXPECT_EQ(order.blocks, (std::vector<int>{2, 2}));
  EXPECT_EQ(order.blockIds, (std::vector<int>{0, 1}));
  EXPECT_EQ(order.repRows, (std::vector<int>{2, 1}));  // representative 11; 12 is not in block 0
  EXPECT_EQ(order.clustered, 4);

  // The picture samples the order evenly.
  const SimilarityView view =
      sampleSimilarities(order, 3, [](int a, int b) { return 100 * a + b; });
  EXPECT_EQ(view.shown, (std::vector<int>{0, 2, 4}));
  EXPECT_EQ(view.similarities[1], 203);  // rows 2 and 3
}
TEST(ReportTest, WellFormedEscapedPageWithAHeatMapInClusterOrderAndClustersOutlined) {
  // Distinct scores, asymmetric on purpose so that a transposed map shows.
  std::vector<int> scores;
  for (int i = 0; i < 36; ++i)
    scores.push_back(i % 7 == 0 ? 1023 : 400 + 100 * (i / 6) + 7 * (i % 6));
  ReportData data = Sample(scores);
  data.title = "xvkfc cluster <b>&\"x\".npy";

  const std::string html = renderReport(data);
  EXPECT_EQ(tool_test::htmlProblem(html), "");
  EXPECT_NE(html.find("xvkfc cluster &lt;b&gt;&amp;&quot;x&quot;.npy"), std::string::npos);
  EXPECT_EQ(html.find("<b>"), std::string::npos);

  const std::vector<tool_test::InlineImage> images = tool_test::inlineImages(html);
  ASSERT_EQ(images.size(), 1u);  // the heat map; the histogram is SVG
  const tool_test::InlineImage& heat = images[0];
  ASSERT_EQ(heat.width, heat.height);
  ASSERT_EQ(heat.width % 6, 0);
  const int cell = heat.width / 6;
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j) {
      const Rgb expected = heatColor(data.view.similarities[i * 6 + j]);  // in cluster order
      const uint8_t* p = &heat.rgb[((i * cell + cell / 2) * heat.width + j * cell + cell / 2) * 3];
      EXPECT_EQ(std::tie(p[0], p[1], p[2]), std::tie(expected.r, expected.g, expected.b))
          << i << "," << j;
    }
  }
  // The blocks are outlined over the picture with their cluster ids.
  EXPECT_NE(html.find("<title>cluster 1: 3 faces"), std::string::npos);
}

// Which clusters a reader should doubt: on scores made up so that cluster 1
// holds a pair below the split level and two identities, cluster 0 is tight
// and the unclustered face 13 nearly matches face 10.
TEST(ReportTest, ClustersToDoubtAreMarkedAndListedFirst) {
  // clang-format off
  const std::vector<int> scores({1023,  990,  500,  500,  500,  900,
                             990, 1023,  500,  500,  500,  500,
                             500,  500, 1023,  950,  600,  500,
                             500,  500,  950, 1023,  800,  500,
                             500,  500,  600,  800, 1023,  500,
                             900,  500,  500,  500,  500, 1023});
  // clang-format on
  ReportData data = Sample(scores, {{10, 1}, {12, 1}, {11, 2}, {14, 2}, {15, 3}, {13, 1}});
  const std::vector<ClusterFigures>& figures = data.figures.clusters;
  ASSERT_EQ(figures.size(), 2u);
  EXPECT_NEAR(figures[1].lowestInside, 600 / 1023.0, 1e-9);
  EXPECT_NEAR(figures[1].meanInside, (950 + 600 + 800) / 3.0 / 1023.0, 1e-9);
  EXPECT_EQ(figures[0].doubts, std::vector<std::string>{});
  EXPECT_EQ(figures[1].doubts.size(), 2u);  // two identities, a pair below 0.69 (706)
  const std::vector<CloseMatch>& close = data.figures.closeMatches;
  ASSERT_EQ(close.size(), 1u);
  EXPECT_EQ(std::tie(close[0].faceId, close[0].matchFaceId, close[0].clusterId),
            std::make_tuple(13, 10, 0));

  const std::string html = renderReport(data);
  EXPECT_EQ(tool_test::htmlProblem(html), "");
  const size_t doubted = html.find("<tr class=\"doubt\"><td>1</td>");
  ASSERT_NE(doubted, std::string::npos);
  EXPECT_LT(doubted, html.find("<tr><td>0</td>"));
  EXPECT_NE(html.find("<rect class=\"doubt\" x=\"2\""), std::string::npos);  // in the picture too
}

// Past a few hundred clusters the nearest clusters are found by profiles;
// on a seeded gallery with look-alikes that must mark the same clusters and
// find the same close matches as scoring every representative, for far
// fewer comparisons.
TEST(ReportTest, ProfileSearchFindsWhatScoringEveryClusterFinds) {
  // Seed 7: 320 people of 2 or 3 faces (80 of them look-alikes), 60 lone faces.
  const evaluation::GalleryOptions options = {7, 320, 2, 3, 80, 60, 0};
  const evaluation::Gallery gallery = evaluation::makeGallery(options);
  // A cluster per person, but every fifth face left unclustered.
  std::map<int, std::vector<int>> faces;  // person -> faces; -1: unclustered
  for (int row = 0; row < gallery.faces(); ++row) {
    const int person = gallery.identities[row];
    faces[person >= options.people || row % 5 == 0 ? -1 : person].push_back(gallery.faceIds[row]);
  }
  std::vector<ClusterRecord> clusters;
  for (const auto& [person, ids] : faces) clusters.push_back(Cluster(person, ids));
  const ClusterOrder order = orderByCluster(clusters, gallery.faceIds);
  ASSERT_GT(order.blocks.size(), size_t{kExhaustiveClusters});
  // A cheap stand-in for the library's score: the cosine estimated from
  // every fourth float, on the 0..1023 scale.
  const RowScore score = [&](int a, int b) {
    const float* x = gallery.row(a);
    const float* y = gallery.row(b);
    float dot = 0.0f;
    for (int k = 0; k < kFeatureDim; k += 4) dot += x[k] * y[k];
    return static_cast<int>(std::lround(511.5 * (1.0 + 4 * dot)));
  };

  const GalleryFigures byProfile =
      measureGallery(order, gallery.faceIds, {}, 0.74, 10, score, NearSearch::kAuto);
  const GalleryFigures everyCluster =
      measureGallery(order, gallery.faceIds, {}, 0.74, 10, score, NearSearch::kExhaustive);
  EXPECT_LT(byProfile.comparisons, everyCluster.comparisons / 2);
  int marked = 0;
  for (size_t b = 0; b < order.blocks.size(); ++b) {
    EXPECT_EQ(byProfile.clusters[b].doubts, everyCluster.clusters[b].doubts) << b;
    marked += !everyCluster.clusters[b].doubts.empty();
  }
  EXPECT_GT(marked, 10);
  ASSERT_EQ(byProfile.closeMatches.size(), everyCluster.closeMatches.size());
  EXPECT_GT(everyCluster.closeMatches.size(), 50u);
  for (size_t i = 0; i < everyCluster.closeMatches.size(); ++i)
    EXPECT_EQ(byProfile.closeMatches[i].faceId, everyCluster.closeMatches[i].faceId) << i;
}

}  // namespace
}  // namespace tool
