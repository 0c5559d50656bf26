#include "camera_scene.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "hash_noise.h"

namespace devhost {

namespace {

constexpr Vec3 kProjector{15, -8, 0};
constexpr Vec3 kLight{-0.36, -0.48, -0.8};  // towards the lamp, length 1
constexpr double kFloor = 480;
constexpr double kBackWall = 4700;

Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec3 operator*(double s, Vec3 a) { return {s * a.x, s * a.y, s * a.z}; }
double dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

// Cosine and sine of the angle whose half has tangent t: no library function whose last bit may differ.
struct Turn {
  explicit Turn(double t) : cosine((1 - t * t) / (1 + t * t)), sine(2 * t / (1 + t * t)) {}
  double cosine, sine;
};

struct Span {
  double enter, leave;
};

Span cross_box(Vec3 origin, Vec3 direction, Vec3 half) {
  Span span{-std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
  const auto slab = [&span](double o, double d, double h) {
    const double inverse = 1.0 / (d != 0 ? d : 1e-12);
    const double a = (-h - o) * inverse, b = (h - o) * inverse;
    span = {std::max(span.enter, std::min(a, b)), std::min(span.leave, std::max(a, b))};
  };
  slab(origin.x, direction.x, half.x);
  slab(origin.y, direction.y, half.y);
  slab(origin.z, direction.z, half.z);
  return span;
}

Span cross_ball(Vec3 origin, Vec3 direction, double radius) {
  const double a = dot(direction, direction), b = dot(origin, direction);
  const double discriminant = b * b - a * (dot(origin, origin) - radius * radius);
  if (discriminant < 0) return {1, 0};
  const double root = std::sqrt(discriminant);
  return {(-b - root) / a, (-b + root) / a};
}

struct Range {
  std::uint32_t begin, end;
};
Range pixels(double low, double high, std::uint32_t size) {
  const double most = size;
  const auto clip = [most](double v) { return static_cast<std::uint32_t>(std::clamp(v, 0.0, most)); };
  return {clip(std::floor(low)), clip(std::ceil(high) + 1)};
}

// Round dots of 1.5 pixels at random places of a random three quarters of the cells of a 5 pixel grid.
double dot_pattern(std::uint64_t salt, double u, double v) {
  constexpr double kCell = 5.0, kRadius = 1.5;
  const auto column = static_cast<std::int64_t>(std::floor(u / kCell));
  const auto row = static_cast<std::int64_t>(std::floor(v / kCell));
  const std::uint64_t bits = hash(salt, column, row);
  if (bits % 4 == 0) return 0;
  const auto place = [bits](std::int64_t cell, int shift) {
    return static_cast<double>(cell) * kCell + kRadius + (kCell - 2 * kRadius) * fraction(bits, shift);
  };
  const double du = (u - place(column, 8)) / kRadius, dv = (v - place(row, 24)) / kRadius;
  const double rest = std::max(0.0, 1.0 - du * du - dv * dv);
  return rest * (2.0 - rest);
}

}  // namespace

double swing(unsigned frame, unsigned steps) {
  const unsigned phase = (frame + steps / 2) % (2 * steps);
  return 2.0 * (phase < steps ? phase : 2 * steps - phase) / steps - 1.0;
}

struct Scene::Surface {
  Vec3 normal;
  double u, v;  // in the plane of the face
  int face;
};

Scene::Scene(std::uint64_t seed, unsigned frame, double texture)
    : seed_(scramble(seed + kGolden)), texture_(texture) {
  const double slide = 120 * swing(frame, 60), bounce = 30 * swing(frame, 25);
  const auto standing = [](double x, double z, Vec3 half) { return Vec3{x, kFloor - half.y, z}; };
  const Vec3 cupboard{260, 330, 260}, crate{170, 190, 130}, cart{120, 140, 90}, tin{45, 30, 25};
  const Vec3 ball{85, 85, 85}, globe{210, 210, 210};
  const Material dull{.albedo = 0.7, .contrast = 0, .dots = 0};

  add({Shape::kRoom, {0, -520, kBackWall / 2}, {1900, 1000, kBackWall / 2}, {.contrast = 0.6}});
  add({Shape::kBox, {-100, -420, kBackWall}, {520, 360, 2}, dull, {250, 80, 0}});
  add({Shape::kBox, {1150, -700, kBackWall}, {330, 360, 2}, {.solid = false}, {100, 80, 0}});
  add({Shape::kBox, {-520, -60, 2300}, {420, 330, 12}, {.contrast = 0.4}, {80, 40, 150}, 0.22, -0.2});
  add({Shape::kBox, standing(780, 2700, cupboard), cupboard, {.albedo = 0.5}, {90, 0, 200}, 0.3});
  add({Shape::kBox, standing(430, 1700, crate), crate, {}, {60, 0, 100}, -0.25});
  add({Shape::kBox, standing(-330 + slide, 1350, cart), cart, {.albedo = 0.45}, {0, 0, 60}, 0.15});
  add({Shape::kBox, {210, -520, 1250}, {6, 1000, 6}, {.albedo = 0.8}, {50, 0, 80}, 0.41});
  add({Shape::kBox, {190, 110, 480}, tin, {.albedo = 0.55}, {25, 15, 20}, 0.2, 0.1});
  add({Shape::kBall, {-190, -70 + bounce, 760}, ball, {.albedo = 0.7}, {30, 20, 40}, 0.2, 0.3});
  add({Shape::kBall, standing(60, 2350, globe), globe, {}, {80, 0, 100}, 0.1, 0.2});
}

void Scene::add(const Piece& piece) {
  const auto index = static_cast<std::int64_t>(bodies_.size());
  const auto vary = [&](int quantity) { return 2.0 * fraction(hash(seed_, index, ~quantity), 8) - 1.0; };
  const Turn about_y(piece.yaw * (1 + 0.3 * vary(3))), about_x(piece.pitch * (1 + 0.3 * vary(4)));
  const Vec3 ahead{about_y.sine, 0, about_y.cosine}, down{0, 1, 0};
  const Vec3 moved{piece.play.x * vary(0), piece.play.y * vary(1), piece.play.z * vary(2)};
  bodies_.push_back({piece.shape,
                     piece.centre + moved,
                     piece.half,
                     {{about_y.cosine, 0, -about_y.sine},
                      about_x.cosine * down + about_x.sine * ahead,
                      about_x.cosine * ahead - about_x.sine * down},
                     piece.material});
}

Scene::Surface Scene::surface_at(const Body& body, Vec3 point) const {
  const Vec3 from_centre = point - body.centre;
  const double at[3] = {dot(body.axes[0], from_centre), dot(body.axes[1], from_centre),
                        dot(body.axes[2], from_centre)};
  const double half[3] = {body.half.x, body.half.y, body.half.z};
  int face = 0;  // the axis along which the point is farthest out
  for (int i = 1; i < 3; ++i) {
    if (std::abs(at[i]) * half[face] > std::abs(at[face]) * half[i]) face = i;
  }
  Vec3 normal = (at[face] < 0 ? -1.0 : 1.0) * body.axes[face];
  if (body.shape == Shape::kBall) normal = (1.0 / body.half.x) * from_centre;
  if (body.shape == Shape::kRoom) normal = -1.0 * normal;
  return {normal, at[(face + 1) % 3], at[(face + 2) % 3], 2 * face + (at[face] < 0)};
}

double Scene::brightness(const Body& body, Vec3 point, double focal_length) const {
  if (!body.material.solid) return 8;
  const Surface surface = surface_at(body, point);
  const auto salt = scramble(seed_ + 16 * static_cast<std::uint64_t>(&body - bodies_.data()) +
                             static_cast<std::uint64_t>(surface.face));
  double texture = 0;
  for (const double cell : {9.0, 34.0, 150.0}) {  // grains of less than two pixels fade out
    const double weight = std::clamp(cell * focal_length / point.z - 1.0, 0.0, 1.0);
    if (weight > 0) texture += weight * value_noise(salt, surface.u / cell, surface.v / cell);
  }
  const double lit = 0.4 + 0.6 * std::max(0.0, dot(surface.normal, kLight));
  const double ambient = 75.0 * lit * (1.0 + 0.6 * texture_ * body.material.contrast * texture);

  const Vec3 ray = point - kProjector;
  const double strength = std::min(1.6, 1500.0 * 1500.0 / (point.z * point.z));
  const double slope = std::clamp(-dot(surface.normal, ray) / ray.z, 0.0, 1.0);
  const double dots = texture_ * body.material.dots * strength * slope *
                      dot_pattern(seed_, focal_length * ray.x / ray.z, focal_length * ray.y / ray.z);
  return 6.0 + body.material.albedo * (ambient + 160.0 * dots);
}

Glance Scene::glance(const Body& body, Vec3 point, Vec3 ray) const {
  const Vec3 normal = surface_at(body, point).normal;
  const double distance = std::sqrt(dot(ray, ray));
  const Vec3 halfway = kLight - (1 / distance) * ray;  // between the lamp and the camera
  return {static_cast<float>(-dot(normal, ray) / distance),
          static_cast<float>(dot(normal, halfway) / std::sqrt(std::max(dot(halfway, halfway), 1e-12)))};
}

Picture Scene::render(const View& view, std::uint64_t noise_seed, bool glances) const {
  const std::size_t count = std::size_t{view.width} * view.height;
  Picture picture{view.width, view.height, std::vector<std::uint8_t>(count), std::vector<float>(count),
                  std::vector<Glance>(glances ? count : 0)};
  std::vector<double> nearest(count, std::numeric_limits<double>::infinity());
  std::vector<std::uint8_t> seen(count);
  const Vec3 eye{view.eye_x, 0, 0};
  const double f = view.focal_length;
  const auto direction = [&view, f](std::uint32_t column, std::uint32_t row) {
    return Vec3{(column - view.centre_x) / f, (row - view.centre_y) / f, 1};
  };

  for (std::size_t b = 0; b < bodies_.size(); ++b) {
    const Body& body = bodies_[b];
    const auto to_body = [&body](Vec3 v) {
      return Vec3{dot(body.axes[0], v), dot(body.axes[1], v), dot(body.axes[2], v)};
    };
    Range columns{0, view.width}, rows{0, view.height};
    if (body.shape != Shape::kRoom) {  // the part of the picture that its eight corners enclose
      double left = 1e9, right = -1e9, top = 1e9, bottom = -1e9;
      for (int corner = 0; corner < 8; ++corner) {
        const auto side = [corner](int bit) { return (corner >> bit & 1) != 0 ? 1.0 : -1.0; };
        const Vec3 p = body.centre - eye + side(0) * body.half.x * body.axes[0] +
                       side(1) * body.half.y * body.axes[1] + side(2) * body.half.z * body.axes[2];
        const double u = view.centre_x + f * p.x / p.z;
        const double v = view.centre_y + f * p.y / p.z;
        left = std::min(left, u), right = std::max(right, u);
        top = std::min(top, v), bottom = std::max(bottom, v);
      }
      columns = pixels(left, right, view.width);
      rows = pixels(top, bottom, view.height);
    }
    const Vec3 origin = to_body(eye - body.centre);
    for (std::uint32_t row = rows.begin; row < rows.end; ++row) {
      for (std::uint32_t column = columns.begin; column < columns.end; ++column) {
        const Vec3 ray = to_body(direction(column, row));
        const Span span = body.shape == Shape::kBall ? cross_ball(origin, ray, body.half.x)
                                                     : cross_box(origin, ray, body.half);
        const double z = body.shape == Shape::kRoom ? span.leave : span.enter;
        const std::size_t at = std::size_t{row} * view.width + column;
        if (span.enter <= span.leave && z > 0 && z < nearest[at]) {
          nearest[at] = z;
          seen[at] = static_cast<std::uint8_t>(b);
        }
      }
    }
  }

  for (std::uint32_t row = 0; row < view.height; ++row) {
    for (std::uint32_t column = 0; column < view.width; ++column) {
      const std::size_t at = std::size_t{row} * view.width + column;
      const Body& body = bodies_[seen[at]];
      const double light = brightness(body, eye + nearest[at] * direction(column, row), f);
      const double noise = std::sqrt(2.5 + 0.05 * light) * bell(hash(noise_seed, column, row));
      picture.grey[at] = static_cast<std::uint8_t>(std::clamp(light + noise + 0.5, 0.0, 255.0));
      picture.depth[at] = body.material.solid ? static_cast<float>(nearest[at]) : 0.0f;
      if (!glances || !body.material.solid) continue;
      const Vec3 ray = direction(column, row);
      picture.glances[at] = glance(body, eye + nearest[at] * ray, ray);
    }
  }
  return picture;
}

}  // namespace devhost
