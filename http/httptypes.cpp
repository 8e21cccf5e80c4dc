#include "http/httptypes.h"

#include <QHash>

QByteArray httpVerb(HttpMethod method)
{
    // A function-local static is constructed once, whichever thread comes first.
    static const QHash<qint32, QByteArray> verbs{
        {qint32(HttpMethod::Head), QByteArrayLiteral("HEAD")},
        {qint32(HttpMethod::Get), QByteArrayLiteral("GET")},
        {qint32(HttpMethod::Put), QByteArrayLiteral("PUT")},
        {qint32(HttpMethod::Post), QByteArrayLiteral("POST")},
        {qint32(HttpMethod::Delete), QByteArrayLiteral("DELETE")},
    };
    return verbs.value(qint32(method));
}

const char *bodyTypeName(BodyType type)
{
    switch (type) {
    case BodyType::None:
        return "None";
    case BodyType::Raw:
        return "Raw";
    case BodyType::RawJson:
        return "RawJson";
    case BodyType::x_www_form_urlencoded:
        return "x_www_form_urlencoded";
    case BodyType::FileMap:
        return "FileMap";
    case BodyType::MultiPart:
        return "MultiPart";
    case BodyType::FormData:
        return "FormData";
    }
    return "";
}
