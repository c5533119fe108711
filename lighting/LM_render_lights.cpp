// The block's lights as the kernels read them.
#include "LM_kernel_lights.h"
#include "LM_light_shader.h"
#include "LM_light_sums.h"
#include "LM_render_rows.h"

namespace {

void AddLights(LM_kernel_lights& lights, const foo& params, int32_t type, bool flat, int& count) {
  for (int i = 0; i < LM_LightCount(&params); ++i) {
    const LM_light& light = params.lights[i];
    // A light at or below a flat surface adds nothing to it.
    if (light.type != type || (flat && !(light.position.z > 0.0F)))
      continue;
    lights.light[lights.Count()] = LM_KernelLight(light);
    ++count;
  }
}

void StartWithAmbient(LM_kernel_lights& lights, const foo& params) {
  lights.omnis = lights.spots = lights.directionals = 0;
  for (int plane = 0; plane < LM_PLANES; ++plane) {
    lights.diffuse[plane] = params.ambient.component[plane];
    lights.specular[plane] = 0;
  }
}

// On a flat surface a directional light is the same for all samples.
void AddEvenLight(LM_kernel_lights& lights, const LM_light& light) {
  const LM_vector2f anywhere = {};
  LM_color96 diffuse = {};
  LM_color96 specular = {};
  LM_ShadeLight(light, 1, &anywhere, &diffuse, &specular);
  for (int plane = 0; plane < LM_PLANES; ++plane) {
    lights.diffuse[plane] = LM_WrapAdd(lights.diffuse[plane], diffuse.component[plane]);
    lights.specular[plane] = LM_WrapAdd(lights.specular[plane], specular.component[plane]);
  }
}

} // namespace

void LM_PrepareLights(LM_render_job& job) {
  const foo& params = job.params;
  StartWithAmbient(job.flatLights, params);
  AddLights(job.flatLights, params, LM_LIGHT_OMNI, true, job.flatLights.omnis);
  AddLights(job.flatLights, params, LM_LIGHT_SPOT, true, job.flatLights.spots);
  for (int i = 0; i < LM_LightCount(&params); ++i) {
    if (params.lights[i].type == LM_LIGHT_DIRECTIONAL)
      AddEvenLight(job.flatLights, params.lights[i]);
  }
  StartWithAmbient(job.reliefLights, params);
  AddLights(job.reliefLights, params, LM_LIGHT_OMNI, false, job.reliefLights.omnis);
  AddLights(job.reliefLights, params, LM_LIGHT_SPOT, false, job.reliefLights.spots);
  AddLights(job.reliefLights, params, LM_LIGHT_DIRECTIONAL, false, job.reliefLights.directionals);
}

bool LM_RowLights(const LM_render_job& job, const LM_kernel_lights& lights, int32_t y,
                  LM_kernel_lights& row) {
  const float place = LM_sample_grid(job.area, job.area, &job.params).Y(y - job.area.top);
  const int local = lights.omnis + lights.spots;
  row = lights;
  for (int i = 0; i < lights.Count(); ++i) {
    if (i >= local) {
      if (!LM_DirectionFitsVectors(row.light[i]))
        return false;
    } else if (!LM_MoveToRow(row.light[i], place, job.columns[0],
                             job.columns[static_cast<size_t>(job.AreaWidth() - 1)])) {
      return false;
    }
  }
  return true;
}
