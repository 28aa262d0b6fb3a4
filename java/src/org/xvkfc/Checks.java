package org.xvkfc;

/** Argument checks done in Java, before anything reaches native code. */
final class Checks {
  static final int FEATURE_DIM = 960;

  private Checks() {}

  static void feature(float[] feature) {
    if (feature == null) throw new NullPointerException("feature");
    if (feature.length != FEATURE_DIM) {
      throw new IllegalArgumentException(
          "a feature is " + FEATURE_DIM + " floats, not " + feature.length);
    }
  }

  static void featureRows(float[][] features) {
    if (features == null) throw new NullPointerException("features");
    if (features.length == 0) throw new IllegalArgumentException("no features");
    for (float[] row : features) feature(row);
  }

  static void clusters(Cluster[] clusters) {
    if (clusters == null) throw new NullPointerException("clusters");
    for (Cluster cluster : clusters) {
      if (cluster == null) throw new NullPointerException("a cluster is null");
    }
  }

  /**
   * A planar YUV 4:2:0 image: the Y plane, then U and V planes of half the width and height,
   * rounded up. Sizes in long, so no product overflows.
   */
  static void image(byte[] yuv420, int width, int height, int left, int top, int faceWidth,
      int faceHeight) {
    if (yuv420 == null) throw new NullPointerException("yuv420");
    if (width < 1 || height < 1) {
      throw new IllegalArgumentException("image size " + width + " x " + height);
    }
    long chroma = ((width + 1L) / 2) * ((height + 1L) / 2);
    long needed = (long) width * height + 2 * chroma;
    if (yuv420.length < needed) {
      throw new IllegalArgumentException(
          "a " + width + " x " + height + " image is " + needed + " bytes, not " + yuv420.length);
    }
    // The library converts to 3 bytes a pixel, counted in an int.
    if ((long) width * height * 3 > Integer.MAX_VALUE) {
      throw new IllegalArgumentException("image too large: " + width + " x " + height);
    }
    if ((long) left + faceWidth > Integer.MAX_VALUE || (long) top + faceHeight > Integer.MAX_VALUE) {
      throw new IllegalArgumentException("face rectangle out of range");
    }
  }
}
