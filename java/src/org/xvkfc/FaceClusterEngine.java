package org.xvkfc;

/**
 * The face clustering library for one caller: extracts and compares 960-float face features,
 * clusters faces into the application's clusters, picks representatives and recommends clusters.
 *
 * <p>Owns one native handle from the constructor to {@link #close()}; nothing native is kept after
 * it. Arrays are copied in and out, never held.
 *
 * <p>Threads: every call runs synchronously on the caller's thread. Engines on different threads
 * are independent; one engine must not be used from two threads at once without a lock.
 *
 * <p>Arguments are checked before anything reaches native code: a null array throws {@link
 * NullPointerException}, a feature that is not 960 floats or an image shorter than its planes
 * {@link IllegalArgumentException}. A closed engine throws {@link IllegalStateException}, as does
 * a library call that fails, with the line the library logged (tag FC_Native) as its message.
 */
public final class FaceClusterEngine implements AutoCloseable {
  private long handle;
  private int queuedFaces; // added since the last cluster(): they belong to the next run

  /**
   * Loads the closed libraries' models from {@code modelDir}.
   *
   * @throws IllegalStateException with the library's code when they cannot be initialised
   */
  public FaceClusterEngine(String modelDir) {
    if (modelDir == null) throw new NullPointerException("modelDir");
    handle = NativeEngine.open(modelDir);
  }

  /**
   * The feature of the face in the rectangle of a planar YUV 4:2:0 image (a width x height Y
   * plane, then U and V planes of ((width+1)/2) x ((height+1)/2) bytes, no row padding).
   *
   * @return 960 floats, or null when no feature could be extracted there
   */
  public float[] extractFeature(byte[] yuv420, int width, int height, int left, int top,
      int faceWidth, int faceHeight) {
    Checks.image(yuv420, width, height, left, top, faceWidth, faceHeight);
    return NativeEngine.extractFeature(
        open(), yuv420, width, height, left, top, faceWidth, faceHeight);
  }

  /** Similarity of two features: 1023 identical, 511 unrelated, 0 opposite. */
  public int compare(float[] a, float[] b) {
    Checks.feature(a);
    Checks.feature(b);
    return NativeEngine.compare(open(), a, b);
  }

  /** Queues a face for the next {@link #cluster} under the application's id (ids unique). */
  public void addFace(float[] feature, int faceId) {
    Checks.feature(feature);
    NativeEngine.addFace(open(), feature, faceId);
    queuedFaces++;
  }

  /**
   * Clusters the faces added since the last call together with the application's clusters
   * {@code existing} (the previous result, or an empty array), and returns the new list: the
   * bucket -1 first, then clusters numbered 0, 1, 2, ... With no faces added, the previous
   * result (existing is then not merged).
   *
   * @throws IllegalStateException when the library refuses the list, e.g. a cluster id too close
   *     to Integer.MAX_VALUE for the new clusters to be numbered after it (the added faces then
   *     stay queued)
   */
  public Cluster[] cluster(Cluster[] existing) {
    Checks.clusters(existing);
    Cluster[] result = NativeEngine.cluster(open(), existing);
    queuedFaces = 0;
    return result;
  }

  /**
   * Clusters a whole gallery of new faces into {@code existing} in planned runs of faces that
   * resemble each other, telling {@code listener} (may be null) after every run. A listener that
   * returns false stops the import: the result then holds every new face once, those not yet
   * clustered in the bucket -1. A listener that throws stops it too, and its exception comes out.
   *
   * @param faceIds one id per feature, unique and in no existing cluster; null for 0..n-1
   * @throws IllegalStateException when faces added with {@link #addFace} are waiting for {@link
   *     #cluster}
   */
  public Cluster[] clusterGallery(float[][] features, int[] faceIds, Cluster[] existing,
      ProgressListener listener) {
    Checks.featureRows(features);
    if (faceIds != null && faceIds.length != features.length) {
      throw new IllegalArgumentException(
          faceIds.length + " face ids for " + features.length + " features");
    }
    Checks.clusters(existing);
    requireNoQueuedFaces();
    return NativeEngine.clusterGallery(open(), features, faceIds, existing, listener);
  }

  /**
   * The feature, among {@code features}, most similar on average to the others (a copy).
   *
   * @throws IllegalStateException when faces added with {@link #addFace} are waiting for {@link
   *     #cluster}: the library would drop them
   */
  public float[] representative(float[][] features) {
    Checks.featureRows(features);
    requireNoQueuedFaces();
    return NativeEngine.representative(open(), features);
  }

  /** The id of the cluster whose feature fits {@code feature} best, or -1 when none fits. */
  public int recommend(Cluster[] clusters, float[] feature) {
    Checks.clusters(clusters);
    Checks.feature(feature);
    return NativeEngine.recommend(open(), clusters, feature);
  }

  /** Releases the native handle. A second call does nothing. */
  @Override
  public void close() {
    if (handle == 0) return;
    long closing = handle;
    handle = 0;
    NativeEngine.close(closing);
  }

  private long open() {
    if (handle == 0) throw new IllegalStateException("the engine is closed");
    return handle;
  }

  private void requireNoQueuedFaces() {
    if (queuedFaces > 0) {
      throw new IllegalStateException(queuedFaces + " added faces are waiting for cluster()");
    }
  }
}
