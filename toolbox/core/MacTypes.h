// The types every Toolbox call speaks in, its result codes, and rectangle arithmetic.
#pragma once

#include "CVFilterRecord.h"

#include <cstddef>
#include <cstdint>

// Marks what the shared library offers; everything else stays inside it.
#define TB_EXPORT __attribute__((visibility("default")))

// A fixed block of memory, and a relocatable one: a pointer to its master pointer.
typedef char* Ptr;
typedef CVHandle Handle;
// A number of bytes. Signed; a negative one is never a size.
typedef intptr_t Size;

// Bottom and right are exclusive.
typedef CVRect Rect;
struct Point {
  int16_t v, h;
};

// A length byte, then up to 255 bytes of UTF-8.
typedef unsigned char Str255[256];
typedef unsigned char* StringPtr;
typedef const unsigned char* ConstStr255Param;

typedef int16_t OSErr;
typedef uint8_t Boolean;
// A four-character code, first character in the high byte: CV_FOUR_CHARS.
typedef uint32_t OSType;

struct RGBColor {
  uint16_t red, green, blue;
};

inline constexpr OSErr noErr = 0;
inline constexpr OSErr dskFulErr = -34; // no room on the volume
inline constexpr OSErr nsvErr = -35;    // no such volume
inline constexpr OSErr ioErr = -36;     // the device failed
inline constexpr OSErr bdNamErr = -37;  // the name cannot be a file's
inline constexpr OSErr eofErr = -39;    // the file ended before the count was read
inline constexpr OSErr tmfoErr = -42;   // too many files open
inline constexpr OSErr fnfErr = -43;    // file not found
inline constexpr OSErr wPrErr = -44;    // the volume cannot be written to
inline constexpr OSErr fLckdErr = -45;  // the file is locked
inline constexpr OSErr fBsyErr = -47;   // the folder is not empty, or the file is in use
inline constexpr OSErr dupFNErr = -48;  // a file of that name is there already
inline constexpr OSErr paramErr = -50;  // an argument makes no sense
inline constexpr OSErr rfNumErr = -51;  // not a reference of an open file
inline constexpr OSErr permErr = -54;   // opening for writing is not permitted: the file is locked
inline constexpr OSErr wrPermErr = -61; // the file was opened for reading only
inline constexpr OSErr memFullErr = -108;   // not enough memory
inline constexpr OSErr dirNFErr = -120;     // folder not found
inline constexpr OSErr resNotFound = -192;  // resource not found
inline constexpr OSErr notAFileErr = -1302; // a folder, pipe or device where a file was expected

// Makes *rect of the four sides; note the order.
TB_EXPORT void SetRect(Rect* rect, int16_t left, int16_t top, int16_t right, int16_t bottom);
// Moves *rect right by dh and down by dv. Coordinates wrap at 16 bits.
TB_EXPORT void OffsetRect(Rect* rect, int16_t dh, int16_t dv);
// Moves the sides inwards (outwards for negative amounts). A rectangle with nothing left becomes
// 0, 0, 0, 0.
TB_EXPORT void InsetRect(Rect* rect, int16_t dh, int16_t dv);
// 1 when the pixel right below the point belongs to the rectangle.
TB_EXPORT Boolean PtInRect(Point point, const Rect* rect);
TB_EXPORT Boolean EmptyRect(const Rect* rect);
