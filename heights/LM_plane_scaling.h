// Planes made smaller and larger, in 16 bits: by the mean of what a pixel covers, or along smooth
// curves.
#pragma once

#include "LM_height_plane.h"

// Takes a plane row by row and makes it smaller, or leaves a side as it is. Whole numbers.
class LM_plane_reducer {
public:
  // Both sides of `to` are at most those of the plane that is to come.
  LM_plane_reducer(int width, int height, int toWidth, int toHeight);

  // The rows from the top, `height` of them.
  void Add(const uint16_t* row);
  LM_height_plane Take() { return std::move(_plane); }

  // The result while it grows, and how many of its rows are there.
  LM_height_plane& Plane() { return _plane; }
  int NumRows() const { return _row; }

private:
  void _ReduceRow(const uint16_t* row);
  void _AddPart(uint64_t part);

  int _width;
  int _height;
  uint64_t _room;                // what the present row of the result still lacks, of _height
  int _row = 0;                  // which that is
  std::vector<uint64_t> _across; // a row made narrower, times _width
  std::vector<uint64_t> _sums;   // such rows, times what part of them counts
  LM_height_plane _plane;
};

// Rows of a plane as they are at another size, in any order. The curves go through the plane's own
// heights and have no kinks (Catmull-Rom); beyond the edges the plane goes on with its last values.
// The plane must stay. Safe on any thread once made.
class LM_plane_enlarger {
public:
  LM_plane_enlarger(const LM_height_plane& plane, int width, int height);

  // `count` pixels of row y from column `left` on. scratch: any, for use by one thread.
  void MakeRow(int y, int left, int count, uint16_t* row, std::vector<double>& scratch) const;

private:
  // Of each pixel four neighbours, the first of which may lie beyond the edge, and how much of
  // each.
  struct Taps {
    std::vector<int> first;
    std::vector<double> weight[4];
  };
  static Taps _MakeTaps(int from, int to);
  void _MixRows(int y, int first, int end, double* mixed) const;

  const LM_height_plane& _plane;
  Taps _columns;
  Taps _rows;
};

// The whole plane at another size.
LM_height_plane LM_ScaledPlane(const LM_height_plane& plane, int width, int height);
