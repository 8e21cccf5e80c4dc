#pragma once

#include "network/vonetworkintf.h"

#include <QAbstractListModel>
#include <QHash>
#include <QIcon>
#include <QVector>

/// The voices of the catalogue. A picture is read when a view first asks for it, and once only.
class VoiceModel : public QAbstractListModel
{
    Q_OBJECT
    Q_DISABLE_COPY(VoiceModel)

public:
    enum Role {
        VoiceRole = Qt::UserRole, ///< DubInfo::voiceParam.
        CategoryRole,
        SampleRole, ///< The address of the sample.
        SearchRole, ///< Everything that a user may search for.
    };

    explicit VoiceModel(QObject *parent = nullptr);

    void setVoices(const QVector<DubInfo> &voices);

    /// Each category once, in the order of the alphabet.
    QStringList categories() const;

    /// The row of the voice @p param; -1: there is none.
    int rowOf(const QString &param) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

private:
    QIcon picture(const QString &name) const;

    QVector<DubInfo> m_voices;
    mutable QHash<QString, QIcon> m_pictures;
};
