// What is done to heights, in place and row by row behind whoever makes them: what a filter needs
// of rows that it has overwritten, or that others make of it, it keeps for itself. Each gives the
// same on every machine, in whatever steps the rows come.
#pragma once

#include "LM_box_sums.h"
#include "LM_height_plane.h"

#include <vector>

// The last rows of a plane that grows from the top.
class LM_last_rows {
public:
  // Holds at least `count` rows, or all there are.
  LM_last_rows(int width, int height, int count)
      : _width(width), _count(count < height ? count : height),
        _values(static_cast<size_t>(width) * static_cast<size_t>(_count)) {}

  uint16_t* Row(int y) { return _values.data() + static_cast<ptrdiff_t>(y % _count) * _width; }

private:
  int _width;
  int _count;
  std::vector<uint16_t> _values;
};

// Edges kept, what lies between them evened out: a guided filter with the plane as its own guide.
// Where the plane spreads less than `contrast` (standard deviation, of 65535) within the radius it
// becomes its mean, where it spreads more it stays.
class LM_edge_keeper {
public:
  // radius: in pixels. The plane must stay.
  LM_edge_keeper(LM_height_plane& plane, double radius, double contrast);

  // Once the first numRows rows are there: how many of them are finished. Those behind must not be
  // touched.
  int Advance(int numRows);

private:
  void _FindKeptParts(int y);
  void _Combine(int y);

  LM_height_plane& _plane;
  double _share; // that a pixel counts of a square
  double _noise;
  LM_box_sums<uint32_t> _sums;
  LM_box_sums<uint64_t> _squareSums;
  std::vector<uint64_t> _sumsOfRow;
  std::vector<uint64_t> _squaresOfRow;
  // Of each square: what part of a pixel's difference from the mean is kept, of 65535, and what is
  // added to that part of the pixel.
  LM_box_means _partMeans;
  LM_box_means _restMeans;
  LM_last_rows _parts;
  LM_last_rows _rests;
  std::vector<uint16_t> _part;
  std::vector<uint16_t> _rest;
  int _numFound = 0;
  int _numDone = 0;
};

// What differs from its surroundings, around the middle.
class LM_detail_keeper {
public:
  // radius: of the surroundings, in pixels. fineness: of what is smoothed, at most that. fit: by
  // how much heights are made steeper. most: what no height comes to, before. The plane must stay.
  LM_detail_keeper(LM_height_plane& plane, double radius, double fineness, double fit, double most);

  // As LM_edge_keeper's.
  int Advance(int numRows);

private:
  void _Finish(int y);

  LM_height_plane& _plane;
  double _fit;
  double _most;
  // Means of means of means are near to a bell's.
  LM_box_means _wide[3];
  LM_last_rows _around[2];
  LM_box_means _fine[2];
  LM_last_rows _smoothed;
  std::vector<uint16_t> _aroundRow;
  std::vector<uint16_t> _fineRow;
  int _numAround[2] = {};
  int _numSmoothed = 0;
  int _numDone = 0;
};
