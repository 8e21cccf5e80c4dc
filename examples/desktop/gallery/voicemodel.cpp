#include "gallery/voicemodel.h"

#include "hostkit/stockpictures.h"

#include <QSet>

VoiceModel::VoiceModel(QObject *parent)
    : QAbstractListModel(parent)
{
}

void VoiceModel::setVoices(const QVector<DubInfo> &voices)
{
    beginResetModel();
    m_voices = voices;
    endResetModel();
}

QStringList VoiceModel::categories() const
{
    QSet<QString> categories;
    for (const DubInfo &voice : m_voices)
        categories.insert(voice.category);
    categories.remove({});
    QStringList sorted = categories.values();
    sorted.sort(Qt::CaseInsensitive);
    return sorted;
}

int VoiceModel::rowOf(const QString &param) const
{
    for (int row = 0; row < m_voices.size(); ++row) {
        if (m_voices.at(row).voiceParam == param)
            return row;
    }
    return -1;
}

int VoiceModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_voices.size();
}

QVariant VoiceModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const DubInfo &voice = m_voices.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return voice.name;
    case Qt::DecorationRole:
        return picture(voice.avatar);
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole:
        return tr("%1 - %2").arg(voice.category, voice.scene);
    case VoiceRole:
        return voice.voiceParam;
    case CategoryRole:
        return voice.category;
    case SampleRole:
        return voice.audition_url;
    case SearchRole:
        return QStringList{voice.name, voice.category, voice.scene, voice.type, voice.voiceParam}
            .join(QLatin1Char('\n'));
    default:
        return {};
    }
}

QIcon VoiceModel::picture(const QString &name) const
{
    const auto known = m_pictures.constFind(name);
    if (known != m_pictures.constEnd())
        return *known;
    return *m_pictures.insert(name, QIcon(StockPictures::path(name)));
}
