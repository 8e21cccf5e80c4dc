#include "hostkit/stockpictures.h"

// A static library's resources are left out of a program unless it asks for them, from outside of
// any namespace.
static void useResources() { Q_INIT_RESOURCE(stockpictures); }

QStringList StockPictures::names()
{
    return {QStringLiteral("women_01.png"),    QStringLiteral("women_02.png"),
            QStringLiteral("avatar_girl.png"), QStringLiteral("man_01.png"),
            QStringLiteral("man_02.png"),      QStringLiteral("avatar_children.png")};
}

QString StockPictures::path(const QString &name)
{
    useResources();
    const QStringList known = names();
    return QStringLiteral(":/hostkit/") + (known.contains(name) ? name : known.first());
}
