package org.xvkfc;

import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Paths;
import org.junit.jupiter.api.Test;

class NativeMemoryTest {
  private static final float[][] FACES = new TestFaces(31, 4).faces(32);

  /** Resident memory of the process in kB. The test JVM pre-touches a fixed heap, so growth is native. */
  private static long residentKb() throws IOException {
    for (String line : Files.readAllLines(Paths.get("/proc/self/status"))) {
      if (line.startsWith("VmRSS:")) return Long.parseLong(line.replaceAll("[^0-9]", ""));
    }
    throw new IOException("no VmRSS line");
  }

  /** An engine closed holding a result list and 32 queued faces (some 130 kB). */
  private static void useAndClose() {
    FaceClusterEngine engine = new FaceClusterEngine(TestFaces.MODELS);
    for (int id = 0; id < FACES.length; ++id) engine.addFace(FACES[id], id);
    Cluster[] clusters = engine.cluster(new Cluster[0]);
    engine.recommend(clusters, FACES[0]);
    engine.representative(FACES);
    for (int id = 0; id < FACES.length; ++id) engine.addFace(FACES[id], 100 + id);
    engine.close();
  }

  @Test
  void hundredsOfEnginesLeaveNoNativeMemoryBehind() throws IOException {
    for (int i = 0; i < 100; ++i) useAndClose(); // compiled code and allocator pools settle
    long before = residentKb();
    for (int i = 0; i < 400; ++i) useAndClose();
    long grown = residentKb() - before;
    // 400 engines left open would keep some 60 MB, 400 result lists not given
    // back some 6 MB; without a leak it grows by tens of kB.
    assertTrue(grown < 3 * 1024, "resident memory grew by " + grown + " kB");
  }
}
