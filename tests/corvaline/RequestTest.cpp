// Requests that no host can meet: each ends the run with a sentence and leaves the image alone.
#include "Plan.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace {

CVRect box(int top, int left, int bottom, int right) {
  const auto side = [](int at) { return static_cast<int16_t>(at); };
  return {side(top), side(left), side(bottom), side(right)};
}

struct WrongRequest {
  const char* name;
  std::function<void(FilterRecord&)> ask; // on top of a right request
  const char* sentence;                   // a part of the message
};

// On an image of 20 × 10 pixels, 3 planes and one extra channel.
const WrongRequest wrongRequests[] = {
    {"input above", [](auto& r) { r.inTileRect.top = -1; }, "input rectangle of rows -1 to"},
    {"input left", [](auto& r) { r.inTileRect.left = -1; }, "outside the image of 20 x 10"},
    {"input below", [](auto& r) { r.inTileRect.bottom = 11; }, "outside the image"},
    {"input right", [](auto& r) { r.inTileRect.right = 21; }, "outside the image"},
    {"inverted input", [](auto& r) { r.inTileRect = box(5, 0, 4, 4); }, "inverted input"},
    {"inverted output", [](auto& r) { r.outTileRect = box(0, 5, 4, 4); }, "inverted output"},
    {"output outside, replicated",
     [](auto& r) { r.inEdgeMode = CV_EDGE_REPLICATE, r.outTileRect.top = -1; }, "output rectangle"},
    {"output right", [](auto& r) { r.outTileRect.right = 21; }, "output rectangle"},
    {"mask outside", [](auto& r) { r.maskTileRect = box(0, 0, 11, 1); }, "mask rectangle"},
    {"inverted mask", [](auto& r) { r.maskTileRect = box(0, 3, 1, 1); }, "inverted mask"},
    {"first plane below 0", [](auto& r) { r.inFirstPlane = -1; }, "input planes -1 to 2"},
    {"planes inverted", [](auto& r) { r.inLastPlane = -1; }, "input planes 0 to -1"},
    {"plane of no mode", [](auto& r) { r.inLastPlane = 3; }, "planes 0 to 2 exist"},
    {"output plane of no mode", [](auto& r) { r.outLastPlane = 3; }, "output planes 0 to 3"},
    {"absolute plane too high",
     [](auto& r) { r.absolutePlanesWanted = 1, r.inFirstPlane = r.inLastPlane = 4; },
     "planes 0 to 3 exist"},
    {"unknown edge mode", [](auto& r) { r.inEdgeMode = 7; }, "edge mode 7"},
    {"step 0", [](auto& r) { r.inSampleStep = 0; }, "input sampling step"},
    {"step below 1", [](auto& r) { r.inSampleStep = CV_FIXED_ONE - 1; }, "65535/65536"},
    {"step negative", [](auto& r) { r.inSampleStep = INT32_MIN; }, "below 1"},
    {"mask step 0", [](auto& r) { r.maskTileRect = box(0, 0, 1, 1), r.maskSampleStep = 0; },
     "mask sampling step"},
    {"gigabytes of margin",
     [](auto& r) {
       r.inTileRect = box(-32768, -32768, 32767, 32767), r.inEdgeMode = CV_EDGE_REPLICATE;
     },
     "more than"},
};

void askRightly(FilterRecord& record) {
  record.inTileRect = record.outTileRect = {0, 0, 4, 4};
  record.inFirstPlane = record.outFirstPlane = 0;
  record.inLastPlane = record.outLastPlane = 2;
}

void paint(FilterRecord& record) {
  for (int row = 0; row < 4; ++row)
    std::fill_n(record.outPixels + row * record.outRowStride, 12, uint8_t{99});
}

// Runs the plan and expects the refusal, the last step sent to be the only finish, and the image to
// be as it was.
void expectRefused(Plan& plan, const std::string& sentence) {
  std::mt19937 random(6);
  TestDocument document = randomDocument(random, 20, 10, 3, 1, true);
  const auto before = bytesOf(document);
  CVFilterSession session(playing(plan));
  const CVResult result = session.run(document, document.bounds(), {});
  EXPECT_EQ(result.outcome, CVOutcome::BadRequest);
  EXPECT_NE(result.message.find(sentence), std::string::npos) << result.message;
  EXPECT_EQ(result.message.rfind("corvaline_test_module.so: the plug-in ", 0), 0u)
      << result.message;
  EXPECT_EQ(bytesOf(document), before);
  EXPECT_EQ(std::count(plan.calls.begin(), plan.calls.end(), LM_SEL_FINISH), 1);
  EXPECT_EQ(plan.calls.back(), LM_SEL_FINISH);
}

} // namespace

TEST(Request, WrongOnesAreRefused) {
  for (const WrongRequest& wrong : wrongRequests) {
    SCOPED_TRACE(wrong.name);
    Plan atStart;
    atStart.start = [&](FilterRecord& record) -> int16_t {
      askRightly(record);
      wrong.ask(record);
      return 0;
    };
    expectRefused(atStart, wrong.sentence);
    EXPECT_EQ(atStart.calls, (std::vector<int>{LM_SEL_PREPARE, LM_SEL_START, LM_SEL_FINISH}));

    // After output was taken, inside a call, by a plug-in that makes light of the answer.
    Plan inside;
    inside.start = [](FilterRecord& record) -> int16_t {
      askRightly(record);
      return 0;
    };
    inside.next = [&](FilterRecord& record) -> int16_t {
      paint(record);
      wrong.ask(record);
      EXPECT_NE(record.nextTile(), 0);
      EXPECT_EQ(record.inPixels, nullptr);
      EXPECT_EQ(record.outPixels, nullptr);
      EXPECT_EQ(record.maskPixels, nullptr);
      EXPECT_NE(record.testCancel(), 0);
      stopAsking(record);
      return 0;
    };
    expectRefused(inside, wrong.sentence);
  }
}

TEST(Request, WalkThatNeverEndsIsEnded) {
  Plan plan;
  plan.start = [](FilterRecord& record) -> int16_t {
    askRightly(record);
    return 0;
  };
  plan.next = [](FilterRecord& record) -> int16_t {
    paint(record);
    return 0;
  };
  expectRefused(plan, "still asked for tiles");
  EXPECT_GT(plan.calls.size(), 20u * 10u); // a walk by single pixels is not endless here
}

TEST(Request, FilterAreaMustBePutBack) {
  for (const int step : {LM_SEL_PREPARE, LM_SEL_START, LM_SEL_CONTINUE, LM_SEL_FINISH}) {
    SCOPED_TRACE(step);
    Plan plan;
    const auto act = [step](int now) {
      return [step, now](FilterRecord& record) -> int16_t {
        EXPECT_EQ(record.filterArea.right, 20);
        now == LM_SEL_CONTINUE ? stopAsking(record) : askRightly(record);
        if (now == step)
          record.filterArea.right = 19;
        return 0;
      };
    };
    plan.prepare = act(LM_SEL_PREPARE);
    plan.start = act(LM_SEL_START);
    plan.next = act(LM_SEL_CONTINUE);
    plan.finish = act(LM_SEL_FINISH);
    expectRefused(plan, "did not put the filter area back");
  }
}
