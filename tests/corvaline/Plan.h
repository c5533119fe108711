// What the test module does at each call, and documents to let it loose on.
#pragma once

#include "CVDocument.h"
#include "CVFilterRecord.h"
#include "CVFilterSession.h"
#include "CVPlugin.h"

#include <cstdint>
#include <functional>
#include <random>
#include <vector>

// The part of the plug-in. A step that is not set answers 0. Only one plan at a time is acted out.
struct Plan {
  std::function<int16_t(FilterRecord&)> parameters, prepare, start, next, finish;
  std::function<int16_t(CVAboutRecord&)> about;
  std::vector<int> calls;         // selectors in their order
  intptr_t* slot = nullptr;       // of the call under way
  FilterRecord* record = nullptr; // of the call under way
};

// The test module, loaded, acting out `plan` from now on.
CVPlugin playing(Plan& plan);

// Asks for nothing more.
void stopAsking(FilterRecord& record);

// A document with the memory of what follows its base.
struct TestDocument : CVDocument {
  std::vector<std::vector<uint8_t>> planes;
};

// Memory for `rows` rows, with random bytes.
std::vector<uint8_t> randomPlane(std::mt19937& random, int rows, int rowStride);

// An image with random bytes, `extras` channels of their own, and a random selection if `masked`.
TestDocument randomDocument(std::mt19937& random, int width, int height, int planes, int extras,
                            bool masked);

// Every byte of every channel, channel by channel.
std::vector<uint8_t> bytesOf(const CVDocument& document);

// The pixel of a channel, with the image's edges repeated around it.
uint8_t pixelAt(const CVDocument& document, int channel, int row, int column);
