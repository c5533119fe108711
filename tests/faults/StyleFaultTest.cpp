// The style library while memory or the disk fails at every step: each file stays what it was or
// becomes whole what it was to be.
#include "FaultRun.h"
#include "LM_gallery.h"
#include "LM_style_settings.h"
#include "StyleFolder.h"

#include <new>

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

class StyleFault : public StyleFolder<FaultTest> {
protected:
  void SetUp() override {
    StyleFolder::SetUp();
    settings->gloss = 22;
    _newBytes = StyleBytes(LM_StyleOfSettings(*settings));
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
    ASSERT_TRUE(LM_UseStyleLibrary(why) && why.empty()) << why;
    const std::vector<std::string> bundled = LM_BundledStyleNames();
    for (size_t i = KEPT; i < bundled.size(); ++i)
      std::filesystem::remove(Style(bundled[i]));
    for (const Fault& fault : FAULTS) {
      const auto once = [&] {
        Write("Mine", StyleBytes(11, 2));
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
        done = LM_UseStyleLibrary(why) && why.empty();
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
      EXPECT_TRUE(LM_UseStyleLibrary(why) && why.empty()) << why;
      ExpectWholeFiles();
      for (const std::string& name : LM_BundledStyleNames())
        EXPECT_TRUE(std::filesystem::exists(Style(name))) << name;
    };
    TryEachFailure(fault.kind, (std::string(fault.name) + " while seeding").c_str(), once,
                   Pace::Some);
  }
}

TEST_F(StyleFault, Replacing) {
  Check = [&](bool done) { EXPECT_EQ(Bytes("Mine"), done ? _newBytes : StyleBytes(11, 2)); };
  TryEach("replacing a style", [&] {
    TB_Str255 name = TB_PString("Mine");
    return LM_ReplaceStyle(name.bytes, settings) != 0;
  });
}

TEST_F(StyleFault, ReplacingNeverTakesAFileThatIsNoStyle) {
  TryEach("refusing to replace notes", [&] {
    TB_Str255 name = TB_PString("notes");
    return LM_ReplaceStyle(name.bytes, settings) == 0;
  });
}

TEST_F(StyleFault, Saving) {
  Check = [&](bool done) {
    EXPECT_EQ(std::filesystem::exists(Style("New")), done);
    EXPECT_TRUE(!done || Bytes("New") == _newBytes);
  };
  TryEach("saving a new style", [&] {
    TB_Str255 name = TB_PString("New");
    return LM_AddStyle(name.bytes, settings) != 0;
  });
}

TEST_F(StyleFault, LoadingAndListing) {
  LM_globals* loaded = LM_NewGlobals();
  loaded->Default();
  const std::string before = StyleBytes(LM_StyleOfSettings(*loaded));
  // From the first whole light on a style counts as loaded.
  Check = [&](bool done) {
    const bool isAsBefore = StyleBytes(LM_StyleOfSettings(*loaded)) == before;
    EXPECT_FALSE(done && isAsBefore);
    // Only closing may fail after a style has been read whole.
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
