#include "audio/playerpanel.h"
#include "audio/waveform.h"
#include "common/desk.h"
#include "hostkit/wavfile.h"
#include "recognize/recognizepage.h"
#include "tests/desktop/soundcard.h"
#include "tests/desktop/wav.h"
#include "tests/desktop/widgets.h"
#include "tests/support/patience.h"
#include "tests/support/testfolder.h"
#include "tests/system/home.h"
#include "tests/system/smalldisk.h"

#include <QDir>
#include <QLabel>
#include <QLoggingCategory>
#include <QProgressBar>
#include <QTreeView>
#include <QtTest>

#include <memory>
#include <optional>

namespace {

using Widgets::button;
using Widgets::notice;

QString record() { return QStringLiteral("&Record"); }
QString end() { return QStringLiteral("&End the recording"); }

bool says(const QWidget *page, const QString &text)
{
    for (const auto *label : page->findChildren<QLabel *>()) {
        if (label->isVisible() && label->text() == text)
            return true;
    }
    return false;
}

} // namespace

/// Recording and playing, with a sound card that comes and goes.
class TestSound : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        QApplication::setOrganizationName(QStringLiteral("VoNetwork"));
        QApplication::setApplicationName(QStringLiteral("vodesk"));
        SoundCard::install();
    }

    void init()
    {
        m_home.emplace();
        SoundCard::plugIn();
        m_desk = std::make_unique<Desk>();
        m_page = std::make_unique<RecognizePage>(m_desk.get());
        m_page->resize(900, 700);
        m_page->show();
    }

    void cleanup()
    {
        m_page.reset();
        m_desk.reset();
        m_disk.reset();
        m_home.reset();
    }

    void aRecordingStaysWhenItsRowIsRemovedAndTheWindowCloses()
    {
        const auto *level = m_page->findChild<QProgressBar *>();
        button(m_page.get(), record())->click();
        TRY_COMPARE(level->value(), 50); // the tone is half as loud as can be
        TRY_VERIFY(WavFile::duration(recordings().value(0)) > 0.1); // whole while it grows
        button(m_page.get(), end())->click();
        QCOMPARE(notice(m_page.get()), QString());
        QCOMPARE(rows()->rowCount(), 1);
        const QString path = recordings().value(0);
        QVERIFY(!WavFile::isCutShort(path));
        button(m_page.get(), QStringLiteral("Re&move"))->click();
        QCOMPARE(rows()->rowCount(), 0);
        m_page.reset();
        QCOMPARE(recordings(), QStringList{path});
    }

    void thePageSaysWhereRecordingsAre()
    {
        QVERIFY(says(m_page.get(), QStringLiteral("WAV files can also be dropped on the window. "
                                                  "Recordings are kept in %1")
                                       .arg(folder())));
    }

    void aRecordingIsKeptWhenTheWindowClosesDuringIt()
    {
        button(m_page.get(), record())->click();
        TRY_VERIFY(WavFile::duration(recordings().value(0)) > 0);
        m_page.reset();
        QVERIFY(!WavFile::isCutShort(recordings().value(0)));
    }

    void twoWindowsThatRecordAtOnceMakeTwoFiles()
    {
        RecognizePage other(m_desk.get());
        button(m_page.get(), record())->click();
        button(&other, record())->click();
        QCOMPARE(recordings().size(), 2);
        button(m_page.get(), end())->click();
        button(m_page.get(), record())->click();
        QCOMPARE(recordings().size(), 3);
    }

    void aFullDiskEndsTheRecordingAndWhatCameBeforeIsKept()
    {
        QVERIFY(QDir().mkpath(folder()));
        m_disk.emplace(folder());
        if (!m_disk->isThere())
            QSKIP("this user may not mount anything", );
        m_disk->fill(8192);
        button(m_page.get(), record())->click();
        TRY_COMPARE(notice(m_page.get()),
                    QStringLiteral("The recording has ended: No space left on device. What came "
                                   "before is kept."));
        button(m_page.get(), record()); // it can be recorded again
        QCOMPARE(rows()->rowCount(), 1);
        const QString path = recordings().value(0);
        QVERIFY(WavFile::duration(path) > 0.1);
        QVERIFY(!WavFile::isCutShort(path));
        m_disk->fill();
        button(m_page.get(), record())->click();
        QCOMPARE(notice(m_page.get()),
                 QStringLiteral("Nothing can be recorded: No space left on device"));
        QCOMPARE(recordings().size(), 1);
    }

    void aFolderThatCannotBeMadeIsTold()
    {
        QVERIFY(QDir().mkpath(QFileInfo(folder()).path()));
        TestFolder::write(folder(), "a file");
        button(m_page.get(), record())->click();
        QCOMPARE(
            notice(m_page.get()),
            QStringLiteral("Nothing can be recorded: the folder %1 cannot be made").arg(folder()));
    }

    void aMicrophoneThatIsPulledOutEndsTheRecording()
    {
        button(m_page.get(), record())->click();
        TRY_VERIFY(WavFile::duration(recordings().value(0)) > 0);
        SoundCard::pullOut();
        TRY_COMPARE(notice(m_page.get()),
                    QStringLiteral("The recording has ended: the microphone is gone. What came "
                                   "before is kept."));
        QCOMPARE(rows()->rowCount(), 1);
        button(m_page.get(), record())->click();
        QCOMPARE(notice(m_page.get()), QStringLiteral("No microphone was found"));
    }

    void aRecordingIsPlayedOnWhenTheDeviceIsPulledOut()
    {
        PlayerPanel panel;
        panel.show();
        panel.load(file(400));
        QVERIFY(!panel.player()->isSilent());
        QSignalSpy playing(panel.player(), &Player::playingChanged);
        panel.player()->play();
        TRY_VERIFY(panel.player()->position() > 0);
        SoundCard::pullOut();
        TRY_COMPARE(playing.count(), 2);
        QCOMPARE(panel.player()->position(), 400);
        QVERIFY(says(&panel, QStringLiteral("There is no audio device: nothing is heard")));
    }

    void withoutADeviceThereAreTheWaveformThePlayHeadAndSeeking()
    {
        SoundCard::pullOut();
        PlayerPanel panel;
        panel.resize(600, 200);
        panel.show();
        panel.load(file(60000));
        QVERIFY(says(&panel, QStringLiteral("There is no audio device: nothing is heard")));
        auto *waveform = panel.findChild<Waveform *>();
        TRY_VERIFY(waveform->hasRecording());
        QTest::mouseClick(waveform, Qt::LeftButton, {}, {waveform->width() / 2, 10});
        QCOMPARE(panel.player()->position(), 30000);
        panel.player()->play();
        TRY_VERIFY(waveform->value() > 30000);
    }

private:
    QString folder() const { return m_home->path() + QStringLiteral("/Music/vodesk"); }

    QStringList recordings() const
    {
        QStringList paths;
        const QFileInfoList files =
            QDir(folder()).entryInfoList({QStringLiteral("*.wav")}, QDir::Files, QDir::Name);
        for (const QFileInfo &file : files)
            paths.append(file.filePath());
        return paths;
    }

    const QAbstractItemModel *rows() const
    {
        return m_page->findChild<QTreeView *>(QStringLiteral("queue"))->model();
    }

    QString file(int duration) const // ms
    {
        QString path = m_home->path() + QStringLiteral("/sound.wav");
        TestFolder::write(path, wav(QVector<qint16>(duration * 8, 1000), 8000));
        return path;
    }

    std::optional<Home> m_home;
    std::optional<SmallDisk> m_disk;
    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<RecognizePage> m_page;
};

QTEST_MAIN(TestSound)
#include "tst_sound.moc"
