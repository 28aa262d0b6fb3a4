package org.xvkfc;

/**
 * One cluster as the library and the application exchange it: its id, the ids of its faces, its
 * representative feature and the face that feature came from. Immutable: arrays are copied in and
 * out.
 *
 * <p>Id -1 is the bucket of faces in no cluster; it has no feature. A cluster (id 0 or more) has a
 * feature of 960 floats, or none when the library could not compute one (it then takes the
 * cluster back as it is, but compares nothing with it).
 */
public final class Cluster {
  private final int id;
  private final int[] faceIds;
  private final float[] feature; // null: none
  private final int representativeFaceId;

  /**
   * @param id -1 for the bucket, otherwise 0 or more
   * @param faceIds the cluster's face ids, not null
   * @param feature 960 floats, or null or empty for none (the bucket's is ignored)
   * @param representativeFaceId the face the feature belongs to (-1 for the bucket)
   * @throws NullPointerException for null face ids
   * @throws IllegalArgumentException for an id below -1 or a feature of another length
   */
  public Cluster(int id, int[] faceIds, float[] feature, int representativeFaceId) {
    if (faceIds == null) throw new NullPointerException("faceIds");
    if (id < -1) throw new IllegalArgumentException("cluster id below -1: " + id);
    boolean hasFeature = id >= 0 && feature != null && feature.length > 0;
    if (hasFeature) Checks.feature(feature);
    this.id = id;
    this.faceIds = faceIds.clone();
    this.feature = hasFeature ? feature.clone() : null;
    this.representativeFaceId = representativeFaceId;
  }

  public int id() {
    return id;
  }

  public int[] faceIds() {
    return faceIds.clone();
  }

  /** The representative feature (960 floats), or null for the bucket and a cluster without one. */
  public float[] feature() {
    return feature == null ? null : feature.clone();
  }

  public int representativeFaceId() {
    return representativeFaceId;
  }
}
