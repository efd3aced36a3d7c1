#include "common/view.h"

#include "common/canvas.h"
#include "common/sheet.h"

#include <algorithm>

namespace demo
{

namespace
{
constexpr int kZoom = 4, kInsetMargin = 8;
}

View::View(int pictureWidth, int pictureHeight, const Rectangle& detail, int tileWidth, int tileHeight)
    : part_{0, 0, pictureWidth, pictureHeight}, detail_(detail)
{
    if (pictureWidth <= tileWidth && pictureHeight <= tileHeight) {
        enlargement_ = std::min(tileWidth / pictureWidth, tileHeight / pictureHeight);
        return;
    }
    reduction_ = std::clamp(std::min(pictureWidth / tileWidth, pictureHeight / tileHeight) / 2, 1, 2);
    part_ = windowAbout(detail.x + detail.width / 2, detail.y + detail.height / 2, tileWidth * reduction_,
                        tileHeight * reduction_, pictureWidth, pictureHeight);
    const Rectangle shown{(detail.x - part_.x) / reduction_, (detail.y - part_.y) / reduction_,
                          detail.width / reduction_, detail.height / reduction_};
    placeInset(shown, part_.width / reduction_, part_.height / reduction_);
}

// Into a corner that leaves the detail itself in sight, if there is one.
void View::placeInset(const Rectangle& shownDetail, int width, int height)
{
    const int insetWidth = detail_.width * kZoom, insetHeight = detail_.height * kZoom;
    const int right = width - insetWidth - kInsetMargin, bottom = height - insetHeight - kInsetMargin;
    if (insetWidth * 2 > width || insetHeight * 2 > height || insetWidth == 0) return;
    for (const Rectangle& corner : {Rectangle{right, bottom, insetWidth, insetHeight},
                                    Rectangle{kInsetMargin, bottom, insetWidth, insetHeight},
                                    Rectangle{right, kInsetMargin, insetWidth, insetHeight},
                                    Rectangle{kInsetMargin, kInsetMargin, insetWidth, insetHeight}}) {
        if (!corner.grown(kInsetMargin).meets(shownDetail)) {
            inset_ = corner;
            return;
        }
    }
}

// Enlarged pixels are framed, others get a dot that is larger than they are.
void View::drawMark(Picture& view, Point mark) const
{
    const int x = (mark.x - part_.x) * enlargement_ / reduction_,
              y = (mark.y - part_.y) * enlargement_ / reduction_;
    if (enlargement_ >= kZoom) {
        frame(view, {x, y, enlargement_, enlargement_}, enlargement_ / kZoom, colours::kMark);
    } else {
        fill(view, {x - 1, y - 1, 3, 3}, colours::kMark);
    }
}

Picture View::insetOf(const Picture& picture, const std::vector<Point>& marks) const
{
    Picture inset = enlarged(picture, detail_, kZoom);
    for (const Point& mark : marks)
        if (detail_.holds(mark))
            fill(inset, {(mark.x - detail_.x) * kZoom, (mark.y - detail_.y) * kZoom, kZoom, kZoom},
                 colours::kMark);
    return inset;
}

Picture View::of(const Picture& picture, const std::vector<Point>& marks) const
{
    Picture view = enlargement_ > 1 ? enlarged(picture, part_, enlargement_) : reduced(picture, part_, reduction_);
    for (const Point& mark : marks)
        if (part_.holds(mark)) drawMark(view, mark);
    if (inset_.width > 0) {
        place(view, inset_.x, inset_.y, insetOf(picture, marks));
        frame(view, inset_.grown(2), 2, colours::kMarker);
    }
    return view;
}

} // namespace demo
