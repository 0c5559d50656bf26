#include "dev_host.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <deque>
#include <limits>
#include <mutex>
#include <utility>

struct zv_error {
  std::int32_t status;
  std::string message;
  std::string function;
  std::string args;
  std::int32_t exception_type;
};

struct zv_stream_profile_t {
  explicit zv_stream_profile_t(devhost::ProfileTraits s);
  zv_stream_profile_t(const zv_stream_profile_t&) = delete;
  zv_stream_profile_t& operator=(const zv_stream_profile_t&) = delete;
  ~zv_stream_profile_t();

  devhost::ProfileTraits traits;
  mutable std::atomic<long> references{1};
};

struct zv_frame_t {
  explicit zv_frame_t(devhost::FrameTraits s);
  zv_frame_t(const zv_frame_t&) = delete;
  zv_frame_t& operator=(const zv_frame_t&) = delete;
  ~zv_frame_t();

  void copy_info(const zv_frame_t& from);

  devhost::FrameTraits traits;  // without the pixels
  std::vector<unsigned char> data;
  devhost::Profile profile;
  devhost::Frame depth;  // of a set
  mutable std::atomic<long> references{1};
};

namespace devhost {

namespace {

std::atomic<long> live_frames{0};
std::atomic<long> live_profiles{0};
std::atomic<bool> data_hidden{false};
std::atomic<std::uint32_t> largest_frame{std::numeric_limits<std::uint32_t>::max()};

struct Fault {
  std::string function;
  int countdown = 0;
  bool happened = false;
};

struct Registry {
  std::mutex mutex;
  std::deque<std::unique_ptr<zv_error>> errors;
  bool logging = false;
  std::vector<std::string> log;
  Fault fault;
};
Registry& registry() {
  static Registry instance;
  return instance;
}
// Set while the log runs or a fault is armed, so that other calls need no lock.
std::atomic<bool> watched{false};

zv_error* add_error(std::int32_t status, const char* message, const char* function, const char* args,
                    std::int32_t exception_type) {
  const auto text = [](const char* t) { return std::string(t != nullptr ? t : ""); };
  auto error = std::make_unique<zv_error>(
      zv_error{status, text(message), text(function), text(args), exception_type});
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  r.errors.push_back(std::move(error));
  return r.errors.back().get();
}

bool note_call(const char* function) {
  if (!watched.load(std::memory_order_relaxed)) return false;
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  if (r.logging) r.log.emplace_back(function);
  const bool meant = r.fault.function.empty() || r.fault.function == function;
  if (r.fault.countdown == 0 || !meant || --r.fault.countdown > 0) return false;
  return r.fault.happened = true;
}

/// One call of a host function: logs it, lets an armed fault happen and refuses null objects.
class Call {
 public:
  Call(const char* function, zv_error** error) : function_(function), error_(error) {
    if (note_call(function)) fail("injected fault", "", 7);
  }
  template <typename Object>
  Call& needs(const Object* object, const char* name) {
    if (!failed_ && object == nullptr) fail("null pointer", name, ZV_EXCEPTION_INVALID_VALUE);
    return *this;
  }
  void fail(const char* message, const char* args, std::int32_t exception_type) {
    failed_ = true;
    zv_error* created = add_error(1, message, function_, args, exception_type);
    if (error_ != nullptr) *error_ = created;
  }
  explicit operator bool() const { return !failed_; }

 private:
  const char* function_;
  zv_error** error_;
  bool failed_ = false;
};

template <typename Object>
void drop(const Object* object) {
  if (object != nullptr && object->references.fetch_sub(1) == 1) delete object;
}

template <typename Object>
Object* share(const Object* object) {
  object->references.fetch_add(1);
  return const_cast<Object*>(object);
}

template <typename Object, typename Value, typename Traits>
Value read(const char* function, const Object* object, zv_error** error, Value Traits::*field) {
  return Call(function, error).needs(object, "object") ? object->traits.*field : Value{};
}

template <typename Object, typename Value, typename Traits>
void write(const char* function, Object* object, zv_error** error, Value Traits::*field, Value value) {
  if (Call(function, error).needs(object, "object")) object->traits.*field = value;
}

zv_frame_t* copy_of(const zv_frame_t& other) {
  Frame frame(new zv_frame_t({.type = other.traits.type}));
  frame->copy_info(other);
  frame->data = other.data;
  if (other.depth) frame->depth.reset(copy_of(*other.depth));
  return frame.release();
}

}  // namespace

void Release::operator()(zv_frame_t* frame) const { drop(frame); }
void Release::operator()(zv_stream_profile_t* profile) const { drop(profile); }

Profile make_profile(const ProfileTraits& traits) { return Profile(new zv_stream_profile_t(traits)); }

Frame make_frame(const FrameTraits& traits) {
  Frame frame(new zv_frame_t(traits));
  frame->data.resize(traits.pixels.size() * sizeof traits.pixels[0]);
  if (!traits.pixels.empty()) std::memcpy(frame->data.data(), traits.pixels.data(), frame->data.size());
  frame->profile =
      make_profile({traits.format, traits.width, traits.height, traits.intrinsic, traits.disparity});
  return frame;
}

Frame make_frame_set(Frame depth) {
  Frame set(new zv_frame_t({.type = ZV_FRAME_TYPE_SET}));
  set->depth = std::move(depth);
  return set;
}

Frame depth_frame_of(const zv_frame_t* frame) {
  if (frame->traits.type == ZV_FRAME_TYPE_SET && frame->depth) frame = frame->depth.get();
  return Frame(share(frame));
}

void attach_profile(zv_frame_t* frame, const ProfileTraits& traits) {
  frame->profile = make_profile(traits);
}

FrameTraits inspect(const zv_frame_t* frame) {
  FrameTraits traits = frame->traits;
  traits.pixels.resize(frame->data.size() / sizeof traits.pixels[0]);
  if (!traits.pixels.empty())
    std::memcpy(traits.pixels.data(), frame->data.data(), traits.pixels.size() * 2);
  if (frame->profile) {
    traits.disparity = frame->profile->traits.disparity;
    traits.intrinsic = frame->profile->traits.intrinsic;
  }
  return traits;
}

ProfileTraits inspect_profile(const zv_frame_t* frame) {
  return frame->profile ? frame->profile->traits : ProfileTraits{};
}

LiveObjects live_objects() { return {live_frames, live_profiles}; }

void clear_errors() {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  r.errors.clear();
}

std::size_t error_count() {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  return r.errors.size();
}

void start_call_log() {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  r.logging = true;
  r.log.clear();
  watched = true;
}

std::vector<std::string> stop_call_log() {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  r.logging = false;
  watched = r.fault.countdown > 0;
  return std::move(r.log);
}

void fail_call(std::string_view function, int occurrence) {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  r.fault = {std::string(function), occurrence, false};
  watched = true;
}

bool clear_fault() {
  Registry& r = registry();
  const std::lock_guard lock(r.mutex);
  watched = r.logging;
  return std::exchange(r.fault, {}).happened;
}

void hide_data(bool hidden) { data_hidden = hidden; }

void refuse_frames_above(std::uint32_t bytes) { largest_frame = bytes; }

}  // namespace devhost

using devhost::Call;
using devhost::FrameTraits;
using devhost::ProfileTraits;
using devhost::share;

zv_stream_profile_t::zv_stream_profile_t(ProfileTraits s) : traits(std::move(s)) {
  ++devhost::live_profiles;
}
zv_stream_profile_t::~zv_stream_profile_t() { --devhost::live_profiles; }

zv_frame_t::zv_frame_t(devhost::FrameTraits s) : traits(std::move(s)) {
  traits.pixels.clear();
  ++devhost::live_frames;
}
zv_frame_t::~zv_frame_t() { --devhost::live_frames; }

void zv_frame_t::copy_info(const zv_frame_t& from) {
  const std::int32_t type = traits.type;
  traits = from.traits;
  traits.type = type;
  profile.reset(from.profile ? share(from.profile.get()) : nullptr);
}

extern "C" {

zv_error* zv_create_error(int32_t status, const char* message, const char* function, const char* args,
                          int32_t exception_type) {
  return devhost::add_error(status, message, function, args, exception_type);
}
const char* zv_error_get_message(const zv_error* error) {
  return error ? error->message.c_str() : nullptr;
}
const char* zv_error_get_function(const zv_error* error) {
  return error ? error->function.c_str() : nullptr;
}
const char* zv_error_get_args(const zv_error* error) { return error ? error->args.c_str() : nullptr; }
int32_t zv_error_get_exception_type(const zv_error* error) { return error ? error->exception_type : 0; }

int32_t zv_frame_get_type(const zv_frame_t* frame, zv_error** error) {
  return devhost::read(__func__, frame, error, &FrameTraits::type);
}

int32_t zv_frame_get_format(const zv_frame_t* frame, zv_error** error) {
  return devhost::read(__func__, frame, error, &FrameTraits::format);
}

void* zv_frame_get_data(const zv_frame_t* frame, zv_error** error) {
  if (!Call(__func__, error).needs(frame, "frame") || devhost::data_hidden) return nullptr;
  return const_cast<unsigned char*>(frame->data.data());
}

uint32_t zv_frame_get_data_size(const zv_frame_t* frame, zv_error** error) {
  return Call(__func__, error).needs(frame, "frame") ? static_cast<uint32_t>(frame->data.size()) : 0;
}

void zv_frame_update_data(zv_frame_t* frame, const void* data, uint32_t size, zv_error** error) {
  Call call(__func__, error);
  if (!call.needs(frame, "frame") || (size != 0 && !call.needs(data, "data"))) return;
  if (size != frame->data.size()) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    frame->data = size != 0 ? std::vector(bytes, bytes + size) : std::vector<unsigned char>{};
  } else if (size != 0) {
    std::memmove(frame->data.data(), data, size);
  }
}

bool zv_frame_has_metadata(const zv_frame_t* frame, int32_t item, zv_error** error) {
  return Call(__func__, error).needs(frame, "frame") && frame->traits.metadata.contains(item);
}

int64_t zv_frame_get_metadata_value(const zv_frame_t* frame, int32_t item, zv_error** error) {
  Call call(__func__, error);
  if (!call.needs(frame, "frame")) return 0;
  const auto found = frame->traits.metadata.find(item);
  if (found != frame->traits.metadata.end()) return found->second;
  call.fail("no such metadata", "item", ZV_EXCEPTION_INVALID_VALUE);
  return 0;
}

void zv_frame_copy_info(const zv_frame_t* from, zv_frame_t* to, zv_error** error) {
  if (Call(__func__, error).needs(from, "from").needs(to, "to")) to->copy_info(*from);
}

zv_frame_t* zv_create_frame(int32_t frame_type, int32_t format, uint32_t data_size, zv_error** error) {
  Call call(__func__, error);
  if (call && data_size > devhost::largest_frame) {
    call.fail("too large", "data_size", ZV_EXCEPTION_INVALID_VALUE);
  }
  if (!call) return nullptr;
  devhost::Frame frame(new zv_frame_t({.type = frame_type, .format = format}));
  frame->data.resize(data_size);
  return frame.release();
}

zv_frame_t* zv_create_frame_from_other_frame(const zv_frame_t* other, bool copy_data, zv_error** error) {
  if (!Call(__func__, error).needs(other, "other")) return nullptr;
  if (copy_data) return devhost::copy_of(*other);
  devhost::Frame frame(new zv_frame_t({.type = other->traits.type}));
  frame->copy_info(*other);
  frame->data.resize(other->data.size(), 0xA5);  // unspecified, and not by chance right
  return frame.release();
}

void zv_delete_frame(const zv_frame_t* frame, zv_error** error) {
  static_cast<void>(Call(__func__, error).needs(frame, "frame"));
  devhost::drop(frame);
}

zv_frame_t* zv_frameset_get_depth_frame(const zv_frame_t* set, zv_error** error) {
  return Call(__func__, error).needs(set, "set") ? set->depth.get() : nullptr;
}

void zv_frameset_push_frame(zv_frame_t* set, const zv_frame_t* frame, zv_error** error) {
  if (Call(__func__, error).needs(set, "set").needs(frame, "frame")) {
    set->depth.reset(const_cast<zv_frame_t*>(frame));
  }
}

zv_stream_profile_t* zv_frame_get_stream_profile(const zv_frame_t* frame, zv_error** error) {
  Call call(__func__, error);
  if (!call.needs(frame, "frame").needs(frame != nullptr ? frame->profile.get() : nullptr, "profile")) {
    return nullptr;
  }
  return share(frame->profile.get());
}

void zv_frame_set_stream_profile(zv_frame_t* frame, const zv_stream_profile_t* profile,
                                 zv_error** error) {
  if (!Call(__func__, error).needs(frame, "frame").needs(profile, "profile")) return;
  frame->profile.reset(share(profile));
  frame->traits.width = profile->traits.width;
  frame->traits.height = profile->traits.height;
}

uint32_t zv_video_frame_get_width(const zv_frame_t* frame, zv_error** error) {
  return devhost::read(__func__, frame, error, &FrameTraits::width);
}

uint32_t zv_video_frame_get_height(const zv_frame_t* frame, zv_error** error) {
  return devhost::read(__func__, frame, error, &FrameTraits::height);
}

int32_t zv_video_frame_get_pixel_type(const zv_frame_t* frame, zv_error** error) {
  return devhost::read(__func__, frame, error, &FrameTraits::pixel_type);
}

void zv_video_frame_set_pixel_type(zv_frame_t* frame, int32_t pixel_type, zv_error** error) {
  devhost::write(__func__, frame, error, &FrameTraits::pixel_type, pixel_type);
}

uint8_t zv_video_frame_get_pixel_available_bit_size(const zv_frame_t* frame, zv_error** error) {
  return devhost::read(__func__, frame, error, &FrameTraits::bits);
}

void zv_video_frame_set_pixel_available_bit_size(zv_frame_t* frame, uint8_t bits, zv_error** error) {
  devhost::write(__func__, frame, error, &FrameTraits::bits, bits);
}

float zv_depth_frame_get_value_scale(const zv_frame_t* frame, zv_error** error) {
  return devhost::read(__func__, frame, error, &FrameTraits::value_scale);
}

void zv_depth_frame_set_value_scale(zv_frame_t* frame, float value_scale, zv_error** error) {
  devhost::write(__func__, frame, error, &FrameTraits::value_scale, value_scale);
}

zv_stream_profile_t* zv_create_stream_profile_from_other_stream_profile(const zv_stream_profile_t* other,
                                                                        zv_error** error) {
  return Call(__func__, error).needs(other, "other") ? new zv_stream_profile_t(other->traits) : nullptr;
}

void zv_delete_stream_profile(const zv_stream_profile_t* profile, zv_error** error) {
  static_cast<void>(Call(__func__, error).needs(profile, "profile"));
  devhost::drop(profile);
}

int32_t zv_stream_profile_get_format(const zv_stream_profile_t* profile, zv_error** error) {
  return devhost::read(__func__, profile, error, &ProfileTraits::format);
}

uint32_t zv_video_stream_profile_get_width(const zv_stream_profile_t* profile, zv_error** error) {
  return devhost::read(__func__, profile, error, &ProfileTraits::width);
}

uint32_t zv_video_stream_profile_get_height(const zv_stream_profile_t* profile, zv_error** error) {
  return devhost::read(__func__, profile, error, &ProfileTraits::height);
}

void zv_video_stream_profile_set_width(zv_stream_profile_t* profile, uint32_t width, zv_error** error) {
  devhost::write(__func__, profile, error, &ProfileTraits::width, width);
}

void zv_video_stream_profile_set_height(zv_stream_profile_t* profile, uint32_t height, zv_error** error) {
  devhost::write(__func__, profile, error, &ProfileTraits::height, height);
}

ZVCameraIntrinsic zv_video_stream_profile_get_intrinsic(const zv_stream_profile_t* profile,
                                                        zv_error** error) {
  return devhost::read(__func__, profile, error, &ProfileTraits::intrinsic);
}

void zv_video_stream_profile_set_intrinsic(zv_stream_profile_t* profile, ZVCameraIntrinsic intrinsic,
                                           zv_error** error) {
  devhost::write(__func__, profile, error, &ProfileTraits::intrinsic, intrinsic);
}

ZVDisparityParam zv_disparity_based_stream_profile_get_disparity_param(const zv_stream_profile_t* profile,
                                                                       zv_error** error) {
  return devhost::read(__func__, profile, error, &ProfileTraits::disparity);
}

}  // extern "C"
