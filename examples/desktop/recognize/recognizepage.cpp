#include "recognize/recognizepage.h"

#include "audio/playerpanel.h"
#include "common/notice.h"
#include "hostkit/wholefile.h"
#include "recognize/progressdelegate.h"

#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
#include <QStandardPaths>
#include <QTreeView>
#include <QVBoxLayout>

namespace {

QString recordings()
{
    return QStandardPaths::writableLocation(QStandardPaths::MusicLocation)
           + QStringLiteral("/vodesk");
}

} // namespace

RecognizePage::RecognizePage(Desk *desk, QWidget *parent)
    : QWidget(parent)
    , m_queue(desk)
    , m_rows(new QTreeView)
    , m_record(new QPushButton(tr("&Record")))
    , m_level(new QProgressBar)
    , m_cancel(new QPushButton(tr("&Cancel")))
    , m_retry(new QPushButton(tr("Re&try")))
    , m_remove(new QPushButton(tr("Re&move")))
    , m_copy(new QPushButton(tr("Cop&y the text")))
    , m_save(new QPushButton(tr("&Save the text...")))
    , m_panel(new PlayerPanel)
    , m_text(new QPlainTextEdit)
    , m_notice(new Notice)
{
    m_rows->setObjectName(QStringLiteral("queue"));
    m_rows->setAccessibleName(tr("Recordings"));
    m_rows->setModel(&m_queue);
    m_rows->setRootIsDecorated(false);
    m_rows->setUniformRowHeights(true);
    m_rows->setItemDelegateForColumn(RecognitionQueue::Progress, new ProgressDelegate(m_rows));
    m_rows->header()->resizeSection(RecognitionQueue::Recording, 240);
    m_rows->header()->setSectionResizeMode(RecognitionQueue::Status, QHeaderView::ResizeToContents);
    m_text->setReadOnly(true);
    m_text->setTabChangesFocus(true);
    m_text->setAccessibleName(tr("Recognised text"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_notice);
    layout->addLayout(makeSources());
    layout->addWidget(m_rows, 3);
    layout->addLayout(makeRowButtons());
    layout->addWidget(m_panel, 2);
    layout->addWidget(m_text, 2);
    layout->addLayout(makeTextButtons());

    connect(m_rows->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &RecognizePage::showRow);
    connect(&m_queue, &QAbstractItemModel::dataChanged, this, &RecognizePage::showRow);
    connect(&m_queue, &QAbstractItemModel::rowsRemoved, this, &RecognizePage::showRow);
    connect(&m_queue, &RecognitionQueue::notKept, this, [this](const QString &why) {
        m_notice->tell(tr("The result will not be here at the next start: %1").arg(why));
    });
    showRow();
}

void RecognizePage::add(const QStringList &paths)
{
    m_notice->tell({});
    for (const QString &path : paths)
        m_queue.add(path);
    if (!paths.isEmpty())
        m_rows->setCurrentIndex(m_queue.index(m_queue.rowCount() - 1, 0));
}

QLayout *RecognizePage::makeSources()
{
    auto *choose = new QPushButton(tr("&Add files..."));
    auto *hint =
        new QLabel(tr("WAV files can also be dropped on the window. Recordings are kept in %1")
                       .arg(QDir::toNativeSeparators(recordings())));
    hint->setTextFormat(Qt::PlainText);
    hint->setWordWrap(true);
    m_level->setRange(0, 100);
    m_level->setTextVisible(false);
    m_level->setAccessibleName(tr("Level of the microphone"));
    m_level->setVisible(false);
    connect(choose, &QPushButton::clicked, this, &RecognizePage::chooseFiles);
    connect(m_record, &QPushButton::clicked, this, &RecognizePage::record);
    connect(&m_recorder, &Recorder::level, m_level, &QProgressBar::setValue);
    connect(&m_recorder, &Recorder::failed, this, [this](const QString &why) {
        endRecording(tr("The recording has ended: %1. What came before is kept.").arg(why));
    });
    auto *sources = new QHBoxLayout;
    sources->addWidget(choose);
    sources->addWidget(m_record);
    sources->addWidget(m_level);
    sources->addWidget(hint, 1);
    return sources;
}

QLayout *RecognizePage::makeRowButtons()
{
    connect(m_cancel, &QPushButton::clicked, this, [this] { m_queue.cancel(row()); });
    connect(m_retry, &QPushButton::clicked, this, [this] { m_queue.retry(row()); });
    connect(m_remove, &QPushButton::clicked, this, [this] { m_queue.remove(row()); });
    auto *keys = new QShortcut(QKeySequence::Delete, m_rows);
    keys->setContext(Qt::WidgetShortcut);
    connect(keys, &QShortcut::activated, m_remove, &QPushButton::click);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_retry);
    buttons->addWidget(m_remove);
    buttons->addStretch(1);
    return buttons;
}

QLayout *RecognizePage::makeTextButtons()
{
    connect(m_copy, &QPushButton::clicked, this,
            [this] { QGuiApplication::clipboard()->setText(m_text->toPlainText()); });
    connect(m_save, &QPushButton::clicked, this, &RecognizePage::saveText);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_copy);
    buttons->addWidget(m_save);
    buttons->addStretch(1);
    return buttons;
}

void RecognizePage::chooseFiles()
{
    auto *dialog = new QFileDialog(this, tr("Recordings"), {}, tr("WAV files (*.wav)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    connect(dialog, &QFileDialog::filesSelected, this, &RecognizePage::add);
    dialog->open();
}

void RecognizePage::record()
{
    if (m_recorder.isRecording()) {
        m_recorder.stop();
        endRecording({});
    } else if (!Recorder::isPossible()) {
        m_notice->tell(tr("No microphone was found"));
    } else {
        const QString problem = m_recorder.start(recordings());
        m_notice->tell(problem.isEmpty() ? QString()
                                         : tr("Nothing can be recorded: %1").arg(problem));
        showRecording();
    }
}

void RecognizePage::endRecording(const QString &problem)
{
    add({m_recorder.path()});
    m_notice->tell(problem);
    showRecording();
}

void RecognizePage::showRecording()
{
    m_record->setText(m_recorder.isRecording() ? tr("&End the recording") : tr("&Record"));
    m_level->setVisible(m_recorder.isRecording());
}

void RecognizePage::showRow()
{
    const bool isAny = row() >= 0;
    const QString path = isAny ? m_queue.path(row()) : QString();
    if (path != m_shown) {
        m_shown = path;
        m_panel->load(path);
    }
    if (const QString text = isAny ? m_queue.text(row()) : QString(); text != m_text->toPlainText())
        m_text->setPlainText(text);
    const QString reason = isAny ? m_queue.reason(row()) : QString();
    m_text->setPlaceholderText(
        reason.isEmpty() ? tr("The text of the recording that is chosen above") : reason);
    showButtons();
}

void RecognizePage::showButtons()
{
    using State = RecognitionQueue::State;
    const bool isAny = row() >= 0;
    const State state = isAny ? m_queue.state(row()) : State::Done;
    const bool isOver = state == State::Done || state == State::Failed;
    m_cancel->setEnabled(isAny && !isOver);
    m_retry->setEnabled(isAny && isOver);
    m_remove->setEnabled(isAny);
    const bool hasText = !m_text->document()->isEmpty();
    m_copy->setEnabled(hasText);
    m_save->setEnabled(hasText);
}

void RecognizePage::saveText()
{
    auto *dialog = new QFileDialog(this, tr("Save the text"), {}, tr("Texts (*.txt)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("txt"));
    const QByteArray text = m_text->toPlainText().toUtf8() + '\n';
    connect(dialog, &QFileDialog::fileSelected, this, [this, text](const QString &path) {
        const QString problem = WholeFile::write(path, text);
        m_notice->tell(problem.isEmpty() ? QString()
                                         : tr("%1 could not be written: %2").arg(path, problem));
    });
    dialog->open();
}

int RecognizePage::row() const { return m_rows->currentIndex().row(); }
