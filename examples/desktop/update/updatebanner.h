#pragma once

#include <QFrame>

class QLabel;
struct Update;

/// Tells of a newer version, quietly. Hidden while there is none.
class UpdateBanner : public QFrame
{
    Q_OBJECT
    Q_DISABLE_COPY(UpdateBanner)

public:
    explicit UpdateBanner(QWidget *parent = nullptr);

    void tell(const Update &update);

private:
    QLabel *m_text;
    QLabel *m_changes;
};
