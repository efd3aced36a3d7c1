// Drawing on a picture: rectangles, pictures, text.
#ifndef ONDRIX_EXAMPLES_CANVAS_H
#define ONDRIX_EXAMPLES_CANVAS_H

#include "common/picture.h"

#include <string>
#include <vector>

namespace demo
{

// Text comes in two sizes: the number of pixels that one pixel of the font becomes.
enum class TextSize { small = 2, large = 4 };

int textWidth(const std::string& text, TextSize size);

// The text in lines of at most `letters` letters, broken at blanks where there are any, else before capitals.
std::vector<std::string> wrapped(const std::string& text, size_t letters);

void fill(Picture& picture, const Rectangle& area, Rgb colour);
// A frame of this thickness around the area, inside it.
void frame(Picture& picture, const Rectangle& area, int thickness, Rgb colour);
void place(Picture& picture, int left, int top, const Picture& other);
// Text whose top left corner is at x, y. What lies beyond the picture is not drawn.
void write(Picture& picture, int x, int y, TextSize size, Rgb colour, const std::string& text);
void writeRight(Picture& picture, int right, int y, TextSize size, Rgb colour, const std::string& text);
// A tick, or a cross, as high as a small letter.
void drawTick(Picture& picture, int x, int y, Rgb colour);
void drawCross(Picture& picture, int x, int y, Rgb colour);

} // namespace demo

#endif
