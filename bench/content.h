// Pictures for the operations whose speed depends on what they see.
#ifndef ODX_BENCH_CONTENT_H
#define ODX_BENCH_CONTENT_H

#include "operations/draw.h"

#include <string>
#include <vector>

namespace odx::bench
{

// A textured scene: shapes with edges and corners, soft gradients, fine grain.
std::vector<uint8_t> scene(test::Extent extent);

// A PNG, JPEG or PNM file in grey, repeated or cut to the extent; empty when it cannot be read.
std::vector<uint8_t> pictureFile(const std::string& path, test::Extent extent);

} // namespace odx::bench

#endif
