#include "tests/support/patience.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <cstdlib>
#include <cxxabi.h>
#include <memory>

namespace {

/// The names in @p text that @p pattern captures, as they stand in sources, sorted and each once:
/// of a constructor compilers make one symbol or two.
QStringList sourceNames(const QString &text, const QString &pattern)
{
    QStringList names;
    QRegularExpressionMatchIterator found =
        QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(text);
    while (found.hasNext()) {
        const QByteArray symbol = found.next().captured(1).toLatin1();
        const std::unique_ptr<char, decltype(&std::free)> name(
            abi::__cxa_demangle(symbol.constData(), nullptr, nullptr, nullptr), &std::free);
        names.append(name ? QString::fromLatin1(name.get()) : QString::fromLatin1(symbol));
    }
    names.removeDuplicates();
    names.sort();
    return names;
}

QStringList exportedNames()
{
    QProcess nm;
    nm.start(QStringLiteral(NM),
             {QStringLiteral("-D"), QStringLiteral("--defined-only"), QStringLiteral(LIBRARY)});
    nm.waitForFinished(patienceMs);
    if (nm.exitStatus() != QProcess::NormalExit || nm.exitCode() != 0)
        qFatal("%s", nm.readAllStandardError().constData());
    return sourceNames(QString::fromUtf8(nm.readAllStandardOutput()),
                       QStringLiteral("^[0-9a-f]* *[A-Za-z] (.*)$"));
}

QStringList recordedNames()
{
    QFile record(QStringLiteral(RECORDED_LIBRARY));
    if (!record.open(QFile::ReadOnly))
        qFatal("%s cannot be read", RECORDED_LIBRARY);
    return sourceNames(QString::fromUtf8(record.readAll()),
                       QStringLiteral("<elf-symbol name='([^']*)'"));
}

} // namespace

/// What the shared library shows of itself.
class TestExports : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exportsWhatIsRecorded();
    void exportsNothingButItsClasses();
};

void TestExports::exportsWhatIsRecorded() { QCOMPARE(exportedNames(), recordedNames()); }

void TestExports::exportsNothingButItsClasses()
{
    static const QRegularExpression own(
        QStringLiteral("^((vtable|typeinfo|typeinfo name) for )?"
                       "(VoNetwork|VoNetworkIntf|VoNetworker)(::.*)?$"));
    QStringList others = exportedNames();
    for (int i = others.size() - 1; i >= 0; --i) {
        if (own.match(others.at(i)).hasMatch())
            others.removeAt(i);
    }
    QCOMPARE(others, QStringList());
}

QTEST_GUILESS_MAIN(TestExports)
#include "tst_exports.moc"
