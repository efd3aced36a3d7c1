// Pictures in files.
#ifndef ONDRIX_EXAMPLES_PICTURE_FILE_H
#define ONDRIX_EXAMPLES_PICTURE_FILE_H

#include "common/picture.h"

#include <string>

namespace demo
{

// Reads a PNG, JPEG or PNM file. On failure the picture is empty and `error` says why.
Picture loadPicture(const std::string& path, std::string& error);

// Writes a PNG file. Returns whether that worked; `error` says why not.
bool savePng(const Picture& picture, const std::string& path, std::string& error);

} // namespace demo

#endif
