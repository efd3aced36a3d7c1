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

Picture View::of(const Picture& picture) const
{
    Picture view = enlargement_ > 1 ? enlarged(picture, part_, enlargement_) : reduced(picture, part_, reduction_);
    if (inset_.width > 0) {
        place(view, inset_.x, inset_.y, enlarged(picture, detail_, kZoom));
        frame(view, inset_.grown(2), 2, colours::kMarker);
    }
    return view;
}

} // namespace demo
