package org.xvkfc;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import org.junit.jupiter.api.Test;

class PlannedImportTest {
  // More faces than one run takes (64), so the import has several runs.
  private static final int FACES = 150;
  private final float[][] gallery = new TestFaces(21, 5).faces(FACES);
  private final int[] ids = new int[FACES];

  PlannedImportTest() {
    for (int i = 0; i < FACES; ++i) ids[i] = 1000 + i;
  }

  /** Imports the gallery into one stored cluster; the listener sees every call. */
  private Cluster[] importWith(FaceClusterEngine engine, ProgressListener listener) {
    Cluster stored = new Cluster(0, new int[] {1, 2}, gallery[0], 1);
    return engine.clusterGallery(gallery, ids, new Cluster[] {stored}, listener);
  }

  private static void assertEveryFaceOnce(Cluster[] clusters) {
    Map<Integer, Integer> clusterOf = TestFaces.clusterOfFace(clusters);
    assertEquals(FACES + 2, clusterOf.size());
    for (int i = 0; i < FACES; ++i) assertTrue(clusterOf.containsKey(1000 + i));
  }

  @Test
  void progressCountsUpToTheWholeGallery() {
    List<int[]> calls = new ArrayList<>();
    try (FaceClusterEngine engine = new FaceClusterEngine(TestFaces.MODELS)) {
      Cluster[] clusters = importWith(engine, (done, total) -> calls.add(new int[] {done, total}));
      assertEveryFaceOnce(clusters);
      // Faces of one person share a cluster: row i is person i % 5.
      Map<Integer, Integer> clusterOf = TestFaces.clusterOfFace(clusters);
      for (int i = 5; i < FACES; ++i) {
        assertEquals(clusterOf.get(1000 + i % 5), clusterOf.get(1000 + i), "row " + i);
      }
    }
    assertTrue(calls.size() > 1);
    for (int k = 0; k < calls.size(); ++k) {
      assertEquals(FACES, calls.get(k)[1]);
      assertTrue(k == 0 || calls.get(k)[0] >= calls.get(k - 1)[0]);
    }
    assertEquals(FACES, calls.get(calls.size() - 1)[0]);
  }

  @Test
  void aStoppedImportHandsOutEveryFaceOnce() {
    int[] calls = {0};
    try (FaceClusterEngine engine = new FaceClusterEngine(TestFaces.MODELS)) {
      assertEveryFaceOnce(importWith(engine, (done, total) -> ++calls[0] < 1));
      assertEquals(1, calls[0]);
      // Nothing stays queued: the same import runs again in full.
      assertEveryFaceOnce(importWith(engine, null));
    }
  }

  @Test
  void aListenerThatThrowsStopsTheImportWithItsException() {
    RuntimeException thrown = new UnsupportedOperationException("listener failed");
    try (FaceClusterEngine engine = new FaceClusterEngine(TestFaces.MODELS)) {
      assertSame(thrown, assertThrows(UnsupportedOperationException.class,
          () -> importWith(engine, (done, total) -> {
            throw thrown;
          })));
      assertEveryFaceOnce(importWith(engine, null));
    }
  }
}
