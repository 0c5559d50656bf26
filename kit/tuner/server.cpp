#include "kit/tuner/server.h"

#include <atomic>
#include <httplib.h>
#include <map>
#include <mutex>
#include <thread>

#include "kit/common/error.h"
#include "kit/common/files.h"
#include "kit/tuner/guard.h"
#include "kit/tuner/sessions.h"
#include "kit/tuner/suggestion.h"
#include "tuner_files.h"

namespace kit::tuner {

namespace {

constexpr const char* kAddress = "127.0.0.1";
constexpr std::size_t kFrameBytes = std::size_t{512} << 20;  // that are kept
// A connection holds a thread while it is open.
constexpr std::size_t kThreads = 96;
constexpr time_t kIdleSeconds = 5;
constexpr const char* kJson = "application/json";

struct File {
  std::string_view text;
  const char* type;
};

const char* type_of(std::string_view name) {
  if (name.ends_with(".css")) return "text/css; charset=utf-8";
  return name.ends_with(".js") ? "text/javascript; charset=utf-8" : "text/html; charset=utf-8";
}

const std::map<std::string, File>& page_files() {
  static const std::map<std::string, File> files = [] {
    std::map<std::string, File> by_path;
    for (const auto& [name, text] : tuner_files::files)
      by_path[name == "index.html" ? "/" : concat('/', name)] = {text, type_of(name)};
    return by_path;
  }();
  return files;
}

/// One header's value; several of one name are joined, so that none of them is what is expected.
std::optional<std::string> header_of(const httplib::Request& request, const char* name) {
  const std::size_t count = request.get_header_value_count(name);
  if (count == 0) return std::nullopt;
  std::string value = request.get_header_value(name);
  for (std::size_t i = 1; i < count; ++i) value += ", " + request.get_header_value(name, i);
  return value;
}

Credentials credentials_of(const httplib::Request& request) {
  return {header_of(request, "Host"), header_of(request, "Origin"), header_of(request, kTokenHeader)};
}

void say(httplib::Response& response, int status, const std::string& problem, const Place& place = {}) {
  Json json = {{"error", problem}};
  if (place.step >= 0) json["step"] = place.step;
  if (!place.key.empty()) json["key"] = place.key;
  response.status = status;
  response.set_content(json.dump(-1, ' ', false, Json::error_handler_t::replace), kJson);
}

void use_only_this_port(int descriptor) {
  // No other program may take requests that are meant for this one, but a port that was just left may be taken again.
  const int yes = 1;
  ::setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

}  // namespace

class Server::Parts {
 public:
  Parts(const FilterLibrary& library, FrameSource source, Settings settings, int port)
      : library_(library),
        settings_(std::move(settings)),
        frames_(std::move(source), kFrameBytes),
        sessions_(library_, frames_),
        guard_(bind(port)) {
    settings_.points = page_files().contains("/points.js");
    http_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
      return admit(request, response);
    });
    http_.Get(".*", [](const httplib::Request& request, httplib::Response& response) {
      const File& file = page_files().at(request.path);
      response.set_content(file.text.data(), file.text.size(), file.type);
    });
    // Once the body has been read: what is left of a request is taken for another one.
    http_.Post(".*", [this](const httplib::Request& request, httplib::Response& response) {
      if (const std::string problem = guard_.refuse_call(credentials_of(request)); !problem.empty())
        return say(response, 403, problem);
      const auto call = calls_.find(request.path);
      if (call == calls_.end()) return say(response, 404, "there is nothing here");
      (this->*call->second)(request.body, response);
    });
    http_.set_exception_handler(
        [](const httplib::Request&, httplib::Response& response, const std::exception_ptr& problem) {
          try {
            std::rethrow_exception(problem);
          } catch (const Error& error) {
            say(response, 422, error.what(), error.place());
          } catch (const std::bad_alloc&) {
            say(response, 500, "out of memory");
          } catch (const std::exception& error) {
            say(response, 500, printable(error.what()));
          }
        });
    http_.set_error_handler([](const httplib::Request&, httplib::Response& response) {
      if (!response.body.empty()) return;
      say(response, response.status,
          response.status == 413 ? concat("the body has more than ", kMostJsonBytes, " bytes")
                                 : "the request cannot be read");
    });
  }

  ~Parts() {
    stopped_ = true;
    http_.stop();
    if (thread_.joinable()) thread_.join();
  }

  const Guard& guard() const { return guard_; }
  void start() {
    thread_ = std::thread([this] { http_.listen_after_bind(); });
  }
  void finish() {
    const std::lock_guard lock(saving_);
    finished_ = true;
  }

 private:
  using Call = void (Parts::*)(const std::string& body, httplib::Response& response);

  int bind(int port) {
    http_.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    http_.set_socket_options(use_only_this_port);
    http_.set_tcp_nodelay(true);
    http_.set_keep_alive_max_count(100'000);
    http_.set_keep_alive_timeout(kIdleSeconds);
    http_.set_read_timeout(kIdleSeconds);
    http_.set_write_timeout(kIdleSeconds);
    http_.set_payload_max_length(kMostJsonBytes);
    httplib::Headers headers(protective_headers().begin(), protective_headers().end());
    http_.set_default_headers(std::move(headers));
    if (port == 0)
      port = http_.bind_to_any_port(kAddress);
    else if (!http_.bind_to_port(kAddress, port))
      port = -1;
    if (port < 0) fail("the port cannot be used; another program may have it. --port 0 takes a free one");
    return port;
  }

  httplib::Server::HandlerResponse admit(const httplib::Request& request, httplib::Response& response) {
    if (request.method == "POST") return httplib::Server::HandlerResponse::Unhandled;
    const std::string problem = guard_.refuse_file(credentials_of(request));
    if (!problem.empty()) {
      say(response, 403, problem);
    } else if (request.method != "GET" && request.method != "HEAD") {
      say(response, 405, "expected GET or POST");
    } else if (!page_files().contains(request.path)) {
      say(response, 404, "there is nothing here");
    } else {
      return httplib::Server::HandlerResponse::Unhandled;
    }
    return httplib::Server::HandlerResponse::Handled;
  }

  void describe_all(const std::string&, httplib::Response& response) {
    response.set_content(describe(library_, settings_, frames_), kJson);
  }

  void show_frame(const std::string& body, httplib::Response& response) {
    const FrameRequest request = parse_frame_request(body, frames_.size());
    const bool done = sessions_.work(request.client, request.number, [&](Session& session) {
      const ShownFrame& shown = session.show(request.frame, request.chain);
      response.set_content(encode(shown, request, session), "application/octet-stream");
    });
    if (!done) say(response, 409, "a newer request has come");
  }

  void texts(const std::string& body, httplib::Response& response) {
    response.set_content(chain_texts(parse_chain_request(body), settings_, frames_), kJson);
  }

  /// A search has all processors, so there is one at a time.
  void find_values(const std::string& body, httplib::Response& response) {
    const SuggestionRequest request = parse_suggestion_request(body);
    const std::unique_lock one(searching_, std::try_to_lock);
    if (!one) return say(response, 409, "a search is at work already; try again when it has ended");
    response.set_content(suggest(library_, frames_, request, settings_.use_truth, stopped_), kJson);
  }

  void save(const std::string& body, httplib::Response& response) {
    ChainFile file = settings_.chain;
    file.steps = parse_chain_request(body);
    if (settings_.chain_file.empty())
      refuse("the tuner was started without --chain FILE, so there is no file to save to");
    static_cast<void>(Pipeline(library_, file.steps));
    const std::string json = chain_json(file);
    const std::lock_guard lock(saving_);
    if (finished_) fail("the tuner has ended");
    write_text(settings_.chain_file, json, Durability::synced);
    response.set_content(Json{{"file", settings_.chain_file.string()}}.dump(), kJson);
  }

  const std::map<std::string, Call> calls_ = {{"/api/setup", &Parts::describe_all},
                                              {"/api/frame", &Parts::show_frame},
                                              {"/api/texts", &Parts::texts},
                                              {"/api/suggest", &Parts::find_values},
                                              {"/api/save", &Parts::save}};
  FilterLibrary library_;
  Settings settings_;
  FrameCache frames_;
  Sessions sessions_;
  httplib::Server http_;
  Guard guard_;
  std::mutex searching_;
  std::atomic<bool> stopped_ = false;
  std::mutex saving_;
  bool finished_ = false;
  std::thread thread_;
};

Server::Server(const FilterLibrary& library, FrameSource source, Settings settings, int port)
    : parts_(std::make_unique<Parts>(library, std::move(source), std::move(settings), port)) {}
Server::~Server() = default;

std::string Server::address() const { return parts_->guard().address(); }
void Server::start() { parts_->start(); }
void Server::finish() { parts_->finish(); }

}  // namespace kit::tuner
