#ifndef KIT_TUNER_ANSWERS_H
#define KIT_TUNER_ANSWERS_H

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "kit/chain/chain_file.h"
#include "kit/json/json.h"
#include "kit/tuner/session.h"

namespace kit::tuner {

/// What the tuner was started with.
struct Settings {
  ChainFile chain;                   ///< to begin with
  std::filesystem::path chain_file;  ///< where it is saved; empty: nowhere
  std::string input;                 ///< what the page calls the sequence
  bool intrinsics = false;           ///< whether those of the frames are known
  bool points = false;               ///< whether the page has a view of points in space
  bool use_truth = false;            ///< whether suggestions are judged by the truth
  /// The command that runs the chain with this text on the sequence.
  std::function<std::string(const std::string& chain)> command;
};

/// A page's wish for a frame.
struct FrameRequest {
  std::string client;        ///< a name that the page has chosen
  std::uint64_t number = 0;  ///< higher than that of its wishes before
  std::size_t frame = 0;
  NamedChain chain;
  bool input = true;                ///< whether it wants the pixels before the chain
  bool accuracy = false;            ///< whether it wants the errors
  std::vector<std::string> tables;  ///< of values that it has
};

/// Steps as a chain file has them.
Json steps_json(const Chain& chain);
/// Those in the field chain.
/// @throws Error naming what is wrong
Chain read_steps(const JsonObject& object);

/// Fields client, number, frame, chain (the steps of a chain file), names, input, accuracy, tables.
/// @throws Error naming the field that is wrong
FrameRequest parse_frame_request(std::string_view text, std::size_t frames);
/// The chain in a text with a field chain (the steps of a chain file).
Chain parse_chain_request(std::string_view text);

/// What a page has to know before the first frame: filters, presets, colours, the sequence and the chain to begin with.
std::string describe(const FilterLibrary& library, const Settings& settings, FrameCache& frames);

/// A JSON text and after it what its field "parts" lists: the pixels before and after the chain, and 65536 distances in
/// millimetres by pixel value, 0 for an invalid one, for each table that the page lacks. All of it is little-endian. First comes
/// the length of the text as 4 octets; the text is padded with blanks and each part with zeros to a multiple of 4.
std::string encode(const ShownFrame& shown, const FrameRequest& request, const Session& session);

/// The chain as texts: a chain file, a command, lines of Python.
std::string chain_texts(const Chain& chain, const Settings& settings, FrameCache& frames);

}  // namespace kit::tuner

#endif
