// Files and texts.
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include "folder.h"
#include "kit/common/natural_order.h"
#include "refusal.h"

namespace {

int synced = 0;
bool storage_fails = false;

}  // namespace

/// Stands before the system's own.
extern "C" int fsync(int file) {
  ++synced;
  if (!storage_fails) return static_cast<int>(::syscall(SYS_fsync, file));
  errno = EIO;
  return -1;
}

namespace kit {
namespace {

class Files : public Folder {
 protected:
  Files() { synced = 0; }
  ~Files() override { storage_fails = false; }

  Bytes read(const std::string& name) const { return read_whole(folder_ / name, 100); }
  std::string refused(const fs::path& file, std::size_t most) const {
    return refusal(Error::Kind::failed_run, [&] { read_whole(file, most); });
  }
};

TEST_F(Files, ReplaceWhatAKilledWriterLeftAndNothingElse) {
  put(".a.0.tmp", {9, 9, 9});
  put("a", {1});
  EXPECT_EQ(listing(), Names{"a"});
  EXPECT_EQ(read("a"), Bytes{1});

  fs::create_symlink("a", folder_ / ".b.0.tmp");
  fs::create_directory(folder_ / ".b.1.tmp");
  put("b", {2});
  EXPECT_EQ(listing(), (Names{".b.1.tmp", "a", "b"}));
  EXPECT_EQ(read("a"), Bytes{1});

  put(".a.0.tmp", {7});
  const int other = ::open((folder_ / ".a.0.tmp").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(other, LOCK_EX), 0);
  put("a", {3});
  EXPECT_EQ(read("a"), Bytes{3});
  EXPECT_EQ(read(".a.0.tmp"), Bytes{7}) << "another writer's file";
  ::close(other);
}

TEST_F(Files, AreOnTheirStorageWhenAsked) {
  put("a", {1});
  EXPECT_EQ(synced, 0);
  write_whole(folder_ / "a", Bytes{2}, Durability::synced);
  EXPECT_EQ(synced, 2) << "the file and its folder";
  storage_fails = true;
  EXPECT_NE(
      refusal(Error::Kind::failed_run, [&] { write_whole(folder_ / "a", Bytes{3}, Durability::synced); }),
      "");
  EXPECT_EQ(read("a"), Bytes{2});
  EXPECT_EQ(listing(), Names{"a"});
}

TEST_F(Files, AreReadWhenRegularAndNotTooLarge) {
  put("a", Bytes(100, 5));
  EXPECT_EQ(read("a"), Bytes(100, 5));
  EXPECT_EQ(refused(folder_ / "a", 99),
            (folder_ / "a").string() + ": has 100 bytes; at most 99 are read");
  EXPECT_FALSE(refused("/proc/self/status", 10).empty()) << "says it is empty";
  ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  for (const fs::path& file : {fs::path("/dev/zero"), folder_ / "pipe", folder_}) {
    EXPECT_EQ(refused(file, 99),
              file.string() + ": is no regular file; expected one of at most 99 bytes");
  }
}

TEST(Printable, EscapesWhatATerminalWouldObey) {
  EXPECT_EQ(printable("a b~\\"), "a b~\\");
  EXPECT_EQ(printable("\xc3\xa4 \xe2\x82\xac \xf0\x9f\x98\x80"),
            "\xc3\xa4 \xe2\x82\xac \xf0\x9f\x98\x80");
  EXPECT_EQ(printable(std::string_view("\x1b[2J\n\t\0\x7f", 7)), "\\x1b[2J\\x0a\\x09\\x00");
  EXPECT_EQ(printable("\x7f\xc2\x9b\xe2\x80\xae"), "\\x7f\\xc2\\x9b\\xe2\\x80\\xae");
  // A lone byte, a character cut short, an overlong one, a surrogate, one beyond the last.
  EXPECT_EQ(printable("\x9b\xc3"), "\\x9b\\xc3");
  EXPECT_EQ(printable("\xc0\x8a\xe0\x80\x8a"), "\\xc0\\x8a\\xe0\\x80\\x8a");
  EXPECT_EQ(printable("\xed\xa0\x80\xf4\x90\x80\x80"), "\\xed\\xa0\\x80\\xf4\\x90\\x80\\x80");
  EXPECT_STREQ(Error(Error::Kind::failed_run, std::string("a\0b", 3)).what(), "a\\x00b");
}

TEST(NaturalOrder, CountsDigitsAndNothingElse) {
  const std::string texts =
      " 0 00 1 02 2 2a 10 A1 a a-1 a0b a0b1 a1 a01b a1c a2b10 a10b2 "
      "a99999999999999999999998 a99999999999999999999999 b";
  const std::vector<std::string_view> ordered = split(texts, ' ');  // the first is empty
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    for (std::size_t j = 0; j < ordered.size(); ++j)
      EXPECT_EQ(natural_less(ordered[i], ordered[j]), i < j) << ordered[i] << " and " << ordered[j];
  }
}

}  // namespace
}  // namespace kit
