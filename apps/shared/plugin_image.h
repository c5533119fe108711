// A photograph that the plug-in lights while it is read and written: rows that are decoded go to
// the plug-in, those that it has left to whoever asks for them.
#pragma once

#include "lighting.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vips/vips8>

namespace limn {

// Rows from the top that one thread makes and others wait for.
class RowGate {
public:
  void Open(int bottom); // rows above it are there
  void Close();          // no more will come
  // False when rows above `bottom` will never be there.
  bool Wait(int bottom);

private:
  std::mutex _lock;
  std::condition_variable _changed;
  int _bottom = 0;
  bool _isClosed = false;
};

// Two threads of its own: one decodes as fast as it can, the other runs the plug-in, as the editor
// does when it repeats the filter. Both end at the latest when the object goes.
class PluginImage {
public:
  // planes: of 8 bits, the first three red, green and blue; decoded once. surroundings: of
  // their size. hasSourceFailed: becomes true once pixels could not be decoded, for which libvips
  // has the reason, or lit. Throws Failure as AddSurroundings and MakeParameters do.
  PluginImage(const CVPlugin& plugin, const LM_style& style, Surroundings surroundings,
              const vips::VImage& planes, const std::string& file,
              std::shared_ptr<std::atomic<bool>> hasSourceFailed);
  ~PluginImage();
  PluginImage(const PluginImage&) = delete;
  PluginImage& operator=(const PluginImage&) = delete;

  // The lit planes, from top to bottom; an error when they cannot be had. Not to be asked for
  // pixels when the object has gone.
  vips::VImage Lit();
  // Throws Failure when rows cannot be had since the plug-in's run has failed.
  void CheckPlugin();

private:
  void _Decode();
  void _Run(const CVPlugin& plugin, const foo& parameters);
  bool _GiveRows(VipsRegion* wanted);
  void _CopyLit(VipsRegion* wanted, const VipsRect& part);

  const vips::VImage _planes;
  const std::string _file;
  Surroundings _surroundings; // whose pixels the document borrows
  CVDocument _document;
  CVRect _area;
  RowGate _decoded, _finished;
  std::shared_ptr<const CVBuffer> _lit; // once rows are finished
  std::atomic<bool> _isStopped{false};
  std::shared_ptr<std::atomic<bool>> _hasSourceFailed;
  std::mutex _lock; // of the next
  CVResult _failure;
  std::jthread _decoder, _runner;
};

} // namespace limn
