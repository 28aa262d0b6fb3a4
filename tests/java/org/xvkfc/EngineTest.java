package org.xvkfc;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import org.junit.jupiter.api.Test;

class EngineTest {
  private static final int PEOPLE = 4;

  /** An application's cycle: two batches clustered into the previous result, then queries. */
  private static String cycle(long seed) {
    TestFaces faces = new TestFaces(seed, PEOPLE);
    try (FaceClusterEngine engine = new FaceClusterEngine(TestFaces.MODELS)) {
      Cluster[] clusters = new Cluster[0];
      for (int batch = 0; batch < 2; ++batch) {
        for (int id = batch * 24; id < (batch + 1) * 24; ++id) {
          engine.addFace(faces.face(id % PEOPLE), id);
        }
        clusters = engine.cluster(clusters);
        Map<Integer, Integer> clusterOf = TestFaces.clusterOfFace(clusters);
        assertEquals((batch + 1) * 24, clusterOf.size());
        // One cluster per person: face id % PEOPLE is the person.
        for (int id = 0; id < clusterOf.size(); ++id) {
          assertEquals(clusterOf.get(id % PEOPLE), clusterOf.get(id), "face " + id);
        }
      }
      Map<Integer, Integer> clusterOf = TestFaces.clusterOfFace(clusters);
      assertEquals(clusterOf.get(2), (Integer) engine.recommend(clusters, faces.face(2)));

      float[][] person1 = {faces.face(1), faces.face(1), faces.face(1)};
      float[] chosen = engine.representative(person1);
      assertTrue(Arrays.stream(person1).anyMatch(row -> Arrays.equals(row, chosen)));
      // representative() leaves nothing queued: a run now changes nothing.
      assertEquals(describe(clusters), describe(engine.cluster(clusters)));
      assertEquals(1023, engine.compare(chosen, chosen));
      return describe(clusters);
    }
  }

  private static String describe(Cluster[] clusters) {
    StringBuilder text = new StringBuilder();
    for (Cluster c : clusters) {
      text.append(c.id()).append(Arrays.toString(c.faceIds())).append(c.representativeFaceId());
      text.append(Arrays.hashCode(c.feature())).append(';');
    }
    return text.toString();
  }

  @Test
  void applicationCycle() {
    cycle(301);
  }

  @Test
  void twoEnginesOnTwoThreadsGiveWhatOneThreadGives() throws Exception {
    String alone = cycle(7);
    ExecutorService pool = Executors.newFixedThreadPool(2);
    try {
      List<Future<String>> results = new ArrayList<>();
      for (int t = 0; t < 2; ++t) results.add(pool.submit(() -> cycle(7)));
      for (Future<String> result : results) assertEquals(alone, result.get());
    } finally {
      pool.shutdown();
    }
  }

  @Test
  void aClosedEngineThrowsAndClosesAgainQuietly() {
    FaceClusterEngine engine = new FaceClusterEngine(TestFaces.MODELS);
    engine.close();
    engine.close();
    float[] feature = new TestFaces(1, 1).face(0);
    Cluster[] none = new Cluster[0];
    byte[] image = new byte[6];
    List<Runnable> calls = Arrays.asList(
        () -> engine.extractFeature(image, 2, 2, 0, 0, 2, 2),
        () -> engine.compare(feature, feature),
        () -> engine.addFace(feature, 0),
        () -> engine.cluster(none),
        () -> engine.clusterGallery(new float[][] {feature}, null, none, null),
        () -> engine.representative(new float[][] {feature}),
        () -> engine.recommend(none, feature));
    for (Runnable call : calls) assertThrows(IllegalStateException.class, call::run);
  }

  @Test
  void libraryFailuresCarryTheLoggedLine() {
    IllegalStateException init = assertThrows(IllegalStateException.class,
        () -> new FaceClusterEngine("/nonexistent/models"));
    assertTrue(init.getMessage().startsWith("itf_xvk_Init failed (-1)"), init.getMessage());

    TestFaces faces = new TestFaces(3, 1);
    try (FaceClusterEngine engine = new FaceClusterEngine(TestFaces.MODELS)) {
      engine.addFace(faces.face(0), 1);
      Cluster tooHigh = new Cluster(Integer.MAX_VALUE, new int[] {0}, faces.face(0), 0);
      IllegalStateException rejected = assertThrows(IllegalStateException.class,
          () -> engine.cluster(new Cluster[] {tooHigh}));
      assertTrue(rejected.getMessage().contains("rejected element 0"), rejected.getMessage());
      // The face stays queued, so the library would drop it here.
      assertThrows(IllegalStateException.class,
          () -> engine.representative(new float[][] {faces.face(0)}));
      assertEquals(1, TestFaces.clusterOfFace(engine.cluster(new Cluster[0])).size());
    }
  }
}
