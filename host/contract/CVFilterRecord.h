/* The contract between the image editor Corvaline and a filter plug-in.
 *
 * A plug-in is a loadable module that exports one symbol, `main`, of type CVFilterEntry. The host
 * calls it once per step of a run, on one thread, and hands every call of a run the same
 * FilterRecord. Image data stays the host's: the plug-in writes into the record which rectangle it
 * wants next, returns, and finds that rectangle delivered at the next call.
 *
 * The layout was fixed on 32-bit machines with natural alignment; there the offsets and sizes below
 * are asserted. Where pointers are wider the fields keep their order and names.
 *
 * This header stands alone, and is C as well as C++.
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

/* A relocatable block of the Memory Manager: a pointer to its master pointer. */
typedef char** CVHandle;

/* A four-character code, first character in the high byte. */
#define CV_FOUR_CHARS(a, b, c, d)                                                                  \
  (((uint32_t)(uint8_t)(a) << 24) | ((uint32_t)(uint8_t)(b) << 16) |                               \
   ((uint32_t)(uint8_t)(c) << 8) | (uint32_t)(uint8_t)(d))

/* `hostSignature` of the one host this contract belongs to, and signature of its properties. */
#define CV_HOST_SIGNATURE CV_FOUR_CHARS('9', 'V', 'X', 'R')
/* Property: number of channels of the document, in the simple value. */
#define CV_PROPERTY_NUM_CHANNELS CV_FOUR_CHARS('n', 'u', 'c', 'h')
/* Property: name of channel `index` (from 0), as the bytes of a handle that the caller disposes of.
 */
#define CV_PROPERTY_CHANNEL_NAME CV_FOUR_CHARS('n', 'm', 'c', 'h')

/* `colorMode` of an RGB image. Other modes exist; filters may refuse them. */
#define CV_MODE_GRAY 1
#define CV_MODE_RGB 3

/* `inEdgeMode`: repeat the image's edge pixels into the part of a requested input rectangle that
 * lies outside the image, or: the rectangle lies inside, no margin is wanted. */
#define CV_EDGE_REPLICATE (-1)
#define CV_EDGE_NONE (-2)

/* 1.0 as a 16.16 fixed-point number: a sampling step of one pixel. */
#define CV_FIXED_ONE 0x10000

/* What a call is for. */
enum {
  LM_SEL_ABOUT = 0,      /* show the about box; `record` is a CVAboutRecord */
  LM_SEL_PARAMETERS = 1, /* the run that follows is interactive */
  LM_SEL_PREPARE = 2,    /* check what the host offers; allocate nothing large */
  LM_SEL_START = 3,      /* request the first rectangles */
  LM_SEL_CONTINUE = 4,   /* the requested rectangles are delivered; again until both are empty */
  LM_SEL_FINISH = 5      /* release the buffers of the run */
};

/* What a call answers through its result pointer. Any other value is a code of some service. */
enum {
  CV_RESULT_OK = 0,
  CV_RESULT_STOPPED = 1, /* the user was told, or cancelled: the host adds no message */
  CV_RESULT_NO_MEMORY = -108,
  CV_RESULT_BAD_SELECTOR = -30100,
  CV_RESULT_BAD_MODE = -30101,  /* the image's colour mode is not supported */
  CV_RESULT_NO_SERVICE = -30900 /* a host service is not there, or does not do this */
};

/* Handed to the plug-in instead of the FilterRecord with LM_SEL_ABOUT.
 * hostWindow: whatever the host's ShowAbout needs to place the box, or null. */
typedef struct CVAboutRecord {
  void* hostWindow;
} CVAboutRecord;

/* A mask beside a CVPixelMap: `maskData` holds one byte per pixel, 255 fully inside. */
typedef struct CVPixelMask {
  struct CVPixelMask* next;
  uint8_t* maskData;
  int32_t rowBytes;
  int32_t columnBytes;
  int32_t maskDescription;
} CVPixelMask;

/* A picture that the host can draw with `showPixels`. Pixel (row, column), plane p is at
 * baseAddress + row * rowBytes + column * columnBytes + p * planeBytes, rows counted from
 * bounds.top. version 1 says that `mask` is set, 0 that it is to be ignored. */
typedef struct CVPixelMap {
  int32_t version;
  CVRect32 bounds;
  int32_t imageMode; /* as FilterRecord.colorMode */
  int32_t rowBytes;
  int32_t columnBytes;
  int32_t planeBytes;
  uint8_t* baseAddress; /* owned by whoever made the map */
  void* matrix;         /* null */
  CVPixelMask* mask;
  int16_t maskPhaseRow;
  int16_t maskPhaseColumn;
  int32_t reserved;
} CVPixelMap;

/* What `colorPicker` is asked. Components are 8-bit values in 16-bit words: red, green, blue, and a
 * fourth that RGB does not use. The host overwrites them with the colour picked. */
typedef struct CVColorRequest {
  int32_t size;        /* of this record */
  int16_t requestCode; /* 0: pick a colour */
  int16_t sourceSpace; /* 0: RGB */
  int16_t resultSpace; /* 0: RGB */
  uint8_t gamutKnown;
  uint8_t inGamut;
  int32_t reserved1;
  int32_t reserved2;
  uint16_t components[4];
  int32_t reserved3;
  const uint8_t* prompt; /* length byte, then the characters; never null */
} CVColorRequest;

struct FilterRecord;

/* Non-zero when the user has asked to stop. May be called at any time during a call. */
typedef uint8_t (*CVTestCancelProc)(void);
/* Shows `done` of `total` steps. total may be smaller than done: show a full bar then. */
typedef void (*CVProgressProc)(int32_t done, int32_t total);
/* Gives the host's windows a chance to handle an event while a plug-in's dialog is up.
 * event: the Toolbox's EventRecord, not null. */
typedef void (*CVProcessEventProc)(void* event);
/* Host call of general use; data may be read and written by the host. */
typedef void (*CVHostProc)(int16_t selector, int32_t* data);
/* Draws `source` of the map with its top-left at (row, column) of the current port.
 * platformContext: null. Result: 0, or an error code. */
typedef int16_t (*CVShowPixelsProc)(const CVPixelMap* map, const CVRect32* source, int32_t row,
                                    int32_t column, void* platformContext);
/* Delivers the rectangles now in the record at once, inside the current call. Result: 0, or why
 * not; after an error the delivered pointers must not be used. */
typedef int16_t (*CVNextTileProc)(void);
/* Answers a property: a number into *simpleValue, or a block into *handle, which the caller then
 * owns. Result: 0, CV_RESULT_NO_SERVICE for an unknown key, another code for a bad index. */
typedef int16_t (*CVQueryPropertyProc)(uint32_t signature, uint32_t key, int32_t index,
                                       int32_t* simpleValue, CVHandle* handle);
/* Lets the user pick a colour. Result: 0 picked, CV_RESULT_NO_SERVICE when the host has no picker,
 * anything else: not picked. */
typedef int16_t (*CVColorPickerProc)(CVColorRequest* request);

/* The host's record. The third column says who writes a field: H the host, before the call;
 * P the plug-in, to ask for something at the next delivery. Reserved fields belong to the host.
 *
 * Planes of a pixel are interleaved, one byte each. With absolutePlanesWanted 0 plane numbers count
 * the planes of the colour mode; with 1 they name any channel of the document, from 0.
 */
typedef struct FilterRecord {
  int32_t reservedStart;
  CVTestCancelProc testCancel;   /* H */
  CVProgressProc reportProgress; /* H */
  CVHandle savedParams;          /* P: the plug-in's parameter block; made by the plug-in, kept by
                                    the host between runs, null until it exists */
  int16_t reservedBeforeArea[3];
  CVRect filterArea; /* H: part of the image to filter. A plug-in that changes it
                        during a call puts it back before it returns */
  int16_t reservedAfterArea[11];
  CVRect inTileRect;       /* P: input rectangle; may reach outside the image only with
                              inEdgeMode CV_EDGE_REPLICATE */
  int16_t inFirstPlane;    /* P: first and last plane wanted, from 0, both included */
  int16_t inLastPlane;     /* P */
  CVRect outTileRect;      /* P: output rectangle, inside the image */
  int16_t outFirstPlane;   /* P */
  int16_t outLastPlane;    /* P */
  const uint8_t* inPixels; /* H: first pixel of the delivered input rectangle */
  int32_t inRowStride;     /* H: bytes from one row to the next */
  uint8_t* outPixels;      /* H: first pixel of the output rectangle, holding the image's
                              present content; what the plug-in leaves there is the result */
  int32_t outRowStride;    /* H */
  uint8_t maskUsable;      /* H: the mask is to be read only when this is not 0 ... */
  int8_t maskPresent;      /* H: ... and this is above 0 */
  int16_t reservedBeforeMask;
  CVRect maskTileRect;       /* P: mask rectangle, inside the image, or empty */
  const uint8_t* maskPixels; /* H: selection mask, one byte a pixel, 255 fully selected */
  int32_t maskRowStride;     /* H */
  int32_t reservedAfterMask[2];
  uint32_t hostSignature; /* H: CV_HOST_SIGNATURE */
  CVHostProc hostCall;    /* H */
  int16_t colorMode;      /* H: CV_MODE_RGB and others */
  int16_t reservedAfterMode[35];
  CVProcessEventProc processEvent; /* H: for the plug-in's dialogs; may be null */
  CVShowPixelsProc showPixels;     /* H: may be null */
  void* handleServices;            /* H: passed to HostDisposeHandle */
  int32_t reservedBeforeTile[3];
  CVNextTileProc nextTile;           /* H: may be null */
  uint8_t absolutePlanesSupported;   /* H */
  uint8_t absolutePlanesWanted;      /* P */
  CVQueryPropertyProc queryProperty; /* H: may be null */
  int16_t reservedBeforeEdge;
  int16_t inEdgeMode; /* P: CV_EDGE_REPLICATE or CV_EDGE_NONE */
  int32_t reservedAfterEdge[2];
  int32_t inSampleStep;          /* P: 16.16, CV_FIXED_ONE for every pixel */
  int32_t maskSampleStep;        /* P: 16.16, equal to inSampleStep */
  CVColorPickerProc colorPicker; /* H: may be null */
} FilterRecord;

/* The one symbol of a module, exported as `main`. selector: only the low 16 bits count.
 * record: FilterRecord, or CVAboutRecord with LM_SEL_ABOUT. data: a slot as wide as a pointer that
 * the host keeps for the plug-in between calls and runs, 0 at first. result: never null. Always
 * returns 0; the answer is in *result. */
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
