// Facial landmark detector of the closed library libTAVO_LD.
//
// This declaration stands in for the vendor's header on Linux builds and is
// written from the calls the engine makes. The real class's size, members and
// the meaning of the detection arguments belong to the vendor: a device build
// puts the vendor's own header (same file name) and library in place of these.
// The one layout fact the engine relies on is that the detector exposes the
// points it found as its second member, a float pointer.
#ifndef TAVO_LANDMARK_INTERFACE_H_
#define TAVO_LANDMARK_INTERFACE_H_

class CLandmarkInterface {
 public:
  CLandmarkInterface();
  ~CLandmarkInterface();

  // Loads the models from the folder `modelPath`. Returns 1 or more on
  // success, less than 1 on failure.
  int Init(int mode, const char* modelPath);

  // Looks for the landmark points of the face inside the rectangle
  // (left, top, rectWidth, rectHeight) of a planar YUV 4:2:0 image. The engine
  // passes channels 3 and flags 0. The result is left in `landmarks`.
  int RunLandmarkDetection(unsigned char* image, int width, int height, int channels, int flags,
                           int left, int top, int rectWidth, int rectHeight);

  // Frees the models. Called before destruction.
  int Release();

  void* state;       // implementation state, owned
  float* landmarks;  // points of the last detection (x, y pairs), or null
                     // when none were found; valid until the next detection
};

#endif  // TAVO_LANDMARK_INTERFACE_H_
