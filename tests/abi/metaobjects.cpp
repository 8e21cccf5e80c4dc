#include "network/vonetwork.h"
#include "network/vonetworker.h"

#include <QMetaEnum>
#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>
#include <QTextStream>

// Prints what the meta-object system tells of the library's classes: each line is an entry that a
// host may have looked up by its name or by its index. Indices are those within the class, since
// those of the base classes are Qt's.

namespace {

const char *kindOf(const QMetaMethod &method)
{
    switch (method.methodType()) {
    case QMetaMethod::Signal:
        return "signal";
    case QMetaMethod::Slot:
        return "slot";
    case QMetaMethod::Constructor:
        return "constructor";
    case QMetaMethod::Method:
        break;
    }
    return "method";
}

const char *accessOf(const QMetaMethod &method)
{
    switch (method.access()) {
    case QMetaMethod::Private:
        return "private";
    case QMetaMethod::Protected:
        return "protected";
    case QMetaMethod::Public:
        break;
    }
    return "public";
}

void printMethods(QTextStream &out, const QMetaObject &type)
{
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        out << "  " << i - type.methodOffset() << ' ' << accessOf(method) << ' ' << kindOf(method)
            << ' ' << method.typeName() << ' ' << method.methodSignature() << '\n';
    }
}

void printProperties(QTextStream &out, const QMetaObject &type)
{
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        out << "  property " << i - type.propertyOffset() << ' ' << property.typeName() << ' '
            << property.name() << '\n';
    }
}

void printEnumerations(QTextStream &out, const QMetaObject &type)
{
    for (int i = type.enumeratorOffset(); i < type.enumeratorCount(); ++i) {
        const QMetaEnum enumeration = type.enumerator(i);
        for (int key = 0; key < enumeration.keyCount(); ++key)
            out << "  enumerator " << enumeration.name() << "::" << enumeration.key(key) << " = "
                << enumeration.value(key) << '\n';
    }
}

} // namespace

int main()
{
    QTextStream out(stdout);
    for (const QMetaObject *type : {&VoNetwork::staticMetaObject, &VoNetworkIntf::staticMetaObject,
                                    &VoNetworker::staticMetaObject}) {
        out << type->className() << " : " << type->superClass()->className() << '\n';
        printMethods(out, *type);
        printProperties(out, *type);
        printEnumerations(out, *type);
    }
    return 0;
}
