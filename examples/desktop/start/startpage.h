#pragma once

#include <QWidget>

class Notice;
class QPushButton;
class ServiceProcess;

/// Stands in the window while the service cannot be used, and helps the user out of it.
class StartPage : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(StartPage)

public:
    explicit StartPage(ServiceProcess *service, QWidget *parent = nullptr);

    /// Says why the service cannot be used, and why it could not be started.
    void explain(const QString &why);

Q_SIGNALS:
    /// The user wants the service to be asked again.
    void retried();

private:
    void startService();
    void onFailed(const QString &why);
    void tryAgain();
    void chooseAuthority();
    void trust(const QString &authority);

    ServiceProcess *m_service;
    Notice *m_notice;
    QPushButton *m_start;
    QString m_problem; ///< Why the local service could not be started; empty: nobody tried.
};
