#include <chrono>
#include <limits>
#include <png.h>
#include <random>
#include <tuple>
#include <zlib.h>

#include "folder.h"
#include "kit/image/image_files.h"
#include "kit/image/image_stream.h"
#include "kit/image/png.h"
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

TEST(Codecs, KeepEveryBitOfAnImageAndRefuseEveryTruncation) {
  Image noise = make_image(301, 203);  // hardly compresses
  std::mt19937 random;
  for (std::uint16_t& pixel : noise.pixels) pixel = static_cast<std::uint16_t>(random());
  for (const char* name : {"png", "pgm", "npy", "raw", "tiff"}) {
    SCOPED_TRACE(name);
    const Codec& codec = *codec_named(name);
    const Bytes file = codec.encode(sample_image());
    EXPECT_EQ(codec.decode(file, {5, 3}), sample_image());
    EXPECT_EQ(codec.decode(codec.encode(noise), {301, 203}), noise);
    for (std::size_t size = 0; size < file.size(); ++size) {
      const Bytes start(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
      EXPECT_NE(refusal(name, start, {5, 3}), "") << size << " of " << file.size() << " bytes";
    }
  }
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

/// A file whose rows are all noise after the filters' numbers.
Bytes png_of_rows(std::uint32_t width, const std::vector<unsigned char>& filters, std::uint32_t seed) {
  std::mt19937 random(seed);
  Bytes rows;
  for (const unsigned char filter : filters) {
    rows.push_back(filter);
    for (std::uint32_t i = 0; i < 2 * width; ++i)  // small ones too
      rows.push_back(static_cast<unsigned char>(random() >> (random() % 4 == 0 ? 28 : 24)));
  }
  const auto number = [](uLong value) {
    Bytes bytes(4);
    png_save_uint_32(bytes.data(), static_cast<png_uint_32>(value));
    return bytes;
  };
  uLongf size = compressBound(rows.size());
  Bytes chunk = bytes_of("IDAT");
  chunk.resize(4 + size);
  EXPECT_EQ(compress(&chunk[4], &size, rows.data(), rows.size()), Z_OK);
  chunk.resize(4 + size);
  // Between the header and the end of another file of this size.
  Bytes file = encode_png(make_image(width, static_cast<std::uint32_t>(filters.size())));
  const Bytes end(file.end() - 12, file.end());
  file.resize(33);
  for (const Bytes& part :
       {number(size), chunk, number(crc32(0, chunk.data(), static_cast<uInt>(chunk.size()))), end})
    file.insert(file.end(), part.begin(), part.end());
  return file;
}

TEST(Png, RestoresRowsOfEveryFilterAndSizeAsLibpngDoes) {
  for (std::uint32_t width = 1; width <= 40; ++width) {
    for (const std::size_t height : {1u, 2u, 7u, 8u, 9u, 15u, 16u, 17u, 37u}) {
      // One of the filters, those without Paeth, or all.
      for (unsigned char kind = 0; kind <= 6; ++kind) {
        std::vector<unsigned char> filters(height, kind);
        for (std::size_t y = 0; y < height && kind >= 5; ++y)
          filters[y] = static_cast<unsigned char>((y * 7 + width + y / 5) % (kind - 1u));
        const Bytes file = png_of_rows(width, filters, width * 64 + kind);
        ASSERT_EQ(decode_png(file, kNoSize), decode_any_png(file))
            << width << 'x' << height << ", filters " << int{kind};
      }
    }
  }
}

TEST(Png, RefusesDamageAndRowsOfNoFilter) {
  Bytes damaged = encode_png(sample_image());
  damaged[damaged.size() - 20] ^= 1;  // inside the compressed pixels or their checksum
  std::vector<unsigned char> first(25, 4), late = first;
  first[0] = late[20] = 5;
  for (const Bytes& file : {damaged, png_of_rows(3, first, 1), png_of_rows(3, late, 1)})
    EXPECT_MENTIONS(refusal("png", file), "is damaged or truncated");
}

TEST(Pgm, ReadsCommentsAndBigEndianSamples) {
  const Image image =
      decode_pgm(bytes_of("P5# one\n# two 9 9\r 2\t1 # three\n1000\n\x01\x02\x03\x04"), kNoSize);
  EXPECT_EQ(image, (Image{2, 1, {0x0102, 0x0304}}));
}

TEST(Pgm, RefusesOtherKindsAndSizes) {
  const std::pair<const char*, const char*> cases[] = {
      {"P2\n1 1\n65535\n7\n", "no binary PGM"},
      {"P5\n1 1\n255\nab", "is 8-bit (maximum value 255)"},
      {"P5\n1 1\n65536\nab", "expected at most 65535"},
      {"P5\n0 1\n65535\n", "has no pixels"},
      {"P5\n99999 99999\n65535\nab", "at most"},
      {"P5\n4294967297 1\n65535\nab", "impossible width"},
      {"P5\n1 x\n65535\nab", "no height"},
      {"P5\n2 1\n65535\nabc", "3 bytes of pixels, expected 4 for 2x1"},
      {"P5\n1 1\n65535\nabc", "is too long"},
      {"P5\n1 1\n300\n\x7f\x7f", "above its maximum value 300"}};
  for (const auto& [file, part] : cases) EXPECT_MENTIONS(refusal("pgm", bytes_of(file)), part);
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
  EXPECT_EQ(refusal("npy", npy_of("2, 1", "abcd")), "");
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"'<f4'", "False", "1, 1", "or --metres if it holds metres"},
      {"'|u1'", "False", "2, 2", "'|u1'"},
      {"[('a', '<u2')]", "False", "1, 2", "structured type"},
      {"'<u2'", "True", "1, 2", "column order"},
      {"'<u2'", "False", "2,", "the shape (2); expected (height, width)"},
      {"'<u2'", "False", "1, 1, 2", "(1, 1, 2)"},
      {"'<u2'", "False", "0, 2", "no pixels"},
      {"'<u2'", "False", "3, 2", "is truncated"},
      {"'<u2'", "False", "1, 1", "is too long"},
      {"'<u2'", "Maybe", "1, 2", "malformed"},
      {"'<u2'", "False", "-1, 2", "malformed"}};
  for (const auto& [type, order, shape, part] : cases)
    EXPECT_MENTIONS(refusal("npy", npy_of(shape, "abcd", type, order)), part);
  EXPECT_MENTIONS(refusal("npy", npy_file(1, "{'shape': (1, 2)}", "abcd")), "malformed");
  EXPECT_MENTIONS(refusal("npy", bytes_of({"\x93NUMPY\2\0\0\0\1\0{", 13})),
                  "has a header of 65536 bytes");
  EXPECT_MENTIONS(refusal("npy", npy_file(4, "{}", "")), "version 4");
  EXPECT_MENTIONS(refusal("npy", bytes_of("PK")), "no NumPy array");
}

TEST(Raw, HasExactlyTheBytesOfItsSize) {
  EXPECT_EQ(decode_raw(bytes_of("abcd"), {1, 2}), (Image{1, 2, {0x6261, 0x6463}}));
  EXPECT_MENTIONS(refusal("raw", bytes_of("abcd"), {1, 1}), "is too long");
}

class ImageFiles : public Folder {
 protected:
  /// The images of a file, as often as it has some.
  std::vector<Image> read_all(const fs::path& file, const ReadOptions& options) const {
    const ImageFile images(file, options);
    std::vector<Image> all;
    for (std::size_t i = images.count(); i-- > 0;) all.insert(all.begin(), images.read(i));
    return all;
  }
  std::string refused(const fs::path& file, const ReadOptions& options) const {
    return refusal(Error::Kind::failed_run, [&] { read_all(file, options); });
  }
  Names names(const Selection& selection) const {
    Names all;
    for (const fs::path& file : collect_images({folder_.string()}, selection))
      all.push_back(file.filename().string());
    return all;
  }
  std::string refused_folder() const {
    return refusal(Error::Kind::failed_run, [&] { names({}); });
  }
};

TEST_F(ImageFiles, KeepTheImagesOfStacksInTheirOrder) {
  Image second = sample_image();
  std::reverse(second.pixels.begin(), second.pixels.end());
  const std::vector<Image> images = {sample_image(), second, make_image(5, 3)};
  for (const char* name : {"a.npy", "a.raw", "a.tif"}) {
    for (const ByteOrder order : {ByteOrder::little, ByteOrder::big}) {
      const fs::path file = folder_ / name;
      const ReadOptions options{.size = {5, 3}, .raw_order = order};
      ImageFileWriter writer(file, {codec_of(file), images.size(), true, order});
      for (const Image& image : images) writer.write(image);
      EXPECT_FALSE(fs::exists(file)) << "before all of it is written";
      writer.publish(Durability::buffered);
      EXPECT_EQ(read_all(file, options), images) << name;
      EXPECT_TRUE(ImageFile(file, options).is_stack());

      Bytes cut = read_whole(file, 10000);
      cut.resize(cut.size() - 7);
      put(name, cut);
      EXPECT_MENTIONS(refused(file, options), "truncated") << name;
      fs::remove(file);
    }
  }
}

TEST_F(ImageFiles, SayWhatIsWrongWithAStack) {
  const std::string bytes(16, 'x');
  const std::tuple<const char*, Bytes, const char*> cases[] = {
      {"a.npy", npy_of("0, 2, 2", ""), "a.npy: holds no image"},
      {"a.npy", npy_of("3, 2, 2", bytes), "16 bytes of pixels, expected 24 for 3 images of 2x2"},
      {"a.npy", npy_of("1, 2, 2", bytes), "is too long"},
      {"a.npy", npy_of("18446744073709551615, 2, 2", bytes), "at most 1048576 are read"},
      {"a.npy", npy_of("2, 4294967296, 4294967296", bytes), "claims 4294967296x4294967296 pixels"},
      {"a.raw", Bytes(21), "is truncated: its frame 2 has 5 of 8 bytes"},
      {"a.raw", Bytes(), "0 bytes of pixels, expected 8 for 2x2"},
      {"a.raw", Bytes(std::size_t{8} << 20 | 8), "claims 1048577 images; at most 1048576 are read"},
  };
  for (const auto& [name, file, part] : cases)
    EXPECT_MENTIONS(refused(put(name, file), {.size = {2, 2}}), part);
}

template <typename Number>
Bytes npy_row(const char* type, const std::vector<Number>& numbers) {
  const auto* bytes = reinterpret_cast<const char*>(numbers.data());
  return npy_of(concat("1, ", numbers.size()), {bytes, numbers.size() * sizeof(Number)}, type);
}

TEST_F(ImageFiles, TakeMetresWhenTheyAreAskedFor) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN(),
                  inf = std::numeric_limits<float>::infinity();
  const ReadOptions metres{.units_a_metre = 1000};
  const fs::path file = put("a.npy", npy_row<float>("'<f4'", {1.5f, 0.0625f, nan, inf, -2, 0}));
  EXPECT_EQ(read_all(file, metres), (std::vector{Image{6, 1, {1500, 63, 0, 0, 0, 0}}}));
  EXPECT_MENTIONS(refused(file, {}), "or --metres if it holds metres");
  EXPECT_EQ(read_all(put("b.npy", npy_row<double>("'<f8'", {2, 65.535})), metres),
            (std::vector{Image{2, 1, {2000, 65535}}}));
  EXPECT_MENTIONS(refused(put("b.npy", npy_row<double>("'<f8'", {1, 65.536})), metres),
                  "has 65.536 m in row 0, column 1, which is 65536 units; 16 bits hold at most 65535");
  EXPECT_MENTIONS(refused(put("c.npy", encode_npy(sample_image())), metres), "which are units already");
  EXPECT_EQ(read_all(put("d.npy", npy_row<std::uint16_t>("'>i2'", {0xFF7F, 0x0100})), {}),
            (std::vector{Image{2, 1, {32767, 1}}}));
  EXPECT_MENTIONS(refused(put("d.npy", npy_row<std::uint16_t>("'>i2'", {0x0100, 0xFBFF})), {}),
                  "has the negative value -5 in row 0, column 1");
}

TEST_F(ImageFiles, ComeFromFoldersInTheOrderAskedFor) {
  for (const char* name :
       {"f_10.png", "f_2.png", "f_02.png", ".hidden.png", "notes.txt", "f_2_preview.png"})
    put(name, encode_png(sample_image()));
  put("f_10_preview.png", encode_png(ColorImage{1, 1, {{1, 2, 3}}}));
  const auto now = fs::last_write_time(folder_ / "f_2.png");
  for (const auto& [name, seconds] : {std::pair("f_10.png", 0), {"f_02.png", 5}, {"f_2.png", 5}})
    fs::last_write_time(folder_ / name, now + std::chrono::seconds(seconds));
  const Names all = {"f_02.png", "f_2.png", "f_2_preview.png", "f_10.png"};
  EXPECT_EQ(names({}), all) << "a grey image is a frame, whatever its name";
  const Selection frames{.include = {"f_*.png"}, .exclude = {"*_preview*"}};
  const std::pair<FileOrder, Names> orders[] = {{FileOrder::natural, {"f_02.png", "f_2.png", "f_10.png"}},
                                                {FileOrder::name, {"f_02.png", "f_10.png", "f_2.png"}},
                                                {FileOrder::time, {"f_10.png", "f_02.png", "f_2.png"}}};
  for (const auto& [order, expected] : orders) {
    Selection selection = frames;
    selection.order = order;
    EXPECT_EQ(names(selection), expected);
  }
}

TEST_F(ImageFiles, AreNamedWhereTheyCannotBeTaken) {
  const std::pair<Names, const char*> cases[] = {
      {{}, ": holds no image; expected files ending in .png"},
      {{"notes.txt", "camera.json"}, ": holds no image, only camera.json, notes.txt; expected"},
      {{"a.png", "d.pgm"}, ": holds images of two formats, a.png and d.pgm"},
      {{"a.png", "d.JPG"}, "d.JPG: is an image of a format that is not read"}};
  for (const auto& [files, part] : cases) {
    for (const std::string& file : files) put(file);
    EXPECT_MENTIONS(refused_folder(), part);
    for (const std::string& file : files) fs::remove(folder_ / file);
  }
  put("a.png", encode_png(sample_image()));
  fs::create_symlink("gone.png", folder_ / "b.png");
  EXPECT_MENTIONS(refused_folder(), "b.png: is a broken link to gone.png");
  EXPECT_EQ(names({.exclude = {"b*"}}), Names{"a.png"});
  fs::remove(folder_ / "b.png");
  fs::create_directory(folder_ / "c.png");
  EXPECT_MENTIONS(refused_folder(), "c.png: is a folder");
}

/// The images of a stream of these bytes, and what it ends with.
std::string streamed(const char* codec, const Bytes& bytes, const ReadOptions& options,
                     std::vector<Image>& images) {
  ViewStream stream(bytes);
  ImageStreamReader reader(stream, *codec_named(codec), options, "stream");
  return refusal(Error::Kind::failed_run, [&] {
    while (auto image = reader.next()) images.push_back(*std::move(image));
  });
}

TEST(Streams, GiveFramesUntilTheyEndAndSayWhatTheLastOneLacks) {
  const Image image = sample_image();
  for (const char* format : {"raw", "pgm", "npy"}) {
    SCOPED_TRACE(format);
    Bytes stream;
    for (int i = 0; i < 3; ++i) {
      const Bytes frame = encode_for_stream(*codec_named(format), image, ByteOrder::little);
      stream.insert(stream.end(), frame.begin(), frame.end());
    }
    const std::size_t one = stream.size() / 3;
    for (std::size_t size = 0; size <= stream.size(); ++size) {
      std::vector<Image> images;
      const Bytes start(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(size));
      const std::string problem = streamed(format, start, {.size = {5, 3}}, images);
      EXPECT_EQ(images, std::vector<Image>(size / one, image));
      EXPECT_EQ(problem.empty(), size % one == 0) << size << ": " << problem;
      if (size + 1 == stream.size()) {
        EXPECT_EQ(problem, "stream frame 2: is truncated: 29 of 30 bytes came for 5x3 pixels");
      }
    }
  }
}

TEST(Streams, TakeStacksAndRefuseOtherSizes) {
  const Bytes stack = npy_of("2, 1, 1", "abcd");
  std::vector<Image> images;
  EXPECT_EQ(streamed("npy", stack, {}, images), "");
  EXPECT_EQ(images, (std::vector{Image{1, 1, {0x6261}}, Image{1, 1, {0x6463}}}));
  EXPECT_EQ(streamed("npy", stack, {.size = {2, 1}}, images),
            "stream frame 0: has 1x1 pixels; expected 2x1");
  EXPECT_MENTIONS(streamed("npy", npy_of("16384, 16384", "abcd"), {}, images),
                  "4 of 536870912 bytes came");
}

TEST(Tiff, RefusesOtherKinds) {
  EXPECT_MENTIONS(refusal("tiff", bytes_of("P5 1 1 65535 ab")), "is no TIFF file or is damaged: ");
  const auto with = [](std::uint16_t tag, std::uint16_t value) {
    Bytes file = encode_tiff(sample_image());
    // The directory, all little-endian: its place at byte 4, a count, entries of tag, type, count and value.
    for (std::size_t at = file[4] + 256u * file[5] + 2; at + 12 <= file.size(); at += 12) {
      if (file[at] + 256u * file[at + 1] != tag) continue;
      file[at + 8] = static_cast<unsigned char>(value & 0xFF);
      file[at + 9] = static_cast<unsigned char>(value >> 8);
      return refusal("tiff", file);
    }
    return std::string("the tag is not there");
  };
  const std::tuple<std::uint16_t, std::uint16_t, const char*> cases[] = {
      {258, 8, "has 1 sample of 8 bits a pixel; expected a 16-bit grayscale TIFF file"},
      {262, 0, "is no grayscale from black up"},
      {259, 34925, "is compressed in way 34925; expected none, PackBits, LZW or Deflate"},
      {256, 65535, "truncated"}};
  for (const auto& [tag, value, part] : cases) EXPECT_MENTIONS(with(tag, value), part);
}

}  // namespace
}  // namespace kit
