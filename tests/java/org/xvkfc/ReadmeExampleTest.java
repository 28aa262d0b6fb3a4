package org.xvkfc;

import static org.junit.jupiter.api.Assertions.assertEquals;

import com.example.gallery.PhotoImport;
import java.util.Map;
import java.util.Random;
import org.junit.jupiter.api.Test;

/** The README's example on photos of three people with textures of their own. */
class ReadmeExampleTest {
  private static final int SIDE = 48;

  /** A photo of `person` (a seeded texture) with a little noise of its own. */
  private static PhotoImport.Face photo(int id, int person) {
    Random texture = new Random(person);
    Random noise = new Random(1000 + id);
    byte[] yuv = new byte[SIDE * SIDE + 2 * (SIDE / 2) * (SIDE / 2)];
    for (int i = 0; i < yuv.length; ++i) {
      yuv[i] = (byte) (i < SIDE * SIDE ? texture.nextInt(200) + noise.nextInt(24) : 128);
    }
    return new PhotoImport.Face(id, yuv, SIDE, SIDE, 0, 0, SIDE);
  }

  private static PhotoImport.Face[] photos(int firstId, int count) {
    PhotoImport.Face[] faces = new PhotoImport.Face[count];
    for (int k = 0; k < count; ++k) faces[k] = photo(firstId + k, (firstId + k) % 3);
    return faces;
  }

  @Test
  void photosOfThreePeopleMakeThreeClusters() {
    try (PhotoImport gallery = new PhotoImport(TestFaces.MODELS)) {
      Cluster[] stored = gallery.add(new Cluster[0], photos(0, 12));
      stored = gallery.add(stored, photos(12, 6));
      Map<Integer, Integer> clusterOf = TestFaces.clusterOfFace(stored);
      assertEquals(18, clusterOf.size());
      for (int id = 0; id < 18; ++id) assertEquals(clusterOf.get(id % 3), clusterOf.get(id));
      assertEquals(clusterOf.get(1), (Integer) gallery.suggest(stored, photo(100, 1)));
    }
  }
}
