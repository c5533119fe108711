// A host that does exactly what a test tells it, and writes down what the plug-in does.
#pragma once

#include "CVFilterRecord.h"
#include "LM_style.h"

#include <cstdint>
#include <string>
#include <vector>

// One request of the plug-in, as a line: rectangles as left,top-right,bottom.
std::string Line(const FilterRecord& record);

// One at a time: the contract's functions carry no context. Image: 3 planes and one more channel.
class ScriptedHost {
public:
  // filter: the plug-in, the module where none is given.
  ScriptedHost(int16_t width, int16_t height, CVFilterEntry filter = nullptr);
  ~ScriptedHost(); // finishes, and releases the parameter block
  ScriptedHost(const ScriptedHost&) = delete;
  ScriptedHost& operator=(const ScriptedHost&) = delete;

  // One call of the module's entry point.
  int16_t Call(int selector);
  // Makes the kept parameter block from a style, as the dialog would have.
  void KeepParameters(const LM_style& style);
  // Delivers what the record asks for, then calls continue; until both rectangles are empty or a
  // call fails. Answers the last result.
  int16_t Walk();
  // Prepare, start, walk and finish.
  int16_t Run();

  FilterRecord record = {};
  intptr_t data = 0;
  std::vector<uint8_t> image; // 4 interleaved channels
  std::vector<uint8_t> out;   // 3
  int continues = 0;
  int progressReports = 0;
  int cancelAfter = -1; // the cancel test answers yes from this call on
  int16_t channels = 4;
  std::vector<std::string> requests;

  // Fills the input and output buffers with what the record asks for.
  void Deliver();

  CVFilterEntry entry;
  int16_t nextTileResult = 0;

private:
  std::vector<uint8_t> _input;
  std::vector<uint8_t> _output;
};

// A style of one light, with or without relief from channel 4.
LM_style OneLight(bool relief);
