// One line on a terminal that shows how far the work is.
#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

namespace limn {

// Drawn on standard error, in place, when that is a terminal and the work takes longer than a
// moment.
class ProgressBar {
public:
  enum class Wanted { No, IfTerminal };
  ProgressBar(Wanted wanted, size_t numJobs);
  ~ProgressBar() { Clear(); }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  // share: 0 … 1; 1 for a job that has ended, well or not.
  void Update(size_t job, double share);
  // Removes the line, so that something else can be printed; the next update brings it back.
  void Clear();

private:
  void _Draw();

  bool _isShown;
  bool _isDrawn = false;
  std::vector<double> _shares;
  double _sum = 0;
  size_t _numDone = 0;
  std::chrono::steady_clock::time_point _nextDrawing;
};

} // namespace limn
