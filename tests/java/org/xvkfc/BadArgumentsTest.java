package org.xvkfc;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;

import java.util.Arrays;
import java.util.stream.Stream;
import org.junit.jupiter.api.AfterAll;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.DynamicTest;
import org.junit.jupiter.api.TestFactory;
import org.junit.jupiter.api.function.Executable;

/** Every argument a Java caller can get wrong throws, and the engine goes on working. */
class BadArgumentsTest {
  private static FaceClusterEngine engine;
  private static final float[] FEATURE = new TestFaces(11, 1).face(0);
  private static final float[] SHORT = Arrays.copyOf(FEATURE, 959);
  private static final Cluster CLUSTER = new Cluster(0, new int[] {7}, FEATURE, 7);
  private static final Cluster[] NONE = new Cluster[0];

  @BeforeAll
  static void open() {
    engine = new FaceClusterEngine(TestFaces.MODELS);
  }

  @AfterAll
  static void close() {
    engine.close();
  }

  private static DynamicTest bad(String name, Class<? extends Throwable> expected, Executable call) {
    return DynamicTest.dynamicTest(name, () -> {
      assertThrows(expected, call);
      assertEquals(1023, engine.compare(FEATURE, FEATURE));
    });
  }

  private static Executable extract(int length, int width, int height, int left, int faceWidth) {
    return () -> engine.extractFeature(new byte[length], width, height, left, 0, faceWidth, 4);
  }

  @TestFactory
  Stream<DynamicTest> badArguments() {
    Class<NullPointerException> npe = NullPointerException.class;
    Class<IllegalArgumentException> iae = IllegalArgumentException.class;
    float[][] rows = {FEATURE, FEATURE};
    return Stream.of(
        bad("null model folder", npe, () -> new FaceClusterEngine(null)),
        bad("null image", npe, () -> engine.extractFeature(null, 4, 4, 0, 0, 4, 4)),
        // 5 x 3: 15 luma bytes and two 3 x 2 chroma planes, 27 in all.
        bad("image one byte short", iae, extract(26, 5, 3, 0, 4)),
        bad("zero width", iae, extract(27, 0, 3, 0, 4)),
        bad("pixels x 3 beyond int", iae, extract(27, 40000, 20000, 0, 4)),
        bad("face right edge beyond int", iae, extract(27, 5, 3, 2, Integer.MAX_VALUE)),
        bad("null feature to compare", npe, () -> engine.compare(FEATURE, null)),
        bad("short feature to compare", iae, () -> engine.compare(SHORT, FEATURE)),
        bad("null face", npe, () -> engine.addFace(null, 1)),
        bad("short face", iae, () -> engine.addFace(SHORT, 1)),
        bad("cluster without face ids", npe, () -> new Cluster(0, null, FEATURE, 0)),
        bad("cluster feature of 959", iae, () -> new Cluster(0, new int[0], SHORT, 0)),
        bad("cluster id -2", iae, () -> new Cluster(-2, new int[0], null, -1)),
        bad("null clusters", npe, () -> engine.cluster(null)),
        bad("null cluster element", npe, () -> engine.cluster(new Cluster[] {CLUSTER, null})),
        bad("null gallery", npe, () -> engine.clusterGallery(null, null, NONE, null)),
        bad("empty gallery", iae, () -> engine.clusterGallery(new float[0][], null, NONE, null)),
        bad("null gallery row", npe,
            () -> engine.clusterGallery(new float[][] {FEATURE, null}, null, NONE, null)),
        bad("short gallery row", iae,
            () -> engine.clusterGallery(new float[][] {SHORT}, null, NONE, null)),
        bad("gallery ids of another length", iae,
            () -> engine.clusterGallery(rows, new int[] {1}, NONE, null)),
        bad("gallery ids repeated", iae,
            () -> engine.clusterGallery(rows, new int[] {3, 3}, NONE, null)),
        bad("gallery id already clustered", iae,
            () -> engine.clusterGallery(rows, new int[] {6, 7}, new Cluster[] {CLUSTER}, null)),
        bad("gallery with null clusters", npe, () -> engine.clusterGallery(rows, null, null, null)),
        bad("null features for a representative", npe, () -> engine.representative(null)),
        bad("no features for a representative", iae, () -> engine.representative(new float[0][])),
        bad("short feature for a representative", iae,
            () -> engine.representative(new float[][] {FEATURE, SHORT})),
        bad("null clusters to recommend from", npe, () -> engine.recommend(null, FEATURE)),
        bad("short feature to recommend", iae,
            () -> engine.recommend(new Cluster[] {CLUSTER}, SHORT)));
  }
}
