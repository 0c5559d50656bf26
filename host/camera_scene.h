/// A furnished room seen by a pinhole camera: textured walls, boxes, balls, a pole and a board under a
/// projected pattern of dots, with a plate without texture and an opening into nothing.
///
/// Lengths in millimetres; x to the right, y down, z away from the cameras.
#ifndef FILTERPROCESSOR_HOST_CAMERA_SCENE_H
#define FILTERPROCESSOR_HOST_CAMERA_SCENE_H

#include <cstdint>
#include <vector>

namespace devhost {

struct Vec3 {
  double x = 0, y = 0, z = 0;
};

/// A pinhole camera at (eye_x, 0, 0) that looks along z.
struct View {
  std::uint32_t width = 0, height = 0;
  double focal_length = 0;  ///< pixels
  double centre_x = 0, centre_y = 0;
  double eye_x = 0;
};

/// How a pixel's surface lies.
struct Glance {
  float facing = 0;  ///< cosine of the angle between its normal and the ray to the camera
  float shine = 0;   ///< cosine of the angle between its normal and that of a mirror that shows the lamp
};

struct Picture {
  std::uint32_t width = 0, height = 0;
  std::vector<std::uint8_t> grey;
  std::vector<float> depth;     ///< z of the surface seen, 0 for none
  std::vector<Glance> glances;  ///< where they were asked for
};

/// Goes to and fro between -1 and 1, `steps` frames each way, from 0.
double swing(unsigned frame, unsigned steps);

class Scene {
 public:
  /// `seed` chooses textures and places, `frame` the moment: a box and a ball move by 2 to 4 mm a frame. Of the contrast of
  /// textures and dots there is the share `texture`.
  Scene(std::uint64_t seed, unsigned frame, double texture = 1);

  /// What a sensor with the noise `noise_seed` records. All views of one scene share textures and dots.
  Picture render(const View& view, std::uint64_t noise_seed, bool glances = false) const;

 private:
  enum class Shape { kRoom, kBox, kBall };
  struct Material {
    double albedo = 0.65;
    double contrast = 0.5;  // of the texture
    double dots = 1.0;      // how much of the projected dots comes back
    bool solid = true;      // otherwise an opening with nothing behind
  };
  struct Piece {
    Shape shape;
    Vec3 centre;
    Vec3 half;  // half extents along its own axes; of a ball three times the radius
    Material material;
    Vec3 play = {};             // how far the seed may move the centre
    double yaw = 0, pitch = 0;  // tangents of half the angles
  };
  struct Body {
    Shape shape;
    Vec3 centre, half;
    Vec3 axes[3];
    Material material;
  };
  struct Surface;

  void add(const Piece& piece);
  Surface surface_at(const Body& body, Vec3 point) const;
  double brightness(const Body& body, Vec3 point, double focal_length) const;
  Glance glance(const Body& body, Vec3 point, Vec3 ray) const;

  std::uint64_t seed_;
  double texture_;
  std::vector<Body> bodies_;
};

}  // namespace devhost

#endif
