#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

class LocalProgram;

/// The local service of the same build, in a process that ends with this object and, on Linux, with
/// the program, even where that is killed.
class ServiceProcess : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ServiceProcess)

public:
    explicit ServiceProcess(QObject *parent = nullptr);

    /// The program; empty: there is none, or the library asks another machine.
    static QString program();

    /// Starts it, unless it runs; answered by ready() or failed().
    void start();

Q_SIGNALS:
    /// It listens. The file @p authority signed its certificate.
    void ready(const QString &authority);

    /// It has ended. @p why is its last line.
    void failed(const QString &why);

    /// What elsewhere would reach the user by telephone: an SMS, the page of a sign-in code.
    void said(const QString &line);

private:
    void onOutput();
    void onEnd();

    LocalProgram *m_process; ///< A child.
    QByteArray m_lastError;
};
