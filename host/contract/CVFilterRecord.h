/* The contract between the image editor Corvaline, the host, and a filter plug-in: all that is
 * needed to write either. It stands alone, and is C as well as C++.
 *
 * A plug-in is a loadable module that exports one symbol, `main`, of type CVFilterEntry. Only the
 * host calls it, once per step of a run:
 *
 *   parameters   only if the user is to be asked
 *   prepare      may the filter run here?
 *   start        the plug-in asks for its first tile
 *   continue     a tile is delivered, the plug-in works on it and asks for the next
 *   finish       the run is over
 *
 * Continue is sent until the input and the output rectangle that are asked for are both empty.
 * Finish is always sent, once, as the last call of a run.
 *
 * Any answer but CV_RESULT_OK ends the run, as a cancel or a failure of the host does: finish is
 * the only call that follows, even when parameters or prepare failed, and the image stays as it was
 * before the run. `about` is no part of a run and may be sent between two of them.
 *
 * Threads. All calls of a run come from one thread and get the same record and the same data slot.
 * A plug-in need not be fit for two calls at a time, not even with different records. A host whose
 * service runs an event loop must not call the plug-in again from there; Limn answers such a call
 * with CV_RESULT_STOPPED.
 *
 * Services are the functions in the record. Only the plug-in calls them, on the thread of the call
 * it is answering, before that call returns, and never from `about`, which gets no FilterRecord.
 * They take no context, so a host keeps its current run where they find it. Each names the
 * steps it may be called in. No exception and no longjmp may leave a service, or a call of `main`.
 *
 * Pixels are the host's. A plug-in keeps no pointer of a delivery after the call that it was made
 * for, or after asking for another with nextTile.
 *
 * The layout of the records was fixed on 32-bit machines with natural alignment; there the offsets
 * and sizes at the end are asserted. Where pointers are wider, the fields keep their order and
 * names.
 */
#ifndef CV_FILTER_RECORD_H
#define CV_FILTER_RECORD_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A rectangle in image pixels: bottom and right are exclusive. Empty when bottom == top or
 * right == left; a host refuses one that is turned inside out. */
typedef struct CVRect {
  int16_t top, left, bottom, right;
} CVRect;

/* The same with 32-bit sides, as pixel maps use it. */
typedef struct CVRect32 {
  int32_t top, left, bottom, right;
} CVRect32;

/* A block of memory that host and plug-in pass each other: a pointer to a pointer to its bytes.
 * Read the inner pointer anew after every call that may make or resize a handle, since the block
 * moves. Whoever gets a handle may resize it or dispose of it, so all must be made by one Memory
 * Manager: the one in libtoolbox.so. A host links that library, or loads it before the plug-in. */
typedef char** CVHandle;

/* What a host needs of it. Safe on any thread; a handle belongs to one thread at a time. */

/* A new handle, its bytes undefined. Null when memory is short or the size is negative. */
CVHandle NewHandle(intptr_t size);
/* The number of its bytes; 0 for null. */
intptr_t GetHandleSize(CVHandle handle);
/* Releases it; null is ignored. */
void DisposeHandle(CVHandle handle);

/* A four-character code, first character in the high byte. */
#define CV_FOUR_CHARS(a, b, c, d)                                                                  \
  (((uint32_t)(uint8_t)(a) << 24) | ((uint32_t)(uint8_t)(b) << 16) |                               \
   ((uint32_t)(uint8_t)(c) << 8) | (uint32_t)(uint8_t)(d))

/* `hostSignature` of the one host this contract belongs to, and signature of its properties. */
#define CV_HOST_SIGNATURE CV_FOUR_CHARS('9', 'V', 'X', 'R')
/* Property: number of channels of the document, in the simple value. The planes of the colour mode
 * come first. */
#define CV_PROPERTY_NUM_CHANNELS CV_FOUR_CHARS('n', 'u', 'c', 'h')
/* Property: name of channel `index` (from 0), as the bytes of a new handle, in UTF-8 and without an
 * ending zero. The plug-in disposes of it. */
#define CV_PROPERTY_CHANNEL_NAME CV_FOUR_CHARS('n', 'm', 'c', 'h')

/* `colorMode` of an RGB image. Other modes exist; filters may refuse them. */
#define CV_MODE_GRAY 1
#define CV_MODE_RGB 3

/* `inEdgeMode`. REPLICATE: the input rectangle may reach outside the image, and the image's edge
 * pixels are repeated there. NONE: it lies inside. */
#define CV_EDGE_REPLICATE (-1)
#define CV_EDGE_NONE (-2)

/* 1.0 as a 16.16 fixed-point number: a sampling step of one pixel. */
#define CV_FIXED_ONE 0x10000

/* What a call is for. `record` is a FilterRecord, and in an about call a CVAboutRecord. */
enum {
  /* Show the about box. Sent between runs, at any time. */
  LM_SEL_ABOUT = 0,
  /* The run that begins is interactive: the plug-in asks the user before it filters. */
  LM_SEL_PARAMETERS = 1,
  /* Check the host and the image; allocate nothing large. */
  LM_SEL_PREPARE = 2,
  /* Ask for the first tile. In a run that is not interactive `savedParams` holds the settings. */
  LM_SEL_START = 3,
  /* The tile asked for is delivered: work on it and ask for the next. */
  LM_SEL_CONTINUE = 4,
  /* Release the buffers of the run. Nothing is delivered any more; every request is ignored. */
  LM_SEL_FINISH = 5
};

/* What a call answers through its result pointer. Any other value is one that a service answered,
 * or a code of the plug-in's own. */
enum {
  CV_RESULT_OK = 0,
  /* The user has cancelled, or has been told what is wrong: the host adds no message. */
  CV_RESULT_STOPPED = 1,
  CV_RESULT_NO_MEMORY = -108,
  /* The plug-in knows no such selector. */
  CV_RESULT_BAD_SELECTOR = -30100,
  /* The plug-in does not work on the image's colour mode. */
  CV_RESULT_BAD_MODE = -30101,
  /* The run is interactive, and nothing in this process can show the plug-in's dialog. */
  CV_RESULT_NO_DIALOG = -30102,
  /* A host's service is missing, or does not know what it is asked for. */
  CV_RESULT_NO_SERVICE = -30900
};

/* Handed to the plug-in instead of a FilterRecord when it is to show its about box. */
typedef struct CVAboutRecord {
  /* The window that the box belongs to, in the form that the host's dialogs know; or null. */
  void* hostWindow;
} CVAboutRecord;

/* A mask beside a CVPixelMap. */
typedef struct CVPixelMask {
  /* null */
  struct CVPixelMask* next;
  /* One byte a pixel, 255 fully inside. Owned by whoever made the mask. */
  uint8_t* maskData;
  int32_t rowBytes;
  int32_t columnBytes;
  int32_t maskDescription;
} CVPixelMask;

/* A picture that the host can draw with `showPixels`. Plane p of the pixel in row y and column x is
 * at baseAddress + (y - bounds.top) * rowBytes + (x - bounds.left) * columnBytes + p * planeBytes.
 */
typedef struct CVPixelMap {
  /* 1: `mask` is set. 0: it is to be ignored. */
  int32_t version;
  CVRect32 bounds;
  /* As FilterRecord.colorMode. */
  int32_t imageMode;
  int32_t rowBytes;
  int32_t columnBytes;
  int32_t planeBytes;
  /* Owned by whoever made the map. */
  uint8_t* baseAddress;
  /* null */
  void* matrix;
  CVPixelMask* mask;
  int16_t maskPhaseRow;
  int16_t maskPhaseColumn;
  int32_t reserved;
} CVPixelMap;

/* What `colorPicker` is asked. */
typedef struct CVColorRequest {
  /* Bytes of this record. */
  int32_t size;
  /* 0: pick a colour. */
  int16_t requestCode;
  /* 0: RGB. */
  int16_t sourceSpace;
  int16_t resultSpace;
  uint8_t gamutKnown;
  uint8_t inGamut;
  int32_t reserved1;
  int32_t reserved2;
  /* Red, green, blue and one that RGB does not use, 0 to 255 each. The colour to begin with, which
   * the host replaces with the one picked. */
  uint16_t components[4];
  int32_t reserved3;
  /* What the picker says: a length byte, then the characters. Never null. */
  const uint8_t* prompt;
} CVColorRequest;

struct FilterRecord;

/* Non-zero when the user has asked to stop. Any step but about. */
typedef uint8_t (*CVTestCancelProc)(void);

/* Shows that `done` of `total` steps are done; done may exceed the total. Start and continue. */
typedef void (*CVProgressProc)(int32_t done, int32_t total);

/* Lets the host's own windows handle an event that came while the plug-in's dialog is up. event:
 * the Toolbox's EventRecord, not null. Continue. */
typedef void (*CVProcessEventProc)(void* event);

/* A call of general use; the host may read and write *data. No selector is defined, so a host
 * ignores it. Any step but about. */
typedef void (*CVHostProc)(int16_t selector, int32_t* data);

/* Draws the part `source` of the map with its top-left at (row, column) of the current port, the
 * window or off-screen map that the plug-in last handed to the Toolbox's SetPort: its dialog, while
 * one is up. A host that shows no dialogs never gets to draw and may do nothing.
 * platformContext: null. Result: 0, or an error code. Continue. */
typedef int16_t (*CVShowPixelsProc)(const CVPixelMap* map, const CVRect32* source, int32_t row,
                                    int32_t column, void* platformContext);

/* Takes the output tile back and delivers what the record now asks for, as between two calls of
 * continue. Result: 0, or why not; the pointers of a delivery are then void. Start and continue. */
typedef int16_t (*CVNextTileProc)(void);

/* Answers a property: a number into *simpleValue, or a new handle into *handle, which the plug-in
 * then owns. signature: CV_HOST_SIGNATURE. Result: 0, CV_RESULT_NO_SERVICE for an unknown signature
 * or key, another code for a bad index. Any step but about. */
typedef int16_t (*CVQueryPropertyProc)(uint32_t signature, uint32_t key, int32_t index,
                                       int32_t* simpleValue, CVHandle* handle);

/* Lets the user pick a colour. Result: 0 picked, CV_RESULT_NO_SERVICE when there is no picker after
 * all, anything else: not picked. Continue. */
typedef int16_t (*CVColorPickerProc)(CVColorRequest* request);

/* Fields marked H are the host's, written before every call; those marked P are the plug-in's,
 * which the host leaves alone from call to call. "Or null" marks a service that may be missing.
 * Reserved fields are 0. A run begins with empty rectangles, all planes of the colour mode, steps
 * of CV_FIXED_ONE and CV_EDGE_NONE.
 *
 * Tiles. After start and after each continue the host reads three requests, checks them, for a
 * plug-in may be wrong, and fills in the pointers for the next call. A rectangle is empty when its
 * top and bottom or its left and right are equal: nothing is delivered for it, and its planes and
 * step mean nothing. Planes of a pixel are interleaved, one byte each. They are numbered from 0:
 * those of the colour mode or, with absolutePlanesWanted, all channels of the document.
 *
 * Input is the image as it was before the run, whatever the plug-in has written since. Output is
 * what the image holds now, earlier results of the run included; what the plug-in leaves there is
 * the result, taken back after the call or when the plug-in asks for another tile. Nothing outside
 * filterArea changes. The selection mask is only to be looked at: the host itself blends the result
 * through it.
 *
 * With a sampling step of s pixels a tile holds every s-th pixel of every s-th row, from the
 * top-left one on: a side of n pixels gives n / s samples, rounded up. */
typedef struct FilterRecord {
  int32_t reservedStart;
  /* H, or null. */
  CVTestCancelProc testCancel;
  /* H, or null. */
  CVProgressProc reportProgress;
  /* P: the plug-in's settings, in a form of its own, null before there are any. The plug-in makes
   * the handle, or another in its place, while a run is interactive. The host hands it from one
   * run to the next, whatever the runs answered, and disposes of it in the end. */
  CVHandle savedParams;
  int16_t reservedBeforeArea[3];
  /* H: the part of the image to filter: inside it, not empty, at most 32767 pixels along a side. A
   * plug-in that changes it during a call puts it back before it returns. */
  CVRect filterArea;
  int16_t reservedAfterArea[11];
  /* P: the input rectangle. */
  CVRect inTileRect;
  /* P: the first and the last plane of it, both included. */
  int16_t inFirstPlane;
  int16_t inLastPlane;
  /* P: the output rectangle, inside the image, and its planes. */
  CVRect outTileRect;
  int16_t outFirstPlane;
  int16_t outLastPlane;
  /* H: the first pixel of the input, and bytes from one row to the next. */
  const uint8_t* inPixels;
  int32_t inRowStride;
  /* H: the same of the output. */
  uint8_t* outPixels;
  int32_t outRowStride;
  /* H: there is a selection when this is not 0 and the next is above 0. */
  uint8_t maskUsable;
  int8_t maskPresent;
  int16_t reservedBeforeMask;
  /* P: the mask rectangle, inside the image. */
  CVRect maskTileRect;
  /* H: the selection there, one byte a pixel, 255 fully selected; null without one. */
  const uint8_t* maskPixels;
  int32_t maskRowStride;
  int32_t reservedAfterMask[2];
  /* H: CV_HOST_SIGNATURE. */
  uint32_t hostSignature;
  /* H, or null. */
  CVHostProc hostCall;
  /* H: CV_MODE_RGB and others. */
  int16_t colorMode;
  int16_t reservedAfterMode[35];
  /* H, or null. */
  CVProcessEventProc processEvent;
  /* H, or null; a plug-in with a preview may then refuse to run. */
  CVShowPixelsProc showPixels;
  /* H: handed back to the host's HostDisposeHandle; null where handles are those above. */
  void* handleServices;
  int32_t reservedBeforeTile[3];
  /* H, or null. */
  CVNextTileProc nextTile;
  /* H: 1 when the host can number planes as channels of the document. */
  uint8_t absolutePlanesSupported;
  /* P: 1 while it wants them so. */
  uint8_t absolutePlanesWanted;
  /* H, or null. */
  CVQueryPropertyProc queryProperty;
  int16_t reservedBeforeEdge;
  /* P: CV_EDGE_REPLICATE or CV_EDGE_NONE. */
  int16_t inEdgeMode;
  int32_t reservedAfterEdge[2];
  /* P: sampling steps of input and mask, 16.16 and at least CV_FIXED_ONE. Output has none. */
  int32_t inSampleStep;
  int32_t maskSampleStep;
  /* H, or null: the plug-in then uses the Toolbox's picker. */
  CVColorPickerProc colorPicker;
} FilterRecord;

/* The one symbol of a module, exported as `main`. selector: only the low 16 bits count. record: a
 * FilterRecord, or a CVAboutRecord in an about call. data: a slot as wide as a pointer, 0 at first,
 * in which the plug-in keeps something from call to call and from run to run. The host never looks
 * into it, and keeps the module loaded while it is not 0. result: never null. Always returns 0; the
 * answer is in *result. */
typedef int (*CVFilterEntry)(int selector, void* record, intptr_t* data, int16_t* result);

#if UINTPTR_MAX == 0xffffffffu
#ifdef __cplusplus
#define CV_ASSERT_OFFSET(type, field, offset)                                                      \
  static_assert(offsetof(type, field) == (offset), #type "." #field)
#define CV_ASSERT_SIZE(type, size) static_assert(sizeof(type) == (size), #type)
#else
#define CV_ASSERT_OFFSET(type, field, offset)                                                      \
  _Static_assert(offsetof(type, field) == (offset), #type "." #field)
#define CV_ASSERT_SIZE(type, size) _Static_assert(sizeof(type) == (size), #type)
#endif
CV_ASSERT_OFFSET(FilterRecord, testCancel, 4);
CV_ASSERT_OFFSET(FilterRecord, reportProgress, 8);
CV_ASSERT_OFFSET(FilterRecord, savedParams, 12);
CV_ASSERT_OFFSET(FilterRecord, filterArea, 22);
CV_ASSERT_OFFSET(FilterRecord, inTileRect, 52);
CV_ASSERT_OFFSET(FilterRecord, inFirstPlane, 60);
CV_ASSERT_OFFSET(FilterRecord, inLastPlane, 62);
CV_ASSERT_OFFSET(FilterRecord, outTileRect, 64);
CV_ASSERT_OFFSET(FilterRecord, outFirstPlane, 72);
CV_ASSERT_OFFSET(FilterRecord, outLastPlane, 74);
CV_ASSERT_OFFSET(FilterRecord, inPixels, 76);
CV_ASSERT_OFFSET(FilterRecord, inRowStride, 80);
CV_ASSERT_OFFSET(FilterRecord, outPixels, 84);
CV_ASSERT_OFFSET(FilterRecord, outRowStride, 88);
CV_ASSERT_OFFSET(FilterRecord, maskUsable, 92);
CV_ASSERT_OFFSET(FilterRecord, maskPresent, 93);
CV_ASSERT_OFFSET(FilterRecord, maskTileRect, 96);
CV_ASSERT_OFFSET(FilterRecord, maskPixels, 104);
CV_ASSERT_OFFSET(FilterRecord, maskRowStride, 108);
CV_ASSERT_OFFSET(FilterRecord, hostSignature, 120);
CV_ASSERT_OFFSET(FilterRecord, hostCall, 124);
CV_ASSERT_OFFSET(FilterRecord, colorMode, 128);
CV_ASSERT_OFFSET(FilterRecord, processEvent, 200);
CV_ASSERT_OFFSET(FilterRecord, showPixels, 204);
CV_ASSERT_OFFSET(FilterRecord, handleServices, 208);
CV_ASSERT_OFFSET(FilterRecord, nextTile, 224);
CV_ASSERT_OFFSET(FilterRecord, absolutePlanesSupported, 228);
CV_ASSERT_OFFSET(FilterRecord, absolutePlanesWanted, 229);
CV_ASSERT_OFFSET(FilterRecord, queryProperty, 232);
CV_ASSERT_OFFSET(FilterRecord, inEdgeMode, 238);
CV_ASSERT_OFFSET(FilterRecord, inSampleStep, 248);
CV_ASSERT_OFFSET(FilterRecord, maskSampleStep, 252);
CV_ASSERT_OFFSET(FilterRecord, colorPicker, 256);
CV_ASSERT_SIZE(CVPixelMap, 56);
CV_ASSERT_SIZE(CVPixelMask, 20);
CV_ASSERT_SIZE(CVColorRequest, 36);
CV_ASSERT_OFFSET(CVColorRequest, prompt, 32);
#undef CV_ASSERT_OFFSET
#undef CV_ASSERT_SIZE
#endif

#ifdef __cplusplus
}
#endif

#endif
