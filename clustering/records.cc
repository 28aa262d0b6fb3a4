#include "clustering/records.h"

void Cluster::init(int newId) {
  id = newId;
  members.clear();
  feature.clear();
  repFaceId = 0;
  flag = false;
}
