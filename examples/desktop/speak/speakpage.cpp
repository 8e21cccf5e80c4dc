#include "speak/speakpage.h"

#include "audio/mixer.h"
#include "audio/playerpanel.h"
#include "common/desk.h"
#include "common/inbackground.h"
#include "common/notice.h"
#include "gallery/catalogue.h"
#include "hostkit/limits.h"
#include "hostkit/privatefiles.h"
#include "hostkit/wholefile.h"
#include "speak/level.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QShortcut>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace {

constexpr int rates[] = {8000, 16000, 22050, 44100, 48000}; // samples a second
constexpr int standardRate = 16000;
constexpr int mixDelay = 300; // ms

int characters(const QString &text) { return text.toUcs4().size(); }

QDir dataFolder() { return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation); }

// The text is no setting: Qt does not tell when settings could not be written.
QString textFile() { return dataFolder().filePath(QStringLiteral("text.txt")); }

} // namespace

SpeakPage::SpeakPage(Desk *desk, QWidget *parent)
    : QWidget(parent)
    , m_desk(desk)
    , m_text(new QPlainTextEdit)
    , m_count(new QLabel)
    , m_voice(new QComboBox)
    , m_about(new QLabel)
    , m_sample(new QPushButton(tr("Play the sa&mple")))
    , m_rate(new QComboBox)
    , m_speed(new Level(tr("Speed"), -500, 500, 0))
    , m_pitch(new Level(tr("Pitch"), -500, 500, 0))
    , m_volume(new Level(tr("Volume"), 0, 100, 50))
    , m_music(new QComboBox)
    , m_musicLevel(new Level(tr("Level of the music"), 0, 100, 30))
    , m_speak(new QPushButton(tr("&Speak")))
    , m_save(new QPushButton(tr("Save &as...")))
    , m_progress(new QProgressBar)
    , m_notice(new Notice)
    , m_panel(new PlayerPanel)
    , m_samplePlayer(new Player(this))
{
    auto *top = new QHBoxLayout;
    top->addWidget(makeText(), 3);
    top->addWidget(makeChoices(), 2);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_notice);
    layout->addLayout(top, 3);
    layout->addWidget(m_panel, 2);

    m_mixSoon.setSingleShot(true);
    m_mixSoon.setInterval(mixDelay);
    connect(&m_mixSoon, &QTimer::timeout, this, &SpeakPage::mix);
    connect(desk->catalogue(), &Catalogue::loaded, this, &SpeakPage::onLoaded);
    connect(desk, &Desk::sessionChanged, this, &SpeakPage::showCount);
    restoreState();
    onLoaded();
}

QWidget *SpeakPage::makeText()
{
    m_text->setObjectName(QStringLiteral("text"));
    m_text->setAccessibleName(tr("Text to speak"));
    m_text->setPlaceholderText(tr("Write here what is to be spoken"));
    m_text->setTabChangesFocus(true);
    m_speak->setObjectName(QStringLiteral("speak"));
    m_speak->setToolTip(tr("Ctrl+Return"));
    m_save->setEnabled(false);
    m_progress->setVisible(false);
    m_progress->setAccessibleName(tr("Progress"));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_speak);
    buttons->addWidget(m_save);
    buttons->addWidget(m_progress, 1);
    buttons->addStretch();
    auto *text = new QWidget;
    auto *layout = new QVBoxLayout(text);
    layout->setContentsMargins({});
    layout->addWidget(m_text);
    layout->addWidget(m_count, 0, Qt::AlignRight);
    layout->addLayout(buttons);

    connect(m_text, &QPlainTextEdit::textChanged, this, &SpeakPage::showCount);
    connect(m_speak, &QPushButton::clicked, this, [this] { m_job ? m_job->cancel() : speak(); });
    connect(m_save, &QPushButton::clicked, this, &SpeakPage::saveAs);
    connect(new QShortcut(QKeySequence(Qt::CTRL + Qt::Key_Return), this), &QShortcut::activated,
            m_speak, &QPushButton::click);
    return text;
}

QWidget *SpeakPage::makeChoices()
{
    for (const int rate : rates)
        m_rate->addItem(tr("%1 Hz").arg(rate), rate);
    m_rate->setCurrentIndex(m_rate->findData(standardRate));
    m_voice->setModel(m_desk->catalogue()->voices());
    m_voice->setIconSize({20, 20});
    m_voice->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_voice->setMinimumContentsLength(8);
    m_about->setWordWrap(true);
    m_about->setTextFormat(Qt::PlainText);
    m_music->setObjectName(QStringLiteral("music"));
    auto *voice = new QHBoxLayout;
    voice->addWidget(m_voice, 1);
    voice->addWidget(m_sample);
    auto *voiceLabel = new QLabel(tr("Vo&ice"));
    voiceLabel->setBuddy(m_voice);
    auto *choices = new QWidget;
    auto *form = new QFormLayout(choices);
    form->setContentsMargins({});
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(voiceLabel, voice);
    form->addRow(m_about);
    form->addRow(tr("Sp&eed"), m_speed);
    form->addRow(tr("Pit&ch"), m_pitch);
    form->addRow(tr("Vo&lume"), m_volume);
    form->addRow(tr("Sample &rate"), m_rate);
    form->addRow(tr("M&usic"), m_music);
    form->addRow(tr("Music le&vel"), m_musicLevel);

    connect(m_voice, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &SpeakPage::showVoice);
    connect(m_voice, QOverload<int>::of(&QComboBox::activated), this,
            [this] { m_voiceParam = speech().voice; });
    connect(m_sample, &QPushButton::clicked, this, &SpeakPage::playSample);
    connect(m_music, QOverload<int>::of(&QComboBox::activated), &m_mixSoon,
            QOverload<>::of(&QTimer::start));
    connect(m_musicLevel, &Level::changed, &m_mixSoon, QOverload<>::of(&QTimer::start));
    return choices;
}

void SpeakPage::onLoaded()
{
    const QString track = m_music->currentText();
    m_music->clear();
    m_music->addItem(tr("No music"));
    const QAbstractItemModel *music = m_desk->catalogue()->music();
    for (int row = 0; row < music->rowCount(); ++row)
        m_music->addItem(music->index(row, 0).data().toString());
    m_music->setCurrentIndex(qMax(0, m_music->findText(track)));
    chooseVoice(m_voiceParam);
}

void SpeakPage::chooseVoice(const QString &param)
{
    m_voiceParam = param;
    m_voice->setCurrentIndex(qMax(0, m_desk->catalogue()->voices()->rowOf(param)));
    showVoice();
}

QString SpeakPage::keepState()
{
    QSettings settings;
    settings.beginGroup(QStringLiteral("speak"));
    settings.setValue(QStringLiteral("voice"), m_voiceParam);
    settings.setValue(QStringLiteral("rate"), speech().sampleRate);
    settings.setValue(QStringLiteral("speed"), m_speed->value());
    settings.setValue(QStringLiteral("pitch"), m_pitch->value());
    settings.setValue(QStringLiteral("volume"), m_volume->value());
    settings.setValue(QStringLiteral("musicLevel"), m_musicLevel->value());
    const QString text = m_text->toPlainText();
    if (text == m_keptText)
        return {};
    QString problem = PrivateFiles::claimFolder(dataFolder().path());
    if (problem.isEmpty())
        problem = WholeFile::write(textFile(), text.toUtf8(), QFile::ReadOwner | QFile::WriteOwner);
    if (problem.isEmpty())
        m_keptText = text;
    else
        m_notice->tell(tr("The text will not be here at the next start: %1. Copy it elsewhere, or "
                          "close the window once more to give it up.")
                           .arg(problem));
    return problem;
}

void SpeakPage::restoreState()
{
    QSettings settings;
    settings.beginGroup(QStringLiteral("speak"));
    if (QFile file(textFile()); file.open(QIODevice::ReadOnly))
        m_keptText = QString::fromUtf8(file.readAll());
    m_text->setPlainText(m_keptText);
    m_voiceParam = settings.value(QStringLiteral("voice")).toString();
    const int rate = settings.value(QStringLiteral("rate"), standardRate).toInt();
    m_rate->setCurrentIndex(qMax(0, m_rate->findData(rate)));
    m_speed->setValue(settings.value(QStringLiteral("speed"), m_speed->value()).toInt());
    m_pitch->setValue(settings.value(QStringLiteral("pitch"), m_pitch->value()).toInt());
    m_volume->setValue(settings.value(QStringLiteral("volume"), m_volume->value()).toInt());
    m_musicLevel->setValue(
        settings.value(QStringLiteral("musicLevel"), m_musicLevel->value()).toInt());
    showCount();
}

void SpeakPage::showVoice()
{
    const bool isAny = m_voice->currentIndex() >= 0;
    m_about->setText(!isAny && m_desk->catalogue()->hasVoices()
                         ? tr("The service has named no voice")
                         : m_voice->currentData(Qt::ToolTipRole).toString());
    m_sample->setEnabled(isAny);
}

void SpeakPage::showCount()
{
    const int count = characters(m_text->toPlainText());
    const int most = m_desk->isSignedIn() ? Limits::longText : Limits::anonymousText;
    const QLocale locale;
    const QString text = m_desk->isSignedIn() ? tr("%1 of %2 characters")
                                              : tr("%1 of %2 characters without signing in");
    m_count->setText(text.arg(locale.toString(count), locale.toString(most)));
    QFont font = m_count->font();
    font.setBold(count > most);
    m_count->setFont(font);
}

void SpeakPage::playSample()
{
    m_desk->catalogue()->fetch(m_voice->currentData(VoiceModel::SampleRole).toString(), this,
                               [this](const QString &path, const QString &problem) {
                                   m_notice->tell(problem);
                                   if (problem.isEmpty() && m_samplePlayer->load(path))
                                       m_samplePlayer->play();
                               });
}

Speech SpeakPage::speech() const
{
    Speech speech;
    speech.text = m_text->toPlainText();
    speech.voice = m_voice->currentData(VoiceModel::VoiceRole).toString();
    speech.sampleRate = m_rate->currentData().toInt();
    speech.speed = m_speed->value();
    speech.pitch = m_pitch->value();
    speech.volume = m_volume->value();
    speech.isAnonymous = !m_desk->isSignedIn();
    return speech;
}

void SpeakPage::speak()
{
    m_notice->tell({});
    m_panel->player()->pause();
    m_job = new SpeakJob(m_desk->kit(), speech(), newPath(), this);
    connect(m_job, &Job::progressed, this, &SpeakPage::onProgress);
    connect(m_job, &SpeakJob::succeeded, this, &SpeakPage::onSpoken);
    connect(m_job, &Job::failed, this, [this](const Reason &reason) {
        onFailed(reason.kind == Reason::Kind::Cancelled ? QString() : reason.line());
    });
    m_speak->setText(tr("Ca&ncel"));
    m_progress->setVisible(true);
    onProgress(Job::Stage::Asking, 0, 0);
    m_desk->run(m_job.data(), tr("Speech"));
}

void SpeakPage::onProgress(Job::Stage stage, qint64 done, qint64 total)
{
    m_progress->setRange(0, int(total));
    m_progress->setValue(int(done));
    m_progress->setFormat(stage == Job::Stage::Working ? tr("%1 s").arg(done)
                                                       : QStringLiteral("%p%"));
}

void SpeakPage::onSpoken(const QString &path)
{
    onFailed({});
    m_spoken = path;
    mix();
}

void SpeakPage::onFailed(const QString &why)
{
    m_job = nullptr;
    m_speak->setText(tr("&Speak"));
    m_progress->setVisible(false);
    m_notice->tell(why);
}

// Without music the voice is shown as it came.
void SpeakPage::mix()
{
    if (m_spoken.isEmpty())
        return;
    const QString voice = m_spoken;
    if (m_music->currentIndex() <= 0)
        return showAudio(voice);
    const int level = m_musicLevel->value();
    const QString output = newPath();
    const auto mixWith = [=](const QString &music) {
        inBackground(
            this, [=] { return Mixer::mix(voice, music, level, output); },
            [=](const QString &problem) {
                m_notice->tell(problem);
                showAudio(problem.isEmpty() ? output : voice);
            });
    };
    m_desk->catalogue()->fetch(m_desk->catalogue()->musicAddress(m_music->currentIndex() - 1), this,
                               [=](const QString &music, const QString &problem) {
                                   if (problem.isEmpty())
                                       return mixWith(music);
                                   m_notice->tell(problem);
                                   showAudio(voice);
                               });
}

void SpeakPage::showAudio(const QString &path)
{
    m_audio = path;
    m_save->setEnabled(true);
    m_panel->load(path);
    m_panel->player()->play();
}

void SpeakPage::saveAs()
{
    auto *dialog = new QFileDialog(this, tr("Save the audio"), {}, tr("WAV files (*.wav)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("wav"));
    connect(dialog, &QFileDialog::fileSelected, this, &SpeakPage::save);
    dialog->open();
}

void SpeakPage::save(const QString &path)
{
    const QString audio = m_audio;
    inBackground(
        this,
        [=] {
            QFile file(audio);
            return file.open(QIODevice::ReadOnly) ? WholeFile::write(path, file.readAll())
                                                  : file.errorString();
        },
        [=](const QString &problem) {
            m_notice->tell(problem.isEmpty()
                               ? QString()
                               : tr("%1 could not be written: %2").arg(path, problem));
        });
}

QString SpeakPage::newPath() { return m_folder.filePath(QStringLiteral("%1.wav").arg(++m_files)); }
