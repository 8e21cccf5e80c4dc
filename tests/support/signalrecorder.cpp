#include "tests/support/signalrecorder.h"

#include <QDebug>
#include <QMetaMethod>
#include <QVariant>

namespace {

QString textOf(const QVariant &value)
{
    if (value.canConvert<QString>())
        return value.toString();
    QString text;
    QDebug(&text).nospace() << value;
    return text;
}

} // namespace

SignalRecorder::SignalRecorder(QObject *object, const QStringList &signatures, QObject *parent)
    : QObject(parent)
    , m_object(object)
{
    for (const QString &signature : signatures) {
        const int index = object->metaObject()->indexOfSignal(
            QMetaObject::normalizedSignature(signature.toLatin1().constData()).constData());
        if (index < 0)
            qFatal("no signal %s", qPrintable(signature));
        // The signals arrive in qt_metacall() below, as methods behind those of QObject.
        QMetaObject::connect(object, index, this,
                             QObject::staticMetaObject.methodCount() + m_signals.size(),
                             Qt::DirectConnection);
        m_signals.append(index);
    }
}

QStringList SignalRecorder::calls() const { return m_calls; }

int SignalRecorder::qt_metacall(QMetaObject::Call call, int id, void **arguments)
{
    id = QObject::qt_metacall(call, id, arguments);
    if (id < 0 || call != QMetaObject::InvokeMetaMethod)
        return id;
    const QMetaMethod signal = m_object->metaObject()->method(m_signals.at(id));
    QStringList values;
    for (int i = 0; i < signal.parameterCount(); ++i)
        values.append(textOf(QVariant(signal.parameterType(i), arguments[i + 1])));
    m_calls.append(QString::fromLatin1(signal.name()) + QLatin1Char('(')
                   + values.join(QStringLiteral(", ")) + QLatin1Char(')'));
    return -1;
}
