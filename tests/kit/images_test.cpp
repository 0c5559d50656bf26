#include <string>

#include <gtest/gtest.h>

#include "kit/image/codec.h"
#include "refusal.h"

namespace kit {
namespace {

constexpr Size kNoSize{};

Image sample_image() {
  Image image = make_image(5, 3);
  for (std::size_t i = 0; i < image.pixels.size(); ++i) {
    image.pixels[i] = static_cast<std::uint16_t>(i * 4369 + 1);  // both bytes change
  }
  image.pixels[0] = 0;
  image.pixels[14] = 65535;
  return image;
}

Bytes bytes_of(std::string_view text) { return Bytes(text.begin(), text.end()); }

/// Why the file is refused; empty when it is not.
std::string refusal(const char* codec, const Bytes& file, const Size& size = kNoSize) {
  return refusal(Error::Kind::failed_run, [&] { codec_named(codec)->decode(file, size); });
}

#define EXPECT_MENTIONS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)

class EveryCodec : public testing::TestWithParam<const char*> {};

TEST_P(EveryCodec, KeepsEveryBitOfAnImage) {
  const Codec& codec = *codec_named(GetParam());
  const Image image = sample_image();
  EXPECT_EQ(codec.decode(codec.encode(image), {5, 3}), image);

  Image noise = make_image(301, 203);  // hardly compresses
  std::uint32_t state = 1;
  for (std::uint16_t& pixel : noise.pixels) {
    state = state * 1664525u + 1013904223u;
    pixel = static_cast<std::uint16_t>(state >> 16);
  }
  EXPECT_EQ(codec.decode(codec.encode(noise), {301, 203}), noise);
}

TEST_P(EveryCodec, RefusesEveryTruncation) {
  const Codec& codec = *codec_named(GetParam());
  const Bytes file = codec.encode(sample_image());
  for (std::size_t size = 0; size < file.size(); ++size) {
    const Bytes start(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_NE(refusal(GetParam(), start, {5, 3}), "") << size << " of " << file.size() << " bytes";
  }
}

INSTANTIATE_TEST_SUITE_P(Images, EveryCodec, testing::Values("png", "pgm", "npy", "raw"));

TEST(Png, RefusesDamage) {
  Bytes file = encode_png(sample_image());
  file[file.size() - 20] ^= 1;  // inside the compressed pixels or their checksum
  EXPECT_MENTIONS(refusal("png", file), "is damaged or truncated");
  EXPECT_MENTIONS(refusal("png", bytes_of("P5 1 1 65535 ab")), "is no PNG file");
}

TEST(Png, PassesOverWhatStandsBesideThePixels) {
  const Image image = sample_image();
  Bytes file = encode_png(image);
  const unsigned char text[] = {0, 0, 0, 3, 't', 'E', 'X', 't', 'a', 0, 'b', 0, 0, 0, 0};
  file.insert(file.begin() + 33, std::begin(text), std::end(text));  // after the header, checksum wrong
  EXPECT_EQ(decode_png(file, kNoSize), image);
}

TEST(Png, ReadsWhatCompressesBestAndRefusesWhatNoFileOfItsSizeHolds) {
  const Image empty = make_image(4000, 500);
  const Bytes file = encode_png(empty);
  EXPECT_EQ(decode_png(file, kNoSize), empty) << "from " << file.size() << " bytes";
  const Bytes start(file.begin(), file.begin() + 60);
  EXPECT_MENTIONS(refusal("png", start), "60 bytes cannot hold 4000x500 pixels");
}

TEST(Pgm, ReadsCommentsAndBigEndianSamples) {
  const Image image =
      decode_pgm(bytes_of("P5# one\n# two 9 9\r 2\t1 # three\n1000\n\x01\x02\x03\x04"), kNoSize);
  EXPECT_EQ(image, (Image{2, 1, {0x0102, 0x0304}}));
}

TEST(Pgm, RefusesOtherKindsAndSizes) {
  EXPECT_MENTIONS(refusal("pgm", bytes_of("P2\n1 1\n65535\n7\n")), "no binary PGM");
  EXPECT_MENTIONS(refusal("pgm", bytes_of("P5\n1 1\n255\nab")), "is 8-bit (maximum value 255)");
  EXPECT_MENTIONS(refusal("pgm", bytes_of("P5\n1 1\n65536\nab")), "expected at most 65535");
  EXPECT_MENTIONS(refusal("pgm", bytes_of("P5\n0 1\n65535\n")), "has no pixels");
  EXPECT_MENTIONS(refusal("pgm", bytes_of("P5\n99999 99999\n65535\nab")), "at most");
  EXPECT_MENTIONS(refusal("pgm", bytes_of("P5\n4294967297 1\n65535\nab")), "impossible width");
  EXPECT_MENTIONS(refusal("pgm", bytes_of("P5\n1 x\n65535\nab")), "no height");
  EXPECT_MENTIONS(refusal("pgm", bytes_of("P5\n2 1\n65535\nabc")),
                  "3 bytes of pixels, expected 4 for 2x1");
  EXPECT_MENTIONS(refusal("pgm", bytes_of("P5\n1 1\n65535\nabc")), "is too long");
  EXPECT_MENTIONS(refusal("pgm", bytes_of("P5\n1 1\n300\n\x7f\x7f")), "above its maximum value 300");
}

Bytes npy_file(int version, const std::string& header, std::string_view samples) {
  std::string file = "\x93NUMPY";
  file += static_cast<char>(version);
  file += '\0';
  file += static_cast<char>(header.size());
  file.append(version > 1 ? 3 : 1, '\0');
  return bytes_of((file + header).append(samples));
}

TEST(Npy, ReadsEveryVersionAndBothByteOrders) {
  const Image image{2, 1, {0x6261, 0x6463}};
  for (const int version : {1, 2, 3}) {
    const auto file =
        npy_file(version, "{'descr': '<u2', 'fortran_order': False, 'shape': (1, 2), }   \n", "abcd");
    EXPECT_EQ(decode_npy(file, kNoSize), image) << version;
  }
  const auto big = npy_file(1, R"({"shape":(1,2,),"descr":">u2","fortran_order":False})", "badc");
  EXPECT_EQ(decode_npy(big, kNoSize), image);
}

TEST(Npy, WritesItsPixelsAtAMultipleOf64Bytes) {
  EXPECT_EQ((encode_npy(sample_image()).size() - 30) % 64, 0u);
}

TEST(Npy, RefusesOtherArrays) {
  const auto with = [](const std::string& type, const std::string& order, const std::string& shape) {
    const std::string header =
        "{'descr': " + type + ", 'fortran_order': " + order + ", 'shape': " + shape + "}";
    return refusal("npy", npy_file(1, header, "abcd"));
  };
  EXPECT_EQ(with("'<u2'", "False", "(2, 1)"), "");
  EXPECT_MENTIONS(with("'<f4'", "False", "(1, 1)"), "elements of type '<f4'; expected 16-bit unsigned");
  EXPECT_MENTIONS(with("'|u1'", "False", "(2, 2)"), "'|u1'");
  EXPECT_MENTIONS(with("[('a', '<u2')]", "False", "(1, 2)"), "structured type");
  EXPECT_MENTIONS(with("'<u2'", "True", "(1, 2)"), "column order");
  EXPECT_MENTIONS(with("'<u2'", "False", "(2,)"), "the shape (2); expected (height, width)");
  EXPECT_MENTIONS(with("'<u2'", "False", "(1, 1, 2)"), "(1, 1, 2)");
  EXPECT_MENTIONS(with("'<u2'", "False", "(0, 2)"), "no pixels");
  EXPECT_MENTIONS(with("'<u2'", "False", "(3, 2)"), "is truncated");
  EXPECT_MENTIONS(with("'<u2'", "False", "(1, 1)"), "is too long");
  EXPECT_MENTIONS(with("'<u2'", "Maybe", "(1, 2)"), "malformed");
  EXPECT_MENTIONS(with("'<u2'", "False", "(-1, 2)"), "malformed");
  EXPECT_MENTIONS(refusal("npy", npy_file(1, "{'shape': (1, 2)}", "abcd")), "malformed");
  EXPECT_MENTIONS(refusal("npy", bytes_of({"\x93NUMPY\2\0\0\0\1\0{", 13})),
                  "has a header of 65536 bytes");
  EXPECT_MENTIONS(refusal("npy", npy_file(4, "{}", "")), "version 4");
  EXPECT_MENTIONS(refusal("npy", bytes_of("PK")), "no NumPy array");
}

TEST(Raw, HasExactlyTheBytesOfItsSize) {
  EXPECT_EQ(decode_raw(bytes_of("abcd"), {1, 2}), (Image{1, 2, {0x6261, 0x6463}}));
  EXPECT_MENTIONS(refusal("raw", bytes_of("abcd"), {3, 1}), "4 bytes of pixels, expected 6 for 3x1");
  EXPECT_MENTIONS(refusal("raw", bytes_of("abcd"), {1, 1}), "is too long");
}

}  // namespace
}  // namespace kit
