#pragma once

#include "common/notice.h"

#include <QAbstractButton>
#include <QString>
#include <QWidget>

/// What a user sees of a window.
namespace Widgets {

/// The button on @p page that says @p text.
inline QAbstractButton *button(QWidget *page, const QString &text)
{
    const auto buttons = page->findChildren<QAbstractButton *>();
    for (auto *button : buttons) {
        if (button->text() == text)
            return button;
    }
    qFatal("there is no button \"%s\"", qPrintable(text));
}

/// What the notice on @p page says; empty: there is none to be seen.
inline QString notice(const QWidget *page)
{
    const auto *notice = page->findChild<Notice *>();
    return notice->isHidden() ? QString() : notice->text();
}

} // namespace Widgets
