#include "requests/requestspage.h"

#include "common/desk.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>

RequestsPage::RequestsPage(Desk *desk, QWidget *parent)
    : QWidget(parent)
{
    auto *table = new QTreeView;
    table->setAccessibleName(tr("Last requests"));
    table->setModel(desk->requests());
    table->setRootIsDecorated(false);
    table->setUniformRowHeights(true);
    table->setAlternatingRowColors(true);
    for (int column = 0; column < RequestLog::Why; ++column)
        table->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);

    auto *copy = new QPushButton(tr("&Copy for a report"));
    copy->setToolTip(tr("Copies the list without texts, tokens and codes"));
    connect(copy, &QPushButton::clicked, this,
            [desk] { QGuiApplication::clipboard()->setText(desk->requests()->report()); });

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(table);
    layout->addWidget(copy, 0, Qt::AlignLeft);
}
