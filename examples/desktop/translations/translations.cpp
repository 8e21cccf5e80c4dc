#include "translations/translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

// The resources of a static library are left out of a program unless it asks for them, from outside
// of any namespace.
static void useResources() { Q_INIT_RESOURCE(translations); }

namespace {

void install(const QLocale &locale, const QString &name, const QString &folder)
{
    auto *translator = new QTranslator(qApp);
    if (translator->load(locale, name, QStringLiteral("_"), folder))
        QCoreApplication::installTranslator(translator);
    else
        delete translator;
}

} // namespace

void Translations::install(const QLocale &locale)
{
    useResources();
    const auto earlierOnes = qApp->findChildren<QTranslator *>();
    for (QTranslator *earlier : earlierOnes)
        delete earlier;
    ::install(locale, QStringLiteral("qtbase"),
              QLibraryInfo::location(QLibraryInfo::TranslationsPath));
    ::install(locale, QStringLiteral("vodesk"), QStringLiteral(":/translations"));
}
