#pragma once

#include <QSortFilterProxyModel>

/// The voices of one category in which a text occurs, in the order of the service.
class VoiceFilter : public QSortFilterProxyModel
{
    Q_OBJECT
    Q_DISABLE_COPY(VoiceFilter)

public:
    explicit VoiceFilter(QObject *parent = nullptr);

    /// Empty: all categories.
    void setCategory(const QString &category);

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    QString m_category;
};
