#include "mainwindow.h"

#include "account/accountpage.h"
#include "common/desk.h"
#include "gallery/catalogue.h"
#include "gallery/gallerypage.h"
#include "hostkit/cataloguejobs.h"
#include "recognize/recognizepage.h"
#include "requests/requestspage.h"
#include "speak/speakpage.h"
#include "start/serviceprocess.h"
#include "start/startpage.h"
#include "update/updatebanner.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QShortcut>
#include <QStackedWidget>
#include <QUrl>
#include <QVBoxLayout>

namespace {

constexpr int patience = 20000; // ms; the user is told of a service that does not answer

QString geometryKey() { return QStringLiteral("window/geometry"); }
QString pageKey() { return QStringLiteral("window/page"); }

} // namespace

MainWindow::MainWindow(Desk *desk, QWidget *parent)
    : QMainWindow(parent)
    , m_desk(desk)
    , m_stack(new QStackedWidget)
    , m_start(new StartPage(desk->service()))
    , m_banner(new UpdateBanner)
    , m_gone(new QPushButton(tr("The service cannot &be reached. Look for it")))
    , m_names(new QListWidget)
    , m_pages(new QStackedWidget)
    , m_speak(new SpeakPage(desk))
    , m_recognize(new RecognizePage(desk))
{
    setWindowTitle(tr("Speech desk"));
    setAcceptDrops(true);
    auto *gallery = new GalleryPage(desk);
    addPage(tr("Speak"), m_speak);
    addPage(tr("Recognise"), m_recognize);
    addPage(tr("Voices and music"), gallery);
    addPage(tr("Account"), new AccountPage(desk));
    addPage(tr("What happened"), new RequestsPage(desk));
    m_names->setAccessibleName(tr("Pages"));
    m_names->setObjectName(QStringLiteral("pages"));
    m_names->setSpacing(3);
    m_names->setFixedWidth(m_names->sizeHintForColumn(0) + 36);
    m_names->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    auto *right = new QVBoxLayout;
    right->addWidget(m_banner);
    right->addWidget(m_gone);
    right->addWidget(m_pages, 1);
    auto *workspace = new QWidget;
    auto *layout = new QHBoxLayout(workspace);
    layout->addWidget(m_names);
    layout->addLayout(right, 1);
    m_stack->addWidget(workspace);
    m_stack->addWidget(m_start);
    setCentralWidget(m_stack);
    m_gone->hide();

    connect(m_names, &QListWidget::currentRowChanged, m_pages, &QStackedWidget::setCurrentIndex);
    connect(m_start, &StartPage::retried, this, &MainWindow::connectToService);
    connect(m_gone, &QPushButton::clicked, this, &MainWindow::connectToService);
    connect(desk, &Desk::serviceSought, m_gone, &QWidget::setHidden);
    connect(gallery, &GalleryPage::chosen, this, [this](const QString &voice) {
        m_speak->chooseVoice(voice);
        showPage(0);
    });
    connect(desk->service(), &ServiceProcess::failed, this,
            [this] { m_stack->setCurrentWidget(m_start); });
    restoreState();
}

void MainWindow::connectToService()
{
    auto *job = new UpdateJob(m_desk->kit(), this);
    job->setTimeout(patience);
    connect(job, &UpdateJob::succeeded, this, [this](const Update &update) {
        m_stack->setCurrentIndex(0);
        m_banner->tell(update);
        m_desk->catalogue()->load();
    });
    connect(job, &Job::failed, this, [this](const Reason &reason) { onFailed(reason); });
    m_desk->run(job, tr("Question for updates"));
}

void MainWindow::showPage(int page) { m_names->setCurrentRow(page); }

int MainWindow::pageCount() const { return m_pages->count(); }

// Another window may have been in use meanwhile.
void MainWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        m_desk->lookAtSession();
    QMainWindow::changeEvent(event);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    QSettings settings;
    settings.setValue(geometryKey(), saveGeometry());
    settings.setValue(pageKey(), m_names->currentRow());
    if (!m_speak->keepState().isEmpty() && !m_mayLoseText) {
        m_mayLoseText = true;
        m_stack->setCurrentIndex(0);
        showPage(m_pages->indexOf(m_speak));
        return event->ignore();
    }
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    QStringList files;
    const QList<QUrl> addresses = event->mimeData()->urls();
    for (const QUrl &address : addresses) {
        if (address.isLocalFile())
            files.append(address.toLocalFile());
    }
    m_recognize->add(files);
    showPage(m_pages->indexOf(m_recognize));
}

void MainWindow::addPage(const QString &name, QWidget *page)
{
    const int number = m_pages->addWidget(page);
    m_names->addItem(name);
    const QKeySequence keys(int(Qt::CTRL) + int(Qt::Key_1) + number);
    m_names->item(number)->setToolTip(keys.toString(QKeySequence::NativeText));
    connect(new QShortcut(keys, this), &QShortcut::activated, this,
            [this, number] { showPage(number); });
}

void MainWindow::restoreState()
{
    const QSettings settings;
    resize(1024, 700);
    restoreGeometry(settings.value(geometryKey()).toByteArray());
    showPage(qBound(0, settings.value(pageKey()).toInt(), pageCount() - 1));
}

// A service that refuses to tell of versions is there all the same.
void MainWindow::onFailed(const Reason &reason)
{
    using Kind = Reason::Kind;
    if (reason.kind == Kind::Refused || reason.kind == Kind::BadAnswer) {
        m_stack->setCurrentIndex(0);
        m_desk->catalogue()->load();
        return;
    }
    m_start->explain(reason.line());
    m_stack->setCurrentWidget(m_start);
}
