// The order of the calls, what their answers mean, and what a session keeps.
#include "MacMemory.h"
#include "Plan.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <new>
#include <string>

namespace {

const std::vector<int> WHOLE_RUN = {LM_SEL_PREPARE, LM_SEL_START, LM_SEL_CONTINUE, LM_SEL_CONTINUE,
                                    LM_SEL_FINISH};

// A plug-in that paints two tiles of a 20 × 10 image.
Plan paintingPlan() {
  Plan plan;
  plan.start = [](FilterRecord& record) -> int16_t {
    record.outTileRect = {0, 0, 10, 10};
    return 0;
  };
  plan.next = [](FilterRecord& record) -> int16_t {
    for (int row = 0; row < 10; ++row)
      std::fill_n(record.outPixels + row * record.outRowStride, 30, uint8_t{99});
    if (record.outTileRect.right == 20)
      stopAsking(record);
    else
      record.outTileRect = {0, 10, 10, 20};
    return 0;
  };
  return plan;
}

class Session : public testing::Test {
protected:
  void SetUp() override {
    random.seed(8);
    document = randomDocument(random, 20, 10, 3, 1, false);
  }

  CVResult run(CVFilterSession& session, const CVRunOptions& options = {}) {
    return session.run(document, document.bounds(), options);
  }

  std::mt19937 random{8};
  TestDocument document;
};

} // namespace

TEST_F(Session, AnswersBecomeOutcomes) {
  const struct {
    int step;
    int16_t code;
    CVDialog dialog;
    CVOutcome outcome;
    const char* sentence;
  } cases[] = {
      {LM_SEL_PARAMETERS, -30100, CVDialog::Yes, CVOutcome::Failed, "the step \"parameters\""},
      {LM_SEL_PREPARE, 1, CVDialog::Yes, CVOutcome::Stopped, "stopped"},
      {LM_SEL_PREPARE, -30101, CVDialog::No, CVOutcome::BadMode, "colour mode"},
      {LM_SEL_PREPARE, -108, CVDialog::No, CVOutcome::NoMemory, "memory"},
      {LM_SEL_START, 1, CVDialog::No, CVOutcome::Stopped, "stopped"},
      {LM_SEL_START, -30900, CVDialog::No, CVOutcome::Failed, "lacks"},
      {LM_SEL_START, -108, CVDialog::Yes, CVOutcome::NoMemory, "memory"},
      {LM_SEL_CONTINUE, 1, CVDialog::No, CVOutcome::Stopped, "stopped"},
      {LM_SEL_CONTINUE, 1, CVDialog::Yes, CVOutcome::Cancelled, "cancelled"},
      {LM_SEL_CONTINUE, -4, CVDialog::No, CVOutcome::Failed, "code -4 in its step \"continue\""},
      {LM_SEL_FINISH, -36, CVDialog::No, CVOutcome::Failed, "code -36"},
      {LM_SEL_FINISH, 0, CVDialog::No, CVOutcome::Done, ""},
      {LM_SEL_FINISH, 0, CVDialog::Yes, CVOutcome::Done, ""},
  };
  const auto before = bytesOf(document);
  for (const auto& test : cases) {
    SCOPED_TRACE(testing::Message() << "step " << test.step << " answers " << test.code);
    Plan plan = paintingPlan();
    const auto answer = [&](int step, const std::function<int16_t(FilterRecord&)>& act) {
      return [&test, step, act](FilterRecord& record) -> int16_t {
        const auto code = act ? act(record) : int16_t{0};
        return step == test.step ? test.code : code;
      };
    };
    plan.parameters = answer(LM_SEL_PARAMETERS, plan.parameters);
    plan.prepare = answer(LM_SEL_PREPARE, plan.prepare);
    plan.start = answer(LM_SEL_START, plan.start);
    plan.next = answer(LM_SEL_CONTINUE, plan.next);
    plan.finish = answer(LM_SEL_FINISH, plan.finish);
    CVFilterSession session(playing(plan));
    CVRunOptions options;
    options.dialog = test.dialog;
    const CVResult result = run(session, options);

    EXPECT_EQ(result.outcome, test.outcome);
    EXPECT_EQ(result.code, test.code);
    EXPECT_NE(result.message.find(test.sentence), std::string::npos) << result.message;
    EXPECT_EQ(bytesOf(document) == before, test.outcome != CVOutcome::Done);
    // The steps up to the one that failed, then finish.
    std::vector<int> expected = WHOLE_RUN;
    if (test.dialog == CVDialog::Yes)
      expected.insert(expected.begin(), LM_SEL_PARAMETERS);
    const auto failed = std::find(expected.begin(), expected.end(), test.step);
    if (test.step != LM_SEL_FINISH)
      expected.erase(failed + 1, expected.end() - 1);
    EXPECT_EQ(plan.calls, expected);
    SetUp();
  }
}

TEST_F(Session, KeepsParametersAndSlotOverRuns) {
  const uint64_t blocks = TB_BlocksInUse();
  {
    Plan plan = paintingPlan();
    plan.prepare = [&](FilterRecord& record) -> int16_t {
      EXPECT_EQ(record.savedParams, nullptr);
      record.savedParams = NewHandle(3);
      std::copy_n("abc", 3, *record.savedParams);
      *plan.slot = 4711;
      return 0;
    };
    CVFilterSession session(playing(plan));
    EXPECT_FALSE(session.hasParameters());
    EXPECT_TRUE(run(session).ok());
    EXPECT_EQ(session.parameters(), (std::vector<uint8_t>{'a', 'b', 'c'}));

    // Kept after a failed run too, which may have changed them.
    plan.prepare = [&](FilterRecord& record) -> int16_t {
      EXPECT_EQ(*plan.slot, 4711);
      (*record.savedParams)[0] = 'x';
      return -1;
    };
    EXPECT_FALSE(run(session).ok());
    EXPECT_EQ(session.parameters(), (std::vector<uint8_t>{'x', 'b', 'c'}));

    EXPECT_TRUE(session.setParameters("12345", 5).ok());
    plan.prepare = [](FilterRecord& record) -> int16_t {
      EXPECT_EQ(GetHandleSize(record.savedParams), 5);
      EXPECT_EQ((*record.savedParams)[4], '5');
      return 0;
    };
    EXPECT_TRUE(run(session).ok());

    TB_SetMemoryBudget(0);
    EXPECT_EQ(session.setParameters("6", 1).outcome, CVOutcome::NoMemory);
    TB_ResetMemoryBudget();
    EXPECT_EQ(session.parameters().size(), 5u);
  }
  EXPECT_EQ(TB_BlocksInUse(), blocks);
}

TEST_F(Session, CancelLeavesTheImage) {
  const auto before = bytesOf(document);
  // A plug-in that acts on the cancel test, one that does not ask, and one that learns of it in its
  // last call and goes on.
  for (const bool asks : {true, false})
    for (const int callsBefore : {0, 1, 2}) {
      SCOPED_TRACE(testing::Message() << (asks ? "asks, " : "does not ask, ") << callsBefore);
      Plan plan = paintingPlan();
      int continued = 0;
      plan.next = [&, paint = plan.next](FilterRecord& record) -> int16_t {
        ++continued;
        if (asks && record.testCancel() != 0)
          return 1;
        return paint(record);
      };
      CVFilterSession session(playing(plan));
      CVRunOptions options;
      options.cancelled = [&] { return continued >= callsBefore; };
      EXPECT_EQ(run(session, options).outcome, CVOutcome::Cancelled);
      EXPECT_LE(continued, std::max(callsBefore, 1));
      EXPECT_EQ(plan.calls.back(), LM_SEL_FINISH);
      EXPECT_EQ(bytesOf(document), before);
    }
}

TEST_F(Session, ProgressIgnoresWhatPlugInsReport) {
  Plan plan = paintingPlan();
  plan.next = [paint = plan.next](FilterRecord& record) -> int16_t {
    record.reportProgress(1, -5);
    record.reportProgress(INT32_MAX, INT32_MIN);
    return paint(record);
  };
  CVFilterSession session(playing(plan));
  std::vector<double> shown;
  CVRunOptions options;
  options.progress = [&](double share) { shown.push_back(share); };
  EXPECT_TRUE(run(session, options).ok());
  EXPECT_EQ(shown, (std::vector<double>{0.5, 1.0}));
}

TEST_F(Session, PropertiesAreAnswered) {
  for (const char* name : {"Höhe", ""})
    ASSERT_TRUE(document.wrapChannel(name, document.planes[0].data(), 20).ok());
  const uint64_t blocks = TB_BlocksInUse();
  Plan plan;
  plan.prepare = [](FilterRecord& record) -> int16_t {
    const uint32_t host = CV_HOST_SIGNATURE, name = CV_PROPERTY_CHANNEL_NAME;
    int32_t count = 0;
    EXPECT_EQ(record.queryProperty(host, CV_PROPERTY_NUM_CHANNELS, 0, &count, nullptr), 0);
    EXPECT_EQ(count, 6);
    const char* const names[] = {"Red", "Green", "Blue", "Extra", "Höhe", ""};
    for (int i = 0; i < 6; ++i) {
      CVHandle handle = nullptr;
      EXPECT_EQ(record.queryProperty(host, name, i, nullptr, &handle), 0);
      EXPECT_EQ(std::string(*handle, static_cast<size_t>(GetHandleSize(handle))), names[i]);
      DisposeHandle(handle);
    }
    CVHandle handle = nullptr;
    for (const int index : {-1, 6, INT32_MAX, INT32_MIN})
      EXPECT_NE(record.queryProperty(host, name, index, &count, &handle), 0);
    EXPECT_NE(record.queryProperty(host, name, 0, &count, nullptr), 0);
    EXPECT_NE(record.queryProperty(host, CV_PROPERTY_NUM_CHANNELS, 0, nullptr, &handle), 0);
    EXPECT_EQ(record.queryProperty(host, 5, 0, &count, &handle), CV_RESULT_NO_SERVICE);
    EXPECT_EQ(record.queryProperty(5, name, 0, &count, &handle), CV_RESULT_NO_SERVICE);
    TB_SetMemoryBudget(0);
    EXPECT_EQ(record.queryProperty(host, name, 1, &count, &handle), CV_RESULT_NO_MEMORY);
    TB_ResetMemoryBudget();
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(record.nextTile(), CV_RESULT_NO_SERVICE); // nothing is delivered before start
    return 0;
  };
  CVFilterSession session(playing(plan));
  EXPECT_TRUE(run(session).ok());
  EXPECT_EQ(TB_BlocksInUse(), blocks);
}

// Services are called from inside the plug-in: what they throw ends the run, not the program.
TEST_F(Session, ThrowingFunctionsEndTheRun) {
  const auto before = bytesOf(document);
  for (const bool memory : {true, false})
    for (const bool inProgress : {true, false}) {
      Plan plan = paintingPlan();
      plan.next = [paint = plan.next](FilterRecord& record) -> int16_t {
        record.reportProgress(0, 1);
        record.testCancel();
        return paint(record);
      };
      CVFilterSession session(playing(plan));
      CVRunOptions options;
      const auto fail = [&] { memory ? throw std::bad_alloc() : throw 1; };
      int asked = 0;
      if (inProgress)
        options.progress = [&](double) { fail(); };
      else
        options.cancelled = [&] {
          if (++asked == 2) // the first is the host's own
            fail();
          return false;
        };
      EXPECT_EQ(run(session, options).outcome, memory ? CVOutcome::NoMemory : CVOutcome::Failed);
      EXPECT_EQ(plan.calls.back(), LM_SEL_FINISH);
      EXPECT_EQ(bytesOf(document), before);
    }
}

TEST_F(Session, OneRunAtATime) {
  Plan plan = paintingPlan();
  CVFilterSession session(playing(plan)), other(session.plugin());
  CVRunOptions options;
  int refused = 0;
  options.cancelled = [&] {
    refused += run(session).outcome == CVOutcome::BadPlugin;
    refused += run(other).outcome == CVOutcome::BadPlugin;
    refused += session.about(nullptr).outcome == CVOutcome::BadPlugin;
    refused += session.setParameters("", 0).outcome == CVOutcome::BadPlugin;
    return false;
  };
  EXPECT_TRUE(run(session, options).ok());
  EXPECT_EQ(refused, 3 * 4);
  EXPECT_EQ(plan.calls, WHOLE_RUN);
}

TEST_F(Session, AboutGetsItsOwnRecord) {
  Plan plan;
  int window = 0;
  plan.about = [&](CVAboutRecord& record) -> int16_t {
    EXPECT_EQ(record.hostWindow, &window);
    *plan.slot = 5;
    return -30100;
  };
  CVFilterSession session(playing(plan));
  EXPECT_EQ(session.about(&window).code, -30100);
  plan.prepare = [&](FilterRecord&) -> int16_t { return *plan.slot == 5 ? 0 : -1; };
  EXPECT_TRUE(run(session).ok());
}
