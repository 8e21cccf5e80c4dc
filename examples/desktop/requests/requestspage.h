#pragma once

#include <QWidget>

class Desk;

/// What happened: the last requests, to be looked at and copied for a report.
class RequestsPage : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(RequestsPage)

public:
    explicit RequestsPage(Desk *desk, QWidget *parent = nullptr);
};
