// Plain records that cross the public interface.
#ifndef XVKFC_INTERFACE_EXCHANGE_RECORDS_H_
#define XVKFC_INTERFACE_EXCHANGE_RECORDS_H_

// A face rectangle in pixels, passed by value to itf_xvk_extractFeature.
struct itf_xvk_faceroi {
  int left;
  int top;
  int width;
  int height;
};

// Landmark output record of itf_xvk_extractFeature. The library never reads
// or writes it; the layout is only there so that an application can own one.
struct itf_xvk_landmark {
  float points[10];  // five (x, y) points
};

// One cluster.
struct itf_xvk_clusteritem {
  int clusterId;   // cluster id; negative: the bucket of unclustered faces
  int faceCount;   // entries in faceIds
  int* faceIds;    // member face ids, as given to itf_xvk_loadFaceFeature
  int featureDim;  // floats in feature: 960 for a cluster, 0 for the bucket
  float* feature;  // representative feature; null for the bucket
  int repFaceId;   // face id of the representative face; -1 for the bucket
};

// A list of clusters. Given to the library it stays the caller's and is only
// read; filled by itf_xvk_getClusterInfo, its arrays are malloc'd by the
// library and given back with itf_xvk_releaseClusterInfo.
struct itf_xvk_clusterinfo {
  int count;                   // elements in items
  itf_xvk_clusteritem* items;  // `count` elements
};

#endif  // XVKFC_INTERFACE_EXCHANGE_RECORDS_H_
