// Lights outlast the window: beside their picture, in it, and when the program is killed.
#include "EditorRun.h"

#include "Recovery.h"
#include "SavedLights.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QProcess>
#include <QStatusBar>
#include <QTest>

#include <csignal>
#include <iostream>
#include <sys/stat.h>

namespace {

int Slope(int x, int y) {
  return (x * x + 3 * y * y) % 251;
}

// What EditorRun.DISABLED_Script is told.
constexpr const char* SCRIPT_PICTURE = "EDITOR_SCRIPT_PICTURE";
constexpr const char* SCRIPT_STATE = "EDITOR_SCRIPT_STATE";
constexpr const char* SCRIPT = "EditorRun.DISABLED_Script";

int GlossOf(const editor::Recipe& recipe) {
  return recipe.lights ? recipe.lights->gloss : -1;
}

} // namespace

TEST_F(EditorRun, LightsComeBackWithTheirPicture) {
  const QString lit = pathTo("lit.png");
  for (const VipsBandFormat depth : {VIPS_FORMAT_UCHAR, VIPS_FORMAT_USHORT}) {
    const QString picture = makePicture("a picture.png", 3, depth);
    const QByteArray untouched = contentOf(picture);
    QFile::remove(editor::RecipePathOf(picture));
    QFile::remove(editor::RecipePathOf(lit));
    open(picture);
    ASSERT_TRUE(window->loadChannel(makePlane("heights.png", Slope)));
    window->document().select({QRect(3, 2, 80, 50), plane(Slope)});
    ASSERT_TRUE(window->applyStyle("Evening Lamp"));
    const std::vector<uint8_t> before = this->lit();
    EXPECT_TRUE(window->document().isModified());
    ASSERT_TRUE(window->saveRecipe(editor::RecipePathOf(picture)));
    EXPECT_FALSE(window->document().isModified()) << "opening the picture brings the lights back";
    ASSERT_TRUE(window->saveTo(lit));

    open(picture);
    EXPECT_EQ(this->lit(), before);
    EXPECT_FALSE(window->document().isModified());
    EXPECT_EQ(window->statusBar()->currentMessage(), "The lights of a picture.png are back");
    action("Remove Light")->trigger();
    action("Undo")->trigger();
    EXPECT_EQ(this->lit(), before);
    EXPECT_EQ(contentOf(picture), untouched);

    // What a file's metadata says has no room for what was painted.
    open(lit);
    EXPECT_EQ(window->document().originalPath(), picture);
    EXPECT_EQ(window->document().path(), lit);
    EXPECT_TRUE(window->document().isModified()) << "it is not what the file holds";
    EXPECT_EQ(window->statusBar()->currentMessage(),
              "The lights of lit.png are back, over a picture.png, without painted in the editor");
    window->document().select({QRect(3, 2, 80, 50), plane(Slope)});
    EXPECT_EQ(this->lit(), before);
    ASSERT_TRUE(window->saveRecipe(editor::RecipePathOf(lit)));
    window->document().noteSaved(lit);
    open(lit);
    EXPECT_EQ(this->lit(), before);
    EXPECT_FALSE(window->document().isModified());
    // The younger of two counts.
    ASSERT_TRUE(window->applyStyle("Campfire"));
    const std::vector<uint8_t> later = this->lit();
    ASSERT_TRUE(window->saveTo(lit));
    QFile old(editor::RecipePathOf(lit));
    ASSERT_TRUE(old.open(QIODevice::ReadWrite));
    old.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime);
    old.close();
    open(lit);
    window->document().select({QRect(3, 2, 80, 50), plane(Slope)});
    EXPECT_EQ(this->lit(), later);
    window->document().noteSaved(lit);
  }
  EXPECT_EQ(questions, 0);
}

TEST_F(EditorRun, RecipesThatDoNotFitLeaveThePictureAsItIs) {
  const QString picture = makePicture("picture.png");
  makeFile("other.png", contentOf(makePicture("deeper.png", 3, VIPS_FORMAT_USHORT)));
  const QString digest =
      QCryptographicHash::hash(contentOf(picture), QCryptographicHash::Sha256).toHex();
  const auto naming = [](const QString& name, const QString& hash, const QString& more = {}) {
    return QString(R"({"lights": [{}], "lit": {"original": {"name": "%1", "sha256": "%2"}%3}})")
        .arg(name, hash, more)
        .toUtf8();
  };
  const struct {
    const char* name;
    QByteArray content;
    QString says;
  } cases[] = {
      {"empty", "", "its recipe: "},
      {"no JSON", "\xff\xfe\0\1", "its recipe: "},
      {"no style", R"({"lights": 7})", "its recipe: "},
      {"deep", QByteArray(1 << 19, '['), "its recipe: "},
      {"long", QByteArray((1 << 20) + 1, ' '), "is longer than"},
      {"of nothing", R"({"lights": [{}]})", "names no original"},
      {"without digest", naming("picture.png", ""), "names no original"},
      {"elsewhere", naming("../picture.png", digest), "is no file's name"},
      {"absolute", naming("/etc/passwd", digest), "is no file's name"},
      {"above", naming("..", digest), "is no file's name"},
      {"gone", naming("gone.png", digest), "gone.png: is not there"},
      {"a folder", naming("a folder", digest), "a folder: "},
      {"another", naming("other.png", digest), "other.png: is not the file that was lit"},
      {"area", naming("picture.png", digest, R"(, "area": [80, 0, 20, 20])"),
       "is not in the picture"},
  };
  ASSERT_TRUE(QDir(pathTo("")).mkdir("a folder"));
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    makeFile("picture.png.limn.json", c.content);
    open(picture);
    EXPECT_FALSE(window->document().recipe().isLit());
    EXPECT_EQ(window->document().path(), picture);
    const QString told = window->statusBar()->currentMessage();
    EXPECT_TRUE(told.startsWith("Its lights could not be brought back: ")) << told.toStdString();
    EXPECT_TRUE(told.contains(c.says)) << told.toStdString();
  }
  QFile::remove(pathTo("picture.png.limn.json"));
  ASSERT_EQ(mkfifo(pathTo("picture.png.limn.json").toLocal8Bit().constData(), 0600), 0);
  open(picture);
  EXPECT_FALSE(window->document().recipe().isLit());
  EXPECT_EQ(questions, 0);
}

// Runs in a program of its own, until it is killed.
TEST_F(EditorRun, DISABLED_Script) {
  qputenv("XDG_STATE_HOME", qgetenv(SCRIPT_STATE));
  open(qEnvironmentVariable(SCRIPT_PICTURE));
  ASSERT_TRUE(window->applyStyle("Campfire"));
  for (int gloss = 0; gloss <= 255; ++gloss) {
    window->lights().change([gloss](LM_style& style) { style.gloss = static_cast<int16_t>(gloss); },
                            "Gloss");
    std::cout << "step " << gloss << std::endl;
  }
}

TEST_F(EditorRun, LightsOutlastAKilledProgram) {
  const QString picture = makePicture("picture.png");
  const QString state = pathTo("state");
  qputenv(SCRIPT_PICTURE, picture.toLocal8Bit());
  qputenv(SCRIPT_STATE, state.toLocal8Bit());
  const QByteArray usual = qgetenv("XDG_STATE_HOME");
  qputenv("XDG_STATE_HOME", state.toLocal8Bit());
  for (const int killedAfter : {1, 7, 40}) {
    QProcess script;
    script.start(QCoreApplication::applicationFilePath(),
                 {QString("--gtest_filter=") + SCRIPT, "--gtest_also_run_disabled_tests"});
    int steps = 0;
    int last = -1;
    const auto readSteps = [&] {
      while (script.canReadLine()) {
        const QByteArray line = script.readLine().trimmed();
        if (line.startsWith("step ")) {
          last = line.mid(5).toInt();
          ++steps;
        }
      }
    };
    while (steps < killedAfter && script.waitForReadyRead(60000))
      readSteps();
    EXPECT_TRUE(editor::FindLostLights().empty()) << "it is still alive";
    kill(static_cast<pid_t>(script.processId()), SIGKILL);
    script.waitForFinished();
    readSteps();
    ASSERT_GE(steps, killedAfter);
    std::vector<editor::LostLights> lost = editor::FindLostLights();
    ASSERT_EQ(lost.size(), 1U);
    EXPECT_TRUE(editor::FindLostLights().empty()) << "two programs would offer them";
    answerNext(QMessageBox::Yes);
    window->offer(std::move(lost[0]));
    EXPECT_GE(GlossOf(window->document().recipe()), last);
    EXPECT_LE(GlossOf(window->document().recipe()), last + 1);
    EXPECT_EQ(window->document().path(), picture);
    EXPECT_TRUE(window->document().isModified());
    window->document().noteSaved(picture);
    EXPECT_TRUE(QDir(state + "/limn").isEmpty()) << "offered twice";
  }
  EXPECT_EQ(questions, 3);
  qputenv("XDG_STATE_HOME", usual);
}

TEST_F(EditorRun, UnsavedLightsAreKeptWithTheirMaskUntilTheyAreSafe) {
  const QString state = pathTo("state");
  const QByteArray usual = qgetenv("XDG_STATE_HOME");
  qputenv("XDG_STATE_HOME", state.toLocal8Bit());
  const QDir windows(state + "/limn");
  open(makePicture("picture.png"));
  ASSERT_TRUE(window->loadChannel(makePlane("heights.png", Slope)));
  EXPECT_TRUE(windows.isEmpty()) << "nothing is to be lost";
  ASSERT_TRUE(window->applyStyle("Evening Lamp"));
  window->document().select({QRect(3, 2, 80, 50), plane(Slope)});
  const std::vector<uint8_t> before = lit();
  // As another program finds it: with a lock that nobody holds.
  ASSERT_TRUE(QTest::qWaitFor([&] {
    return QFile::exists(windows.filePath(windows.entryList({"window-*"}).value(0) + "/mask.png"));
  }));
  const QString held = windows.filePath(windows.entryList({"window-*"}).value(0));
  const QString left = windows.filePath("window-left");
  ASSERT_TRUE(windows.mkdir("window-left"));
  for (const char* name : {"/lights.json", "/mask.png"})
    ASSERT_TRUE(QFile::copy(held + name, left + name));
  makeFile("state/limn/window-left/lights.json",
           contentOf(left + "/lights.json").replace(held.toUtf8(), left.toUtf8()));
  ASSERT_TRUE(windows.mkdir("window-broken"));
  makeFile("state/limn/window-broken/lights.json", "{");
  {
    std::vector<editor::LostLights> lost = editor::FindLostLights();
    ASSERT_EQ(lost.size(), 1U);
    answerNext(QMessageBox::Yes);
    window->offer(std::move(lost[0]));
  }
  EXPECT_EQ(lit(), before);
  EXPECT_EQ(windows.entryList({"window-*"}).size(), 1) << "and these are this window's own";
  window->document().noteSaved(pathTo("saved.png"));
  EXPECT_TRUE(windows.isEmpty());
  qputenv("XDG_STATE_HOME", usual);
}
