// Face feature extractor and comparator of the closed library libTAVO_FR.
//
// This declaration stands in for the vendor's header on Linux builds and is
// written from the calls the engine makes. The real class's size, private
// members and the meaning of the option flags and image formats belong to the
// vendor: a device build puts the vendor's own header (same file name) and
// library in place of these.
#ifndef TAVO_FRECOG_INTERFACE_H_
#define TAVO_FRECOG_INTERFACE_H_

namespace TAVOFEImageFormat {
// Pixel layout of the image given to RunFeatureExtraction. The engine always
// passes 2, packed 8-bit blue-green-red.
enum EImageFormat {
  kFormat0 = 0,
  kFormat1 = 1,
  kBgr24 = 2,
};
}  // namespace TAVOFEImageFormat

class CFRecogInterface {
 public:
  CFRecogInterface();
  ~CFRecogInterface();

  // Loads the models for features of `featureDim` floats (the engine passes
  // 960) from the folder `modelPath`. Returns 1 or more on success, less than
  // 1 on failure.
  int Init(int featureDim, const char* modelPath);

  // Computes the feature of the face whose landmark points are given, in a
  // `width` x `height` image of layout `format`. `options` points to eleven
  // flags. Returns a malloc'd block of featureDim floats that the caller frees
  // with free(), or null on failure.
  float* RunFeatureExtraction(unsigned char* image, int width, int height, float* landmarks,
                              bool* options, TAVOFEImageFormat::EImageFormat format);

  // Similarity of two features of featureDim floats each, in [-1, 1]; higher
  // means more alike.
  float RunComparison(float* a, float* b);

  // Frees the models. Called before destruction.
  int Release();

 private:
  void* state_;  // implementation state, owned
};

#endif  // TAVO_FRECOG_INTERFACE_H_
