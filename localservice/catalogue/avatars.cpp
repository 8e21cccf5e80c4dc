#include "localservice/catalogue/avatars.h"

#include "localservice/catalogue/picture.h"

#include <algorithm>
#include <array>
#include <map>

namespace localservice {

namespace {

struct Colour
{
    int red;
    int green;
    int blue;
};

/// An ellipse within the unit square, of which only what is above @c bottom is drawn.
struct Ellipse
{
    float x;
    float y;
    float width; // from the centre, likewise the height
    float height;
    Colour colour;
    float bottom = 1;
};

constexpr int size = 160; // points
constexpr int fineness = 4;
constexpr Ellipse disc{0.5F, 0.5F, 0.49F, 0.49F, {}};

constexpr Colour paleSkin{244, 208, 177};
constexpr Colour warmSkin{224, 172, 132};
constexpr Colour darkSkin{156, 102, 68};
constexpr Colour black{43, 38, 42};
constexpr Colour brown{97, 61, 38};
constexpr Colour fair{219, 170, 84};
constexpr Colour red{168, 74, 43};

// What is later lies on top.
using Drawing = std::vector<Ellipse>;

Drawing shoulders(Colour background, Colour clothes)
{
    return {{0.5F, 0.5F, 1, 1, background}, {0.5F, 1.0F, 0.36F, 0.28F, clothes}};
}

void addFace(Drawing &drawing, Colour skin)
{
    const Colour mouth{166, 72, 72};
    drawing.push_back({0.5F, 0.70F, 0.08F, 0.12F, skin}); // the neck
    drawing.push_back({0.5F, 0.47F, 0.19F, 0.23F, skin});
    drawing.push_back({0.43F, 0.48F, 0.022F, 0.028F, black});
    drawing.push_back({0.57F, 0.48F, 0.022F, 0.028F, black});
    drawing.push_back({0.5F, 0.585F, 0.06F, 0.03F, mouth});
    drawing.push_back({0.5F, 0.57F, 0.07F, 0.026F, skin}); // leaves a smile of it
}

void addFringe(Drawing &drawing, Colour hair, float bottom)
{
    drawing.push_back({0.5F, 0.43F, 0.21F, 0.23F, hair, bottom});
}

Drawing longHaired(Colour background, Colour clothes, Colour hair, Colour skin)
{
    Drawing drawing = shoulders(background, clothes);
    drawing.push_back({0.5F, 0.52F, 0.27F, 0.34F, hair, 0.78F});
    addFace(drawing, skin);
    addFringe(drawing, hair, 0.35F);
    return drawing;
}

Drawing shortHaired(Colour background, Colour clothes, Colour hair, Colour skin)
{
    Drawing drawing = shoulders(background, clothes);
    addFace(drawing, skin);
    addFringe(drawing, hair, 0.34F);
    return drawing;
}

Drawing withBunches(Colour background, Colour clothes, Colour hair, Colour skin)
{
    Drawing drawing = shoulders(background, clothes);
    drawing.push_back({0.25F, 0.36F, 0.1F, 0.1F, hair});
    drawing.push_back({0.75F, 0.36F, 0.1F, 0.1F, hair});
    addFace(drawing, skin);
    addFringe(drawing, hair, 0.37F);
    return drawing;
}

Drawing withTuft(Colour background, Colour clothes, Colour hair, Colour skin)
{
    Drawing drawing = shoulders(background, clothes);
    drawing.push_back({0.5F, 0.24F, 0.05F, 0.1F, hair});
    addFace(drawing, skin);
    addFringe(drawing, hair, 0.31F);
    return drawing;
}

const std::map<std::string, Drawing> &drawings()
{
    static const std::map<std::string, Drawing> all{
        {"%E5%A5%B301.png", longHaired({250, 218, 221}, {176, 65, 98}, brown, paleSkin)},
        {"%E5%A5%B302.png", longHaired({214, 234, 223}, {38, 110, 89}, black, darkSkin)},
        {"avatar_girl.png", withBunches({255, 236, 190}, {222, 115, 66}, red, paleSkin)},
        {"%E7%94%B701.png", shortHaired({207, 224, 244}, {42, 82, 142}, black, warmSkin)},
        {"%E7%94%B702.png", shortHaired({226, 221, 242}, {92, 75, 140}, fair, paleSkin)},
        {"avatar_children.png", withTuft({208, 240, 244}, {32, 132, 148}, brown, warmSkin)},
    };
    return all;
}

bool contains(const Ellipse &ellipse, float x, float y)
{
    const float across = (x - ellipse.x) / ellipse.width;
    const float down = (y - ellipse.y) / ellipse.height;
    return across * across + down * down <= 1 && y <= ellipse.bottom;
}

Colour colourAt(const Drawing &drawing, float x, float y)
{
    return std::find_if(drawing.rbegin(), drawing.rend() - 1,
                        [&](const Ellipse &ellipse) { return contains(ellipse, x, y); })
        ->colour;
}

// The mean of several places within the point makes edges smooth.
std::array<std::uint8_t, 4> pointAt(const Drawing &drawing, int column, int row)
{
    const auto place = [](int point, int part) {
        return (static_cast<float>(point) + (static_cast<float>(part) + 0.5F) / fineness) / size;
    };
    std::array<int, 3> sum{};
    int inside = 0;
    for (int part = 0; part < fineness * fineness; ++part) {
        const float x = place(column, part % fineness);
        const float y = place(row, part / fineness);
        if (!contains(disc, x, y))
            continue;
        const Colour colour = colourAt(drawing, x, y);
        sum[0] += colour.red;
        sum[1] += colour.green;
        sum[2] += colour.blue;
        ++inside;
    }
    const auto mean = [](int total, int count) {
        return static_cast<std::uint8_t>(count == 0 ? 0 : total / count);
    };
    return {mean(sum[0], inside), mean(sum[1], inside), mean(sum[2], inside),
            mean(255 * inside, fineness * fineness)};
}

} // namespace

const std::vector<std::string> &avatarNames()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const auto &entry : drawings())
            all.push_back(entry.first);
        return all;
    }();
    return names;
}

std::string drawAvatar(const std::string &name)
{
    const Drawing &drawing = drawings().at(name);
    Picture picture{size, size, {}};
    for (int row = 0; row < size; ++row) {
        for (int column = 0; column < size; ++column) {
            const auto point = pointAt(drawing, column, row);
            picture.points.insert(picture.points.end(), point.begin(), point.end());
        }
    }
    return encodePng(picture);
}

} // namespace localservice
