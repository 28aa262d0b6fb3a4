package org.xvkfc;

/**
 * The native methods behind {@link FaceClusterEngine}, on a handle kept as a long (0: closed).
 * Each checks its arguments again natively and raises a Java exception instead of failing.
 */
final class NativeEngine {
  static {
    System.loadLibrary("xvkfc_jni");
  }

  private NativeEngine() {}

  static native long open(String modelDir);

  static native void close(long handle);

  static native float[] extractFeature(long handle, byte[] yuv420, int width, int height,
      int left, int top, int faceWidth, int faceHeight);

  static native int compare(long handle, float[] a, float[] b);

  static native void addFace(long handle, float[] feature, int faceId);

  static native Cluster[] cluster(long handle, Cluster[] existing);

  static native Cluster[] clusterGallery(long handle, float[][] features, int[] faceIds,
      Cluster[] existing, ProgressListener listener);

  static native float[] representative(long handle, float[][] features);

  static native int recommend(long handle, Cluster[] clusters, float[] feature);
}
