#include "progress_bar.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

namespace limn {
namespace {

constexpr auto FIRST_DRAWING = std::chrono::milliseconds(500);
constexpr auto BETWEEN_DRAWINGS = std::chrono::milliseconds(80);

int TerminalWidth() {
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

} // namespace

ProgressBar::ProgressBar(Wanted wanted, size_t numJobs)
    : _isShown(wanted == Wanted::IfTerminal && isatty(STDERR_FILENO) != 0), _shares(numJobs),
      _nextDrawing(std::chrono::steady_clock::now() + FIRST_DRAWING) {}

void ProgressBar::Update(size_t job, double share) {
  if (!_isShown)
    return;
  _sum += share - _shares[job];
  _numDone += share >= 1 && _shares[job] < 1 ? 1 : 0;
  _shares[job] = share;
  const auto now = std::chrono::steady_clock::now();
  if (now < _nextDrawing)
    return;
  _nextDrawing = now + BETWEEN_DRAWINGS;
  _Draw();
}

void ProgressBar::_Draw() {
  const double share = std::clamp(_sum / static_cast<double>(_shares.size()), 0.0, 1.0);
  std::string text = " " + std::to_string(static_cast<int>(share * 100)) + " %";
  if (_shares.size() > 1)
    text += "  " + std::to_string(_numDone) + " of " + std::to_string(_shares.size()) + " images";
  const int length = std::clamp(TerminalWidth() - static_cast<int>(text.size()) - 3, 0, 50);
  const int filled = static_cast<int>(share * length);
  const std::string line =
      "\r[" + std::string(filled, '#') + std::string(length - filled, ' ') + "]" + text + "\x1b[K";
  std::fwrite(line.data(), 1, line.size(), stderr);
  _isDrawn = true;
}

void ProgressBar::Clear() {
  if (_isDrawn)
    std::fputs("\r\x1b[K", stderr);
  _isDrawn = false;
}

} // namespace limn
