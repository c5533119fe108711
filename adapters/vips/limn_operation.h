// Makes the operation "limn" known to libvips.
#pragma once

namespace limn {

// Call it once libvips has been started. `vips limn` without arguments describes the operation.
void RegisterOperation();

} // namespace limn
