#include "localservice/catalogue/avatars.h"

#include "localservice/base/png.h"

#include <QPainter>
#include <QPainterPath>

#include <map>

namespace localservice {

namespace {

// An ellipse within the unit square, of which the part below its bottom is not drawn.
struct Ellipse
{
    qreal x; // of the centre
    qreal y;
    qreal width; // from the centre to the edge
    qreal height;
    qreal bottom = 1;
};

struct Person
{
    QRgb background;
    QRgb clothes;
    QRgb hair;
    QRgb skin;
    std::vector<Ellipse> hairBehind; // behind the face
    qreal fringe;                    // its lower edge
};

constexpr int size = 160; // points

constexpr QRgb paleSkin = 0xf4d0b1;
constexpr QRgb warmSkin = 0xe0ac84;
constexpr QRgb darkSkin = 0x9c6644;
constexpr QRgb black = 0x2b262a;
constexpr QRgb brown = 0x613d26;
constexpr QRgb fair = 0xdbaa54;
constexpr QRgb red = 0xa84a2b;
constexpr QRgb mouth = 0xa64848;

const std::map<std::string, Person> &people()
{
    const std::vector<Ellipse> longHair{{0.5, 0.52, 0.27, 0.34, 0.78}};
    const std::vector<Ellipse> bunches{{0.25, 0.36, 0.1, 0.1}, {0.75, 0.36, 0.1, 0.1}};
    const std::vector<Ellipse> tuft{{0.5, 0.24, 0.05, 0.1}};
    static const std::map<std::string, Person> all{
        {"%E5%A5%B301.png", {0xfadadd, 0xb04162, brown, paleSkin, longHair, 0.35}},
        {"%E5%A5%B302.png", {0xd6eadf, 0x266e59, black, darkSkin, longHair, 0.35}},
        {"avatar_girl.png", {0xffecbe, 0xde7342, red, paleSkin, bunches, 0.37}},
        {"%E7%94%B701.png", {0xcfe0f4, 0x2a528e, black, warmSkin, {}, 0.34}},
        {"%E7%94%B702.png", {0xe2ddf2, 0x5c4b8c, fair, paleSkin, {}, 0.34}},
        {"avatar_children.png", {0xd0f0f4, 0x208494, brown, warmSkin, tuft, 0.31}},
    };
    return all;
}

void draw(QPainter &painter, QRgb colour, const Ellipse &ellipse)
{
    painter.setClipRect(QRectF(0, 0, 1, ellipse.bottom));
    painter.setBrush(QColor(colour));
    painter.drawEllipse(QPointF(ellipse.x, ellipse.y), ellipse.width, ellipse.height);
}

// Draws from back to front.
void draw(QPainter &painter, const Person &person)
{
    painter.fillRect(QRectF(0, 0, 1, 1), QColor(person.background));
    draw(painter, person.clothes, {0.5, 1, 0.36, 0.28});
    for (const Ellipse &part : person.hairBehind)
        draw(painter, person.hair, part);
    draw(painter, person.skin, {0.5, 0.7, 0.08, 0.12}); // the neck
    draw(painter, person.skin, {0.5, 0.47, 0.19, 0.23});
    draw(painter, black, {0.43, 0.48, 0.022, 0.028});
    draw(painter, black, {0.57, 0.48, 0.022, 0.028});
    draw(painter, mouth, {0.5, 0.585, 0.06, 0.03});
    draw(painter, person.skin, {0.5, 0.57, 0.07, 0.026}); // leaves a smile of it
    draw(painter, person.hair, {0.5, 0.43, 0.21, 0.23, person.fringe});
}

// Leaves a disc of the picture.
void clearCorners(QPainter &painter)
{
    QPainterPath corners;
    corners.addRect(0, 0, 1, 1);
    corners.addEllipse(QPointF(0.5, 0.5), 0.49, 0.49);
    painter.setClipping(false);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.drawPath(corners);
}

} // namespace

std::vector<std::string> avatarNames()
{
    std::vector<std::string> names;
    for (const auto &entry : people())
        names.push_back(entry.first);
    return names;
}

std::string drawAvatar(const std::string &name)
{
    QImage picture(size, size, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.scale(size, size);
    draw(painter, people().at(name));
    clearCorners(painter);
    painter.end();
    return encodePng(picture);
}

} // namespace localservice
