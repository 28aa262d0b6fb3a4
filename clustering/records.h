// The clustering engine's records: Face, Cluster and clusterinfo.
#ifndef XVKFC_CLUSTERING_RECORDS_H_
#define XVKFC_CLUSTERING_RECORDS_H_

#include <string>
#include <vector>

#include "numeric/vec.h"
#include "platform/export.h"

// One loaded face, kept in the same order as the rows of the engine's feature
// matrix. Only faceId and clusterId carry information; the other fields are
// carried with their defaults. Copied memberwise.
struct XVKFC_EXPORT Face {
  int faceId = 0;                   // the application's id of the face
  int clusterId = 0;                // cluster placed in by the last refinement
  std::vector<std::string> labels;  // always empty
  bool valid = false;               // never read
  int extraInts[5] = {0, 0, 0, 0, 0};  // never set or read
  std::string tag;                  // always empty
};

// One cluster of the engine's cluster map. Copied memberwise (deep copies).
struct XVKFC_EXPORT Cluster {
  int id = 0;
  // Face indices (rows) while a run refines; face ids once the run's result
  // is merged with the application's clusters.
  Vec<int> members;
  Vec<float> feature;  // representative feature, 960 floats when set
  int repFaceId = 0;   // face id of the representative face
  std::string name;    // always empty
  bool flag = false;   // never set to true, never read
  Vec<int> idListA;    // the four lists are always empty
  std::vector<std::string> nameListA;
  Vec<int> idListB;
  std::vector<std::string> nameListB;

  // Makes this cluster `newId` with no members and no feature (storage kept),
  // repFaceId 0 and flag false. name and the four trailing lists stay.
  void init(int newId);
};

// The exchange form of a cluster: the engine's result list and the clusters
// the application hands back in. A negative id marks the bucket of
// unclustered faces.
struct XVKFC_EXPORT clusterinfo {
  int id = 0;
  std::vector<int> faceIds;
  std::vector<float> feature;
  int repFaceId = 0;
};

#endif  // XVKFC_CLUSTERING_RECORDS_H_
