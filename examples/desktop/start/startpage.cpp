#include "start/startpage.h"

#include "common/notice.h"
#include "hostkit/hostkit.h"
#include "start/authority.h"
#include "start/serviceprocess.h"

#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

StartPage::StartPage(ServiceProcess *service, QWidget *parent)
    : QWidget(parent)
    , m_service(service)
    , m_notice(new Notice)
    , m_start(new QPushButton(tr("&Start the local service and trust it")))
{
    auto *title = new QLabel(tr("The speech service cannot be used"));
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    title->setFont(font);
    auto *address = new QLabel(tr("It is expected at %1.").arg(HostKit::serviceAddress()));
    auto *authority = new QPushButton(tr("Trust an &authority..."));
    auto *again = new QPushButton(tr("&Try again"));
    m_start->setObjectName(QStringLiteral("startService"));
    m_start->setDefault(true);
    if (ServiceProcess::program().isEmpty()) {
        m_start->setEnabled(false);
        m_start->setToolTip(tr("This build has no local service"));
    }
    auto *column = new QVBoxLayout;
    for (QWidget *widget :
         std::initializer_list<QWidget *>{title, address, m_notice, m_start, authority, again})
        column->addWidget(widget);
    auto *layout = new QVBoxLayout(this);
    layout->addStretch(1);
    auto *row = new QHBoxLayout;
    row->addStretch(1);
    row->addLayout(column, 2);
    row->addStretch(1);
    layout->addLayout(row);
    layout->addStretch(2);

    connect(m_start, &QPushButton::clicked, this, &StartPage::startService);
    connect(authority, &QPushButton::clicked, this, &StartPage::chooseAuthority);
    connect(again, &QPushButton::clicked, this, [this] {
        m_problem.clear();
        tryAgain();
    });
    connect(m_service, &ServiceProcess::ready, this, &StartPage::trust);
    connect(m_service, &ServiceProcess::failed, this, &StartPage::onFailed);
}

void StartPage::explain(const QString &why)
{
    m_notice->tell(m_problem.isEmpty() ? why : why + QLatin1Char('\n') + m_problem);
}

void StartPage::startService()
{
    m_problem.clear();
    m_start->setEnabled(false);
    explain(tr("The local service is being started..."));
    m_service->start();
}

void StartPage::chooseAuthority()
{
    auto *dialog = new QFileDialog(this, tr("Authority to trust"), {}, tr("Certificates (*.pem)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, &StartPage::trust);
    dialog->open();
}

void StartPage::trust(const QString &authority)
{
    m_start->setEnabled(!ServiceProcess::program().isEmpty());
    if (const QString problem = Authority::trust(authority); !problem.isEmpty())
        return explain(problem);
    Q_EMIT retried();
}

// Another window may have started one, which has the port and the data folder then.
void StartPage::onFailed(const QString &why)
{
    m_start->setEnabled(true);
    m_problem = tr("The local service does not run: %1").arg(why);
    m_notice->tell(m_problem);
    tryAgain();
}

void StartPage::tryAgain()
{
    Authority::trustLast();
    Q_EMIT retried();
}
