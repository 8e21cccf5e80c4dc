#pragma once

#include <QLabel>

/// What went wrong, told in the place where it happened. Hidden while there is nothing to tell.
class Notice : public QLabel
{
    Q_OBJECT
    Q_DISABLE_COPY(Notice)

public:
    explicit Notice(QWidget *parent = nullptr);

    /// Shows @p text, which comes from servers and files and is taken as it is; empty: hides.
    void tell(const QString &text);
};
