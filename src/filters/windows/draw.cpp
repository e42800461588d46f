#include "filters/windows/draw.h"

#include <boost/make_shared.hpp>

#include <tessarity/types/image.h>
#include <tessarity/types/region.h>
#include <tessarity/types/vector.h>

#include "filters/image_layout.h"
#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

typedef boost::shared_ptr<Data> Ptr;

struct Rgb {
    unsigned char red, green, blue;
};

// The colour of `name`, each component truncated to a byte.
Rgb bytesOf(const std::string& name) {
    const Type::Color colour = _getColorRGBComponents(name);
    return {static_cast<unsigned char>(colour.r()), static_cast<unsigned char>(colour.g()),
            static_cast<unsigned char>(colour.b())};
}

// A canvas that paints single pixels, unchecked: the callers test what they paint first.
class Canvas {
public:
    explicit Canvas(cv::Mat& pixels) : _pixels(pixels) {}
    int width() const { return _pixels.cols; }
    int height() const { return _pixels.rows; }
    bool holds(long long x, long long y) const {
        return x >= 0 && y >= 0 && x < width() && y < height();
    }
    void paint(long long x, long long y, const Rgb& colour) {
        unsigned char* pixel = _pixels.ptr<unsigned char>(static_cast<int>(y)) + 3 * x;
        pixel[0] = colour.red;
        pixel[1] = colour.green;
        pixel[2] = colour.blue;
    }

private:
    cv::Mat& _pixels;
};

// A coordinate truncated toward zero, if it fits an int (NaN does not).
bool truncated(float value, long long& result) {
    if (!(value >= -0x1p31f && value < 0x1p31f)) return false;
    result = static_cast<int>(value);
    return true;
}

// The outline of a region, its corner (x1, y1) left out: rows y0 and y1 over the columns x0 to
// x1 - 1, then columns x0 and x1 over the rows y0 to y1 - 1. False, with nothing painted, if
// any of it falls outside the picture.
bool drawRegion(Canvas& canvas, const Type::Region2& region, std::string& colourName) {
    long long x0, y0, x1, y1;
    if (!truncated(region.start.x(), x0) || !truncated(region.start.y(), y0) ||
        !truncated(region.end.x(), x1) || !truncated(region.end.y(), y1))
        return false;
    if (x0 < x1 && !(canvas.holds(x0, y0) && canvas.holds(x1 - 1, y0) && canvas.holds(x0, y1)))
        return false;
    if (y0 < y1 && !(canvas.holds(x0, y0) && canvas.holds(x1, y0) && canvas.holds(x0, y1 - 1)))
        return false;
    if (colourName.empty()) colourName = "red";
    const Rgb colour = bytesOf(colourName);
    for (long long x = x0; x < x1; ++x) {
        canvas.paint(x, y1, colour);
        canvas.paint(x, y0, colour);
    }
    for (long long y = y0; y < y1; ++y) {
        canvas.paint(x0, y, colour);
        canvas.paint(x1, y, colour);
    }
    return true;
}

// A cross through the point, from 3 before it to 3 after it, cut at the picture's edges (short
// of the last row and column), its centre white. False, with nothing painted, if the centre lies
// outside the picture.
bool drawPoint(Canvas& canvas, const Type::Vector2& point, std::string& colourName) {
    const double x = point.x(), y = point.y();
    if (!(x > -1.0 && x < canvas.width() && y > -1.0 && y < canvas.height())) return false;
    if (colourName.empty()) colourName = "black";
    const Rgb colour = bytesOf(colourName);
    const long long cx = static_cast<long long>(x), cy = static_cast<long long>(y);
    long long xa = static_cast<long long>(x - 3.0), xb = static_cast<long long>(x + 4.0);
    long long ya = static_cast<long long>(y - 3.0), yb = static_cast<long long>(y + 4.0);
    if (xa < 1) xa = 0;
    if (ya < 1) ya = 0;
    if (xb >= canvas.width()) xb = canvas.width() - 1;
    if (yb >= canvas.height()) yb = canvas.height() - 1;
    for (long long i = xa; i < xb; ++i) canvas.paint(i, cy, colour);
    for (long long i = ya; i < yb; ++i) canvas.paint(cx, i, colour);
    canvas.paint(cx, cy, Rgb{255, 255, 255});
    return true;
}

}  // namespace

Type::Color _getColorRGBComponents(const std::string& name) {
    if (name == "green") return Type::Color(0, 255, 0);
    if (name == "blue") return Type::Color(0, 0, 255);
    if (name == "black") return Type::Color(0, 0, 0);
    if (name == "white") return Type::Color(255, 255, 255);
    return Type::Color(255, 0, 0);
}

Draw::Draw() : FilterPrimitive("Draw") {
    _addInput("in");
    _addInput("data");
    _addInput("color")->setOptional(true);
    _addOutput("out");
}

std::vector<boost::shared_ptr<Data>> Draw::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.size() != 3 || !inputs[0] || !inputs[1]) return {};
    // Pixels are painted as three bytes each, in a plain matrix.
    const Type::ColorImage* source = imageOf<Type::ColorImage>(*inputs[0]);
    if (!source) return {};
    std::string colourName;
    if (inputs[2] && inputs[2]->getType() == String) colourName = std::string(*inputs[2]);

    const boost::shared_ptr<Type::ColorImage> copy = source->clone();
    Canvas canvas(copy->mat);
    // The colour name is shared by the whole array: a default set by one element stays.
    if (const std::vector<Ptr>* elements = *inputs[1]) {
        for (const Ptr& element : *elements) {
            if (!element) continue;
            const Type::Region2* region = *element;
            const Type::Vector2* point = *element;
            if (region && !drawRegion(canvas, *region, colourName)) return {};
            if (point && !drawPoint(canvas, *point, colourName)) return {};
        }
    }
    return {boost::make_shared<Data>(copy)};
}

}  // namespace Filters
}  // namespace Tessarity
