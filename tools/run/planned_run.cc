#include "tools/run/planned_run.h"

#include <chrono>
#include <cstdio>
#include <utility>

#include "evaluation/quality.h"
#include "planning/planned_clustering.h"
#include "tools/cluster_records.h"
#include "tools/tool_error.h"

namespace tool {

std::vector<ClusterRecord> clusterPlanned(EngineSession& session, const FeatureMatrix& features,
                                          const std::vector<int>& faceIds,
                                          const std::vector<ClusterRecord>& existing,
                                          const PlannedRunOptions& options, Progress& progress,
                                          int& runs) {
  ExchangeList existingList(existing);

  const int runSize = options.runSize > 0 ? options.runSize : kDefaultRunSize;
  const int maxRounds = options.rounds > 0 ? options.rounds : kDefaultRounds;
  std::vector<int> measuredFaces, identities;
  std::vector<std::pair<RunSummary, int>> rounds;  // summary, runs
  RunSummary round;
  auto roundStart = std::chrono::steady_clock::now();
  auto observe = [&](const PlannedRunInfo& info) {
    round.facesLoaded += info.faceCount;
    progress.note("round " + std::to_string(info.round) + ", run " + std::to_string(info.run) +
                  " of " + std::to_string(info.runsInRound) + ": " +
                  std::to_string(info.faceCount) + (info.faceCount == 1 ? " face" : " faces"));
    for (int k = 0; k < info.faceCount && info.round == 1; ++k) {
      const auto it = options.identities.find(info.faceIds[k]);
      if (it == options.identities.end()) continue;
      measuredFaces.push_back(info.faceIds[k]);
      identities.push_back(it->second);
    }
    if (info.run < info.runsInRound) return;
    const auto now = std::chrono::steady_clock::now();
    round.batch = info.round;
    round.seconds = std::chrono::duration<double>(now - roundStart).count();
    const std::vector<ClusterRecord> clusters = recordsOf(*info.clusters);
    countClusters(clusters, round);
    if (!measuredFaces.empty())
      round.quality =
          evaluation::measureQuality(clusterOfFaces(clusters, measuredFaces), identities);
    rounds.emplace_back(round, info.runsInRound);
    round = RunSummary();
    roundStart = now;
  };

  progress.note("clustering " + std::to_string(features.rows()) +
                " faces in planned runs of up to " + std::to_string(runSize));
  itf_xvk_clusterinfo result{0, nullptr};
  PlannedClusteringStats stats;
  const int count =
      ::clusterInPlannedRuns(session.handle(), features.values.data(), faceIds.data(),
                             features.rows(), existing.empty() ? nullptr : existingList.get(),
                             runSize, maxRounds, &result, &stats, observe);
  if (count < 0) {
    throw ToolError(
        "the library could not cluster the faces in planned runs (run with "
        "--verbose for its log)");
  }
  std::vector<ClusterRecord> clusters = recordsOf(result);
  session.handle()->itf_xvk_releaseClusterInfo(&result);
  runs = stats.runs;
  if (options.onRound) {
    for (const auto& [summary, roundRuns] : rounds) options.onRound(summary, roundRuns);
  }
  return clusters;
}

std::string describeRound(const RunSummary& summary, int runs) {
  char text[160];
  std::snprintf(text, sizeof text,
                "round %d: %d faces in %d runs, %d clusters, %d unclustered, %.3f s", summary.batch,
                summary.facesLoaded, runs, summary.clusters, summary.unclustered, summary.seconds);
  std::string line = text;
  if (summary.quality) line += "; " + describe(*summary.quality);
  return line;
}

}  // namespace tool
