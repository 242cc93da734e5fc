// Decoders that do what damaged files and attackers make decoders do.
#include "app/cage/cage.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <map>
#include <thread>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include "app/cage/page_wire.h"
#include "app/cage/wire.h"
#include "app/files/page_image.h"
#include "app/files/picture_file.h"
#include "app/run_command.h"

namespace vorlane::testing {
namespace {

using files::DecodeError;
using files::HelperWalls;
using files::Page;
using ::testing::HasSubstr;

int Fork() {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(0);
  return child;
}

// What no decoder may do; each returns what the system does.
const std::map<std::string, long (*)()>& Forbidden() {
  static const std::map<std::string, long (*)()> kCalls = {
      {"open", [] { return long{::open("/etc/passwd", O_RDONLY)}; }},
      {"create", [] { return long{::open("made", O_WRONLY | O_CREAT, 0600)}; }},
      {"remove", [] { return long{::unlink("/nothing")}; }},
      {"socket", [] { return long{::socket(AF_INET, SOCK_STREAM, 0)}; }},
      {"fork", [] { return long{Fork()}; }},
      {"run", [] { return long{::execl("/bin/true", "true", nullptr)}; }},
      {"signal", [] { return long{::kill(::getppid(), 0)}; }},
      {"file", [] { return long{::memfd_create("more", 0)}; }},
      {"write", [] { return long{::write(1, "", 0)}; }},
      {"limit",
       [] {
         const rlimit all{RLIM_INFINITY, RLIM_INFINITY};
         return long{::setrlimit(RLIMIT_AS, &all)};
       }},
      {"code", [] {
         void* page =
             ::mmap(nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
         return page == MAP_FAILED ? -1L : 0L;
       }}};
  return kCalls;
}

void Crash() {
  void* page = ::mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  *static_cast<volatile char*>(page) = 1;
}

void TakeMuch() {
  void* taken =
      ::mmap(nullptr, size_t{1} << 32, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (taken == MAP_FAILED) throw std::bad_alloc();
}

// Does what the file says.
class Puppets : public files::Decoders {
 public:
  files::FileContents Look(const files::ByteSource& source,
                           const files::ReadLimits& /*limits*/) const override {
    if (TextOf(source) == "crash early") std::abort();
    return {};
  }

  void Decode(const files::ByteSource& source, const files::PicturePlace& /*place*/,
              const files::ReadLimits& limits, Page* page) const override {
    const std::string text = TextOf(source);
    files::CheckSize(300, 200, limits);
    const auto call = Forbidden().find(text);
    if (call != Forbidden().end()) {
      const long result = call->second();
      throw DecodeError(result >= 0 ? "it can" : std::strerror(errno));
    }
    if (text == "crash") Crash();
    if (text == "abort") std::abort();
    if (text == "exit") ::_exit(7);
    if (text == "damage") throw DecodeError("strip 3 is damaged");
    for (volatile int turns = 0; text == "loop";) turns = turns + 1;
    if (text == "hunger") TakeMuch();
    page->messages = {"all is well"};
    // More pixels than it has asked for, or as many.
    files::MakeImage(300, text == "greed" ? 30'000 : 200, 8, page);
    std::fill_n(page->image.rec()->pixels, page->image.rec()->imageBytes, uint8_t{77});
  }

 private:
  static std::string TextOf(const files::ByteSource& source) {
    const std::vector<uint8_t> bytes = files::ReadAll(source);
    return {bytes.begin(), bytes.end()};
  }
};

class CageTest : public ::testing::Test {
 protected:
  Page Decode(const std::string& text, int64_t mostPixels = 1'000'000) {
    folder_.WriteText(text, text);
    files::ReadLimits limits;
    limits.mostPixels = mostPixels;
    Page page;
    cage_.Decode(files::FileSource(folder_.At(text)), {}, limits, &page);
    return page;
  }

  std::string WordsOf(const std::string& text) {
    try {
      (void)Decode(text);
      return "decoded";
    } catch (const DecodeError& error) {
      return error.what();
    }
  }

  WorkFolder folder_;
  Puppets puppets_;
  cage::Cage cage_{
      puppets_, HelperWalls::kAlways, {.seconds = 0.3, .waiting = 5, .memory = int64_t{256} << 20}};
};

struct Mischief {
  const char* text;
  const char* words;
};

class MischiefTest : public CageTest, public ::testing::WithParamInterface<Mischief> {};

TEST_P(MischiefTest, CostsOnePageAndIsTold) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_THAT(WordsOf(GetParam().text), HasSubstr(GetParam().words));
    EXPECT_EQ(Decode("a page").image.rec()->rows[199][299], 77);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, MischiefTest,
    ::testing::Values(Mischief{"crash", "ended by"},
                      Mischief{"abort", "the decoder was ended by signal 6 (Aborted)"},
                      Mischief{"exit", "ended by itself with the exit code 7"},
                      Mischief{"damage", "strip 3 is damaged"},
                      Mischief{"loop", "took longer than 0 s of a processor's time"},
                      Mischief{"hunger", "not enough memory for this page; its decoder may take"},
                      Mischief{"greed", "megapixels allowed"}),
    [](const auto& mischief) { return std::string(mischief.param.text); });

TEST_F(CageTest, AllowsNothingButDecoding) {
  for (const auto& [text, call] : Forbidden()) {
    EXPECT_EQ(WordsOf(text), std::strerror(EPERM)) << text;
  }
}

TEST_F(CageTest, TellsOfCrashesBeforeThePixels) {
  folder_.WriteText("x", "crash early");
  EXPECT_THROW((void)cage_.Look(files::FileSource(folder_.At("x")), {}), DecodeError);
  folder_.WriteText("x", "a page");
  EXPECT_EQ(cage_.Look(files::FileSource(folder_.At("x")), {}).count, 1);
}

TEST_F(CageTest, ServesThreadsWhoseDecodersCrash) {
  std::array<int, 3> bad{};
  std::vector<std::thread> threads;
  folder_.WriteText("bad", "abort");
  folder_.WriteText("good", "a page");
  for (int& count : bad) {
    threads.emplace_back([&, this] {
      for (int i = 0; i < 20; ++i) {
        Page page;
        try {
          cage_.Decode(files::FileSource(folder_.At(i % 4 == 3 ? "bad" : "good")), {}, {}, &page);
        } catch (const DecodeError&) {
          ++count;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(bad, ::testing::Each(5));
}

// All that is told of a page, and its pixels, arrive as the decoder gave them; where no file may be
// as long as a page, too.
TEST(CagedPageTest, IsThePageOfTheDecoder) {
  const WorkFolder folder;
  const TestImage page = SmallPage(24, 3);
  const TestImage bits = SmallPage(1, 3);
  const TestImage large =  // and made where both sides see it
      DrawPage({.imageWidth = 1001, .imageHeight = 1300, .bitsPerPixel = 24, .noise = 9});
  folder.Write("a.tif", {&large, &bits, &page}, 299);
  folder.Write("b.png", {&large});
  folder.Write("c.jpg", {&page});
  folder.Write("d.pdf", {&page});
  ASSERT_EQ(folder
                .Shell("tiffset -s 270 Words a.tif && exiv2 -M'set Exif.Photo.UserComment x' "
                       "-M'set Xmp.dc.title y' a.tif b.png c.jpg")
                .exit,
            0);
  const files::OwnDecoders own;
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto ignored = std::signal(SIGXFSZ, SIG_IGN);
  for (const rlim_t limit : {before.rlim_cur, rlim_t{100'000}}) {
    const cage::Cage cage(own, HelperWalls::kNone);
    const rlimit small{limit, before.rlim_max};
    for (const char* name : {"a.tif", "b.png", "c.jpg", "d.pdf"}) {
      files::ReadLimits caged;
      caged.decoders = &cage;
      const bool isMadeOnDisk = std::string(name) == "d.pdf";
      ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, isMadeOnDisk ? &before : &small), 0);
      const files::PictureFile there(folder.At(name), caged);
      const files::PictureFile here(folder.At(name));
      ASSERT_EQ(there.count(), here.count());
      for (int32_t number = 1; number <= here.count(); ++number) {
        const Page expected = here.Read(number);
        const Page got = there.Read(number);
        EXPECT_EQ(cage::BytesOf(got), cage::BytesOf(expected)) << name;
        EXPECT_TRUE(SamePixels(*got.image.rec(), *expected.image.rec())) << name;
      }
      ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    }
  }
  (void)std::signal(SIGXFSZ, ignored);
}

// A decoder that was taken over answers what it likes.
TEST(WireTest, RefusesAnswersThatAreNone) {
  Page page;
  ASSERT_EQ(Imgbuf_New(page.image.rec(), 3, 2, 8, 0), 0);
  page.metadata.tiffEntries = {{270, 2, 3, {'a', 'b', 0}, {}}};
  page.metadata.texts = {{"Title", "Letters"}};
  const std::vector<uint8_t> whole = cage::BytesOf(page);
  Page read;
  EXPECT_EQ(cage::ReadPage(whole, &read).width, 3);
  for (size_t count = 0; count < whole.size(); ++count) {
    EXPECT_THROW((void)cage::ReadPage({whole.data(), count}, &read), cage::WireError) << count;
  }
  std::vector<uint8_t> longer = whole;
  longer.push_back(0);
  EXPECT_THROW((void)cage::ReadPage(longer, &read), cage::WireError);
  const auto refuses = [&read](const auto& change) {
    Page changed;
    EXPECT_EQ(Imgbuf_New(changed.image.rec(), 3, 2, 8, 0), 0);
    change(&changed);
    EXPECT_THROW((void)cage::ReadPage(cage::BytesOf(changed), &read), cage::WireError);
    changed.image.rec()->width = 3;
  };
  refuses([](Page* p) { p->metadata.tiffEntries = {{270, 2, 1'000'000, {'a'}, {}}}; });
  refuses([](Page* p) { p->metadata.tiffEntries = {{270, 99, 1, {'a'}, {}}}; });
  refuses([](Page* p) { p->metadata.pngChunks = {{"long name", {}}}; });
  refuses([](Page* p) { p->coding.format = static_cast<files::FileFormat>(99); });
  refuses([](Page* p) { p->image.rec()->width = -3; });
  files::FileContents contents;
  contents.kind = files::FileKind::kTiff;
  contents.count = 5;
  EXPECT_THROW((void)cage::ContentsOf(cage::BytesOf(contents)), cage::WireError);
}

}  // namespace
}  // namespace vorlane::testing
