// A light as the user edits it on the preview.
#pragma once

#include "LM_export.h"
#include "LM_light_figure.h"
#include "LM_types.h"
#include "LM_vectori2.h"

class LM_globals;
struct GrafPort;
struct MacRegion;
struct PixPat;

// Rectangle with 32-bit sides, in pixels of the preview.
using VRect = CVRect32;

// Sixteen of them live in LM_globals. Lengths are preview pixels; every change of a field is
// followed by InvalidateCaches.
class LM_light_UI {
public:
  int32_t type;       // LM_light_type; other codes light nothing
  LM_vectori2 center; // relative to the preview's origin
  LM_vectori2 anchor; // the preview's origin in the dialog: the light is drawn at center + anchor
  LM_vectori2
      handle1; // from center; directional: the direction; spot: first axis, which carries the aim
  LM_vectori2 handle2; // from center; spot: second axis, kept perpendicular to the first
  int16_t radius;      // omni
  LM_color48 color;
  int16_t intensity;        // slider value minus 127, negative for dark light
  int16_t spread;           // spot: focus, slider value
  LM_bool on;               // only lights with exactly 1 here are converted
  LM_globals* globals;      // owner, or null
  LM_color96* diffuseCache; // one sum per sample of the preview, owned, or null
  LM_bool diffuseCacheHot;
  LM_color96* specularCache;
  LM_bool specularCacheHot;

  // The same light without its place in the dialog and its caches.
  LM_EXPORT LM_light_figure Figure() const;
  // Fills *out. scale: preview pixels per shading unit. forPreview 1 builds the short falloff
  // table.
  void ConvertToRealLight(LM_light* out, unsigned short scale, LM_bool forPreview) const;
  // Its steps for a spot alone.
  void _ConvertSpotLight(LM_light* out, float scale, LM_bool forPreview) const;
  void _BuildSpreadTable(LM_light* out, LM_bool forPreview) const;
  // After an edit of a spot: makes the second axis perpendicular to the first and no longer than
  // it.
  LM_EXPORT void Validate();

  // Allocates the caches that are not there, for a light that is on; what cannot be had stays
  // absent.
  void AllocateCaches(unsigned long samples);
  // Forgets the caches without releasing them: for a copy that must not share them.
  void DetachCaches();
  LM_EXPORT void FreeCaches();
  // Makes both caches, and the owner's sums, cold.
  LM_EXPORT void InvalidateCaches();
  LM_bool UseDiffuseCache() const { return diffuseCache != nullptr; }
  LM_color96* DiffuseCache() const { return diffuseCache; }
  LM_bool DiffuseCacheHot() const { return diffuseCacheHot; }
  void DiffuseCacheHot(LM_bool hot); // a missing cache keeps its flag
  LM_bool UseSpecularCache() const { return specularCache != nullptr; }
  LM_color96* SpecularCache() const { return specularCache; }
  LM_bool SpecularCacheHot() const { return specularCacheHot; }
  void SpecularCacheHot(LM_bool hot);

  // Drawing, hit testing and dragging on the dialog's preview: defined with the user interface.
  void DrawActive(LM_globals* owner, LM_bool withGrabHandles);
  void DrawInactive();
  short HitTest(Point point, LM_bool active);
  void MoveUI(GrafPort* dialog, LM_globals* owner);
  void DragGrabHandle(GrafPort* dialog, LM_globals* owner, short handleCode);

  // Steps of the above, open to tests.
  void _DrawXORActive(LM_bool withCenter, LM_bool withGrabHandles, LM_globals* owner);
  void _CalcBounds(VRect& bounds, LM_globals* owner);
  void _SetNewPosition(short h, short v, LM_globals* owner, LM_bool erase);
  void _SetNewHandlePosition(short h, short v, LM_globals* owner, Rect& preview, short handleCode,
                             LM_vectori2& startHandle1, LM_vectori2& startHandle2,
                             LM_bool keepDirection, LM_bool keepLength);

private:
  void _DrawDirectional(LM_bool withGrabHandles);
  void _DrawOmni(LM_bool withGrabHandles);
  void _DrawSpot(LM_globals* owner);
  void _DrawXORDirectional(LM_bool withGrabHandles);
  void _DrawXOROmni(LM_bool withCenter, LM_bool withGrabHandles);
  void _DrawXORSpot(LM_bool withCenter, LM_bool withGrabHandles, LM_globals* owner);
  void _DrawHandles(LM_bool withGrabHandles);
  void _DrawXORHandles(LM_bool withCenter, LM_bool withGrabHandles);
  void _DrawCenterHandle(PixPat** pattern);
  void _DrawGrabHandle(short x, short y, PixPat** pattern);
  void _DrawXORCenterHandle(PixPat** pattern);
  void _DrawXORGrabHandle(short x, short y, PixPat** pattern);
  void _DrawEllipse(PixPat** pattern, short mode, LM_globals* owner);
  short _HitTestDirectionalGrabHandles(Point point, MacRegion** scratch);
  short _HitTestOmniGrabHandles(Point point, MacRegion** scratch);
  short _HitTestSpotGrabHandles(Point point, MacRegion** scratch);
};
