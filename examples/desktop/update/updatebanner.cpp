#include "update/updatebanner.h"

#include "hostkit/cataloguejobs.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

UpdateBanner::UpdateBanner(QWidget *parent)
    : QFrame(parent)
    , m_text(new QLabel)
    , m_changes(new QLabel)
{
    setFrameShape(QFrame::StyledPanel);
    for (QLabel *label : {m_text, m_changes}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto *changes = new QPushButton(tr("&What is new"));
    changes->setCheckable(true);
    auto *close = new QPushButton(tr("&Hide"));
    auto *row = new QHBoxLayout;
    row->addWidget(m_text, 1);
    row->addWidget(changes);
    row->addWidget(close);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addWidget(m_changes);
    connect(changes, &QAbstractButton::toggled, m_changes, &QWidget::setVisible);
    connect(close, &QAbstractButton::clicked, this, &QWidget::hide);
    m_changes->hide();
    hide();
}

void UpdateBanner::tell(const Update &update)
{
    setVisible(update.state != Update::State::UpToDate);
    const QString text = update.state == Update::State::NewerIsNeeded
                             ? tr("Version %1 is needed in place of %2: %3")
                             : tr("Version %1 is there, newer than %2: %3");
    m_text->setText(text.arg(update.version, update.currentVersion, update.address));
    m_changes->setText(update.changes.join(QLatin1Char('\n')));
}
