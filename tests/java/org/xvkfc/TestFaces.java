package org.xvkfc;

import java.util.HashMap;
import java.util.Map;
import java.util.Random;

/** Seeded synthetic faces: people as unit base vectors, their faces as noisy unit copies. */
final class TestFaces {
  static final String MODELS = System.getProperty("xvkfc.models", ".");

  private final Random random;
  private final float[][] people;

  TestFaces(long seed, int peopleCount) {
    random = new Random(seed);
    people = new float[peopleCount][];
    for (int p = 0; p < peopleCount; ++p) people[p] = unit(gaussian(1.0));
  }

  /** A face of `person`: cosine about 0.92 with the base, so about 0.85 between two faces. */
  float[] face(int person) {
    float[] noise = gaussian(0.3 / Math.sqrt(Checks.FEATURE_DIM));
    for (int i = 0; i < noise.length; ++i) noise[i] += people[person][i];
    return unit(noise);
  }

  /** Row i is a face of person i % peopleCount. */
  float[][] faces(int count) {
    float[][] rows = new float[count][];
    for (int i = 0; i < count; ++i) rows[i] = face(i % people.length);
    return rows;
  }

  /** Each face id's cluster id; fails when a face id is in two clusters. */
  static Map<Integer, Integer> clusterOfFace(Cluster[] clusters) {
    Map<Integer, Integer> clusterOf = new HashMap<>();
    for (Cluster cluster : clusters) {
      for (int faceId : cluster.faceIds()) {
        if (clusterOf.put(faceId, cluster.id()) != null) {
          throw new AssertionError("face " + faceId + " is in two clusters");
        }
      }
    }
    return clusterOf;
  }

  private float[] gaussian(double sigma) {
    float[] values = new float[Checks.FEATURE_DIM];
    for (int i = 0; i < values.length; ++i) values[i] = (float) (sigma * random.nextGaussian());
    return values;
  }

  private static float[] unit(float[] values) {
    double squares = 0;
    for (float v : values) squares += (double) v * v;
    float scale = (float) (1 / Math.sqrt(squares));
    for (int i = 0; i < values.length; ++i) values[i] *= scale;
    return values;
  }
}
