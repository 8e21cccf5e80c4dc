#include "gallery/voicefilter.h"
#include "gallery/voicemodel.h"
#include "requests/requestlog.h"

#include <QElapsedTimer>
#include <QListView>
#include <QScrollBar>
#include <QtTest>

namespace {

QVector<DubInfo> voices(int count)
{
    QVector<DubInfo> voices;
    for (int i = 0; i < count; ++i) {
        DubInfo voice;
        voice.name = QStringLiteral("Voice %1").arg(i);
        voice.voiceParam = QStringLiteral("v%1").arg(i);
        voice.category = i % 2 == 0 ? QStringLiteral("news") : QStringLiteral("Games");
        voice.scene = QStringLiteral("reading");
        voice.avatar = QStringLiteral("man_01.png");
        voices.append(voice);
    }
    return voices;
}

} // namespace

/// The models apart from the widgets that show them.
class TestModels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void voicesAreFilteredByCategoryAndText()
    {
        VoiceModel model;
        model.setVoices(voices(20));
        QCOMPARE(model.categories(),
                 (QStringList{QStringLiteral("Games"), QStringLiteral("news")}));
        VoiceFilter filter;
        filter.setSourceModel(&model);
        QCOMPARE(filter.rowCount(), 20);
        filter.setCategory(QStringLiteral("news"));
        QCOMPARE(filter.rowCount(), 10);
        filter.setFilterFixedString(QStringLiteral("VOICE 1"));
        QStringList found;
        for (int row = 0; row < filter.rowCount(); ++row)
            found.append(filter.index(row, 0).data(VoiceModel::VoiceRole).toString());
        QCOMPARE(found,
                 (QStringList{QStringLiteral("v10"), QStringLiteral("v12"), QStringLiteral("v14"),
                              QStringLiteral("v16"), QStringLiteral("v18")}));
    }

    void tenThousandVoicesScrollWithinAFrame()
    {
        VoiceModel model;
        model.setVoices(voices(10000));
        QListView view;
        view.setModel(&model);
        view.setViewMode(QListView::IconMode);
        view.setUniformItemSizes(true);
        view.setGridSize({132, 112});
        view.resize(800, 600);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.grab();
        QVERIFY(view.verticalScrollBar()->maximum() > 10000);
        qint64 best = std::numeric_limits<qint64>::max();
        for (int i = 1; i <= 20; ++i) {
            view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum() * i / 20);
            QElapsedTimer elapsed;
            elapsed.start();
            view.viewport()->grab();
            best = qMin(best, elapsed.nsecsElapsed());
        }
        qInfo("a page of 10,000 voices is drawn in %.2f ms", double(best) / 1e6);
        QVERIFY(best < 33000000);
    }

    void theReportSaysWhatHappenedWithoutSecrets()
    {
        RequestLog log;
        const QPersistentModelIndex first = log.begin(QStringLiteral("Speech"));
        log.end(first,
                {Reason::Kind::Refused,
                 QStringLiteral("no 123456 for +447700900123, abcDEF0123456789abcDEF0123456789")});
        log.begin(QStringLiteral("Recognition"));
        const QStringList lines = log.report().split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 3);
        QVERIFY2(lines.at(0).endsWith(QStringLiteral("\tRecognition\t\tunder way\t")),
                 qPrintable(lines.at(0)));
        QVERIFY2(lines.at(1).endsWith(QStringLiteral("\tfailed\tno *** for +***, ***")),
                 qPrintable(lines.at(1)));
    }

    void anEntryEndsOnce()
    {
        RequestLog log;
        const QPersistentModelIndex entry = log.begin(QStringLiteral("Speech"));
        log.end(entry, {});
        log.abandon(entry);
        QCOMPARE(log.index(0, RequestLog::Outcome).data().toString(), QStringLiteral("done"));
    }

    void theLogForgetsTheOldest()
    {
        RequestLog log;
        for (int i = 0; i < 600; ++i)
            log.begin(QString::number(i));
        QCOMPARE(log.rowCount(), 500);
        QCOMPARE(log.index(499, RequestLog::Operation).data().toString(), QStringLiteral("100"));
    }
};

QTEST_MAIN(TestModels)
#include "tst_models.moc"
