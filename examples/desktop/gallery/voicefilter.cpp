#include "gallery/voicefilter.h"

#include "gallery/voicemodel.h"

VoiceFilter::VoiceFilter(QObject *parent)
    : QSortFilterProxyModel(parent)
{
    setFilterRole(VoiceModel::SearchRole);
    setFilterCaseSensitivity(Qt::CaseInsensitive);
}

void VoiceFilter::setCategory(const QString &category)
{
    m_category = category;
    invalidateFilter();
}

bool VoiceFilter::filterAcceptsRow(int row, const QModelIndex &parent) const
{
    const QModelIndex index = sourceModel()->index(row, 0, parent);
    return (m_category.isEmpty() || index.data(VoiceModel::CategoryRole) == m_category)
           && QSortFilterProxyModel::filterAcceptsRow(row, parent);
}
