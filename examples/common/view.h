// What a tile shows of a picture.
#ifndef ONDRIX_EXAMPLES_VIEW_H
#define ONDRIX_EXAMPLES_VIEW_H

#include "common/picture.h"

#include <vector>

namespace demo
{

// Pictures larger than the tile: a part at most twice reduced, so that small filters show, and a detail of it
// enlarged in a corner. Smaller ones: the whole, enlarged as far as it fits. The same part for all pictures of one
// size, so that they compare.
class View
{
public:
    // Without a detail (an empty rectangle) nothing is enlarged in the corner.
    View(int pictureWidth, int pictureHeight, const Rectangle& detail, int tileWidth, int tileHeight);

    // With a mark at each of these pixels of the picture.
    Picture of(const Picture& picture, const std::vector<Point>& marks = {}) const;

private:
    void placeInset(const Rectangle& shownDetail, int width, int height);
    void drawMark(Picture& view, Point mark) const;
    Picture insetOf(const Picture& picture, const std::vector<Point>& marks) const;

    Rectangle part_, detail_;
    int reduction_ = 1, enlargement_ = 1;
    Rectangle inset_{0, 0, 0, 0};
};

} // namespace demo

#endif
