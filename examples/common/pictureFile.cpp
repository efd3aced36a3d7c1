#include "common/pictureFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/stat.h>

#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_PNM
#include <stb_image.h>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb_image_write.h>

namespace demo
{

namespace
{

using File = std::unique_ptr<FILE, int (*)(FILE*)>;

void appendToFile(void* file, void* bytes, int count)
{
    fwrite(bytes, 1, static_cast<size_t>(count), static_cast<FILE*>(file));
}

// A PGM or PPM file without all of its pixels, which the reader lets pass.
bool endsEarly(FILE* file, long long fileBytes, long long pixelBytes)
{
    constexpr int kShortestHeader = 9; // "P6 1 1 1 "
    rewind(file);
    return fgetc(file) == 'P' && fileBytes < kShortestHeader + pixelBytes;
}

} // namespace

Picture loadPicture(const std::string& path, std::string& error)
{
    const File file(fopen(path.c_str(), "rb"), fclose);
    struct stat status;
    if (!file || fstat(fileno(file.get()), &status) != 0) {
        error = "cannot read " + path + ": " + strerror(errno);
        return {};
    }
    if (S_ISDIR(status.st_mode)) {
        error = "cannot read " + path + ": it is a folder";
        return {};
    }
    int width = 0, height = 0, channels = 0;
    const std::unique_ptr<stbi_uc, void (*)(void*)> pixels(
        stbi_load_from_file(file.get(), &width, &height, &channels, 3), stbi_image_free);
    if (!pixels) {
        error = path + " is not a picture that can be read (" + stbi_failure_reason() +
                "): PNG, JPEG, and binary PGM and PPM can";
        return {};
    }
    if (endsEarly(file.get(), status.st_size, static_cast<long long>(width) * height * channels)) {
        error = path + " ends before its last pixel";
        return {};
    }
    Picture picture(width, height);
    const stbi_uc* from = pixels.get();
    Rgb* const to = picture.data();
    const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
    for (size_t i = 0; i < count; ++i, from += 3)
        to[i] = {from[0], from[1], from[2]};
    return picture;
}

bool savePng(const Picture& picture, const std::string& path, std::string& error)
{
    FILE* const file = fopen(path.c_str(), "wb");
    bool written = false;
    if (file != nullptr) {
        written = stbi_write_png_to_func(appendToFile, file, picture.width(), picture.height(), 3, picture.data(),
                                         picture.width() * 3) != 0 &&
                  ferror(file) == 0;
        written = fclose(file) == 0 && written;
    }
    if (!written) error = "cannot write " + path + ": " + strerror(errno);
    return written;
}

} // namespace demo
