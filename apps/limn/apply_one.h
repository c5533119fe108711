// Lighting one photograph from file to file.
#pragma once

#include "apply.h"
#include "atomic_file.h"
#include "image_list.h"
#include "lighting.h"
#include "recipe.h"
#include "worker_pool.h"

#include <optional>
#include <string>

namespace limn {

// All that a process needs for any image of the batch.
struct ApplyPlan {
  ApplyOptions options;
  std::vector<LM_style> styles;          // by the pairs' numbers, one at least
  std::vector<LM_height_source> reliefs; // of each, resolved
  std::vector<std::string> labels;       // what to call each
  std::optional<limn_area> area;
  std::vector<ImagePair> pairs;
  std::vector<UnlistedName> failures; // told for the whole batch
  int threads = 1;                    // of libvips, in each process
};

// What is read once in each process, before its first image.
struct ApplyTools {
  std::optional<CVPlugin> plugin; // none: the lighting is done here
  Surroundings surroundings;
  Recipe recipe;                    // what all images have in common, where recipes are written
  std::vector<std::string> notices; // of what was read
};

// Starts the image library too. Throws Failure.
ApplyTools PrepareTools(const ApplyPlan& plan);

// Throws Failure; then the output is as it was.
JobDone ApplyOne(const ApplyPlan& plan, ApplyTools& tools, const ImagePair& pair,
                 const JobChannel& channel);

} // namespace limn
