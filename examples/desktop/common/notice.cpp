#include "common/notice.h"

#include <QAccessible>

Notice::Notice(QWidget *parent)
    : QLabel(parent)
{
    setObjectName(QStringLiteral("notice"));
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setMargin(8);
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    hide();
}

void Notice::tell(const QString &text)
{
    setText(text);
    setAccessibleName(text);
    setVisible(!text.isEmpty());
    if (text.isEmpty())
        return;
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}
