package org.xvkfc;

/** Progress of {@link FaceClusterEngine#clusterGallery}, told on the caller's thread. */
public interface ProgressListener {
  /**
   * Called after every run of the import.
   *
   * @param facesDone new faces that have been through a run so far
   * @param facesTotal new faces of the import
   * @return true to go on; false stops the import after this run, and the result then holds
   *     every new face once, those not yet clustered in the bucket -1
   */
  boolean onProgress(int facesDone, int facesTotal);
}
