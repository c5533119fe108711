#include "TB_FileTable.h"

#include "TB_Locked.h"

#include <array>
#include <unistd.h>
#include <utility>

namespace {

// A reference is a place in the table and a round, from 1 to 127, that grows when a file leaves
// that place: a stale reference meets another round and is refused.
constexpr int PLACES = 256;
constexpr int LAST_ROUND = 127;

struct Place {
  std::shared_ptr<TB_OpenFile> file;
  int round = 1;
};

struct Table {
  std::mutex mutex;
  std::array<Place, PLACES> places;
  size_t next = 0; // where the search for a free place begins
};

// The place of a valid reference; the lock is held.
Place* FindPlace(Table* table, int16_t refNum) {
  if (refNum <= 0)
    return nullptr;
  Place& place = table->places[static_cast<size_t>(refNum % PLACES)];
  return place.file && place.round == refNum / PLACES ? &place : nullptr;
}

} // namespace

TB_OpenFile::~TB_OpenFile() {
  if (descriptor >= 0)
    close(descriptor);
}

int16_t TB_AddOpenFile(std::shared_ptr<TB_OpenFile> file) {
  const TB_Locked<Table> table;
  for (size_t tried = 0; tried < PLACES; ++tried) {
    const size_t index = (table->next + tried) % PLACES;
    Place& place = table->places[index];
    if (!place.file) {
      place.file = std::move(file);
      table->next = (index + 1) % PLACES;
      return static_cast<int16_t>(place.round * PLACES + static_cast<int>(index));
    }
  }
  return 0;
}

std::shared_ptr<TB_OpenFile> TB_FindOpenFile(int16_t refNum) {
  const TB_Locked<Table> table;
  Place* place = FindPlace(table, refNum);
  return place ? place->file : nullptr;
}

std::shared_ptr<TB_OpenFile> TB_RemoveOpenFile(int16_t refNum) {
  const TB_Locked<Table> table;
  Place* place = FindPlace(table, refNum);
  if (!place)
    return nullptr;
  place->round = place->round % LAST_ROUND + 1;
  return std::exchange(place->file, nullptr);
}
