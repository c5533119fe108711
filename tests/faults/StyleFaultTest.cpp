// The style library while memory or the disk fails at every step: each file stays what it was or
// becomes whole what it was to be.
#include "FaultRun.h"
#include "LM_gallery.h"
#include "LM_globals.h"
#include "LM_mac_stream.h"
#include "LM_style_codec.h"
#include "LM_style_fields.h"
#include "LM_style_library.h"
#include "LM_style_settings.h"
#include "LimnResources.h"
#include "MacResources.h"
#include "MacStrings.h"

#include <fstream>
#include <iterator>

namespace {

constexpr size_t KEPT = 3; // of the bundled styles
constexpr const char* NOTES = "my notes, which are no style";

struct Fault {
  fault_kind kind;
  const char* name;
  bool isPassing; // the work goes on and is done all the same
};
const Fault FAULTS[] = {{FAULT_MEMORY, "allocations refused", false},
                        {FAULT_INPUT_OUTPUT, "file errors", false},
                        {FAULT_NO_SPACE, "full disks", false},
                        {FAULT_INTERRUPTED, "interruptions", true},
                        {FAULT_SHORT, "short reads and writes", true}};

std::string BytesOf(const LM_style& style) {
  uint8_t bytes[LM_STYLE_MAX_BYTES];
  const size_t size = LM_EncodeStyle(style, bytes);
  return {reinterpret_cast<const char*>(bytes), size};
}

std::string StyleBytes(int16_t gloss) {
  LM_style style = LM_NewStyle();
  style.gloss = gloss;
  style.numLights = style.lightsRead = 2;
  style.lights[0] = style.lights[1] = LM_NewStyleLight();
  return BytesOf(style);
}

class StyleFault : public FaultTest {
protected:
  void SetUp() override {
    TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT);
    setenv("XDG_DATA_HOME", folder.c_str(), 1);
    _settings = LM_NewGlobals();
    _settings->Default();
    _settings->gloss = 22;
    _newBytes = BytesOf(LM_StyleOfSettings(*_settings));
  }
  void TearDown() override { LM_DestroyGlobals(_settings); }

  static bool Use(std::string& why) { return LM_UseStyleLibrary(why); }
  std::filesystem::path Style(const std::string& name) const {
    return folder / "limn" / "Lighting Styles" / name;
  }
  std::string Bytes(const std::string& name) const {
    std::ifstream file(Style(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(Style(name), std::ios::binary) << bytes;
  }
  // Nothing but whole styles, the notes, and no temporary file.
  void ExpectWholeFiles() const {
    for (const auto& entry : std::filesystem::directory_iterator(Style(""))) {
      const std::string name = entry.path().filename();
      const std::string bytes = Bytes(name);
      LM_style style = {};
      std::string why;
      EXPECT_TRUE(name == "notes" ? bytes == NOTES
                                  : LM_DecodeStyle(reinterpret_cast<const uint8_t*>(bytes.data()),
                                                   bytes.size(), style, why) &&
                                        why.empty())
          << name << ": " << bytes.size() << " bytes, " << why;
    }
  }

  // Does `work` on a library with one style of the user's and a file of notes, each of its
  // operations failing in turn. It answers whether it succeeded.
  void TryEach(const char* what, const std::function<bool()>& work) {
    std::string why;
    ASSERT_TRUE(Use(why) && why.empty()) << why;
    const std::vector<std::string> bundled = LM_BundledStyleNames();
    for (size_t i = KEPT; i < bundled.size(); ++i)
      std::filesystem::remove(Style(bundled[i]));
    for (const Fault& fault : FAULTS) {
      const auto once = [&] {
        Write("Mine", StyleBytes(11));
        Write("notes", NOTES);
        std::filesystem::remove(Style("New"));
        bool done = false;
        try {
          const Exposed exposed;
          done = work();
        } catch (const std::bad_alloc&) {
          EXPECT_EQ(fault.kind, FAULT_MEMORY);
        }
        EXPECT_TRUE(done || (HasFailed() && !fault.isPassing));
        Check(done);
        ExpectWholeFiles();
      };
      TryEachFailure(fault.kind, (std::string(fault.name) + " while " + what).c_str(), once);
    }
  }

  LM_globals* _settings = nullptr;
  std::string _newBytes;
  std::function<void(bool done)> Check = [](bool) {};
};

TEST_F(StyleFault, Seeding) {
  for (const Fault& fault : FAULTS) {
    const auto once = [&] {
      std::filesystem::remove_all(folder / "limn");
      std::string why;
      bool done = false;
      try {
        const Exposed exposed;
        done = Use(why) && why.empty();
      } catch (const std::bad_alloc&) {
        EXPECT_EQ(fault.kind, FAULT_MEMORY);
        why = "There is not enough memory.";
      }
      EXPECT_TRUE(done || (HasFailed() && !fault.isPassing)) << why;
      EXPECT_TRUE(done || why.size() > 20);
      if (std::filesystem::exists(Style("")))
        ExpectWholeFiles();
      // What was left out is added later.
      fault_plan->fail_at = 0;
      EXPECT_TRUE(Use(why) && why.empty()) << why;
      ExpectWholeFiles();
      for (const std::string& name : LM_BundledStyleNames())
        EXPECT_TRUE(std::filesystem::exists(Style(name))) << name;
    };
    TryEachFailure(fault.kind, (std::string(fault.name) + " while seeding").c_str(), once,
                   Pace::Some);
  }
}

TEST_F(StyleFault, Replacing) {
  Check = [&](bool done) { EXPECT_EQ(Bytes("Mine"), done ? _newBytes : StyleBytes(11)); };
  TryEach("replacing a style", [&] {
    TB_Str255 name = TB_PString("Mine");
    return LM_ReplaceStyle(name.bytes, _settings) != 0;
  });
}

TEST_F(StyleFault, ReplacingNeverTakesAFileThatIsNoStyle) {
  TryEach("refusing to replace notes", [&] {
    TB_Str255 name = TB_PString("notes");
    return LM_ReplaceStyle(name.bytes, _settings) == 0;
  });
}

TEST_F(StyleFault, Saving) {
  Check = [&](bool done) {
    EXPECT_EQ(std::filesystem::exists(Style("New")), done);
    EXPECT_TRUE(!done || Bytes("New") == _newBytes);
  };
  TryEach("saving a new style", [&] {
    TB_Str255 name = TB_PString("New");
    return LM_AddStyle(name.bytes, _settings) != 0;
  });
}

TEST_F(StyleFault, LoadingAndListing) {
  LM_globals* loaded = LM_NewGlobals();
  loaded->Default();
  const std::string before = BytesOf(LM_StyleOfSettings(*loaded));
  // From the first whole light on a style counts as loaded.
  Check = [&](bool done) {
    const bool isAsBefore = BytesOf(LM_StyleOfSettings(*loaded)) == before;
    EXPECT_FALSE(done && isAsBefore);
    // Only closing may fail behind a style that was read whole.
    EXPECT_TRUE(done || isAsBefore || fault_plan->count == fault_plan->fail_at);
    LM_DestroyGlobals(loaded);
    loaded = LM_NewGlobals();
    loaded->Default();
  };
  TryEach("loading a style", [&] {
    TB_Str255 name = TB_PString("Mine");
    return LM_LoadStyle(name.bytes, loaded) != 0;
  });
  LM_DestroyGlobals(loaded);
  Check = [](bool) {};
  TryEach("reading a style by its name", [&] {
    LM_style style = {};
    std::string why;
    const bool read = LM_ReadLibraryStyle("mine", style, why);
    EXPECT_EQ(style.gloss, read ? 11 : 0);
    EXPECT_EQ(why.empty(), read) << why;
    return read;
  });
  TryEach("listing styles", [&] {
    const std::vector<LM_listed_style> styles = LM_ListStyles();
    for (const LM_listed_style& listed : styles)
      EXPECT_TRUE(listed.loads) << listed.name << ": " << listed.why;
    return styles.size() == KEPT + 1;
  });
}

} // namespace
