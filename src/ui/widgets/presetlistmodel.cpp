// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/presetlistmodel.h"

#include "app/indexlist.h"
#include "ui/widgets/look.h"
#include "ui/widgets/plaintooltip.h"

#include <QMimeData>

#include <algorithm>

namespace plexa
{

namespace
{

/// The spelling is fixed.
const QString kDraggedRowsType = QStringLiteral("draggedPrests");

} // namespace

PresetListModel::PresetListModel(const PresetListSignals &edits, QObject *parent)
    : QAbstractListModel(parent)
{
    connect(&edits, &PresetListSignals::edited, this, [this] {
        if (!m_presets.empty()) // any field may change whether a preset is valid
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    });
}

void PresetListModel::setPresets(WPresetList presets)
{
    beginResetModel();
    m_presets = std::move(presets);
    endResetModel();
}

void PresetListModel::follow(const PresetList<WPreset> &list)
{
    using Signals = PresetListSignals;
    connect(&list, &Signals::aboutToInsert, this,
            [this](int first, int last) { beginInsertRows({}, first, last); });
    connect(&list, &Signals::aboutToRemove, this,
            [this](int first, int last) { beginRemoveRows({}, first, last); });
    connect(&list, &Signals::aboutToMove, this,
            [this](int fromRow, int toRow) { beginMoveRows({}, fromRow, fromRow, {}, toRow); });
    const auto show = [this, &list](auto changed, auto end) {
        connect(&list, changed, this, [this, &list, end] {
            m_presets = list.presets();
            (this->*end)();
        });
    };
    show(&Signals::inserted, &PresetListModel::endInsertRows);
    show(&Signals::removed, &PresetListModel::endRemoveRows);
    show(&Signals::moved, &PresetListModel::endMoveRows);
    setPresets(list.presets());
}

int PresetListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_presets.size());
}

QVariant PresetListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const WPreset &preset = *m_presets[static_cast<std::size_t>(index.row())];
    if (role == Qt::DisplayRole)
        return preset.name();
    if (role == Qt::ToolTipRole)
        return plainToolTip(preset.validPreset() ? preset.name() : preset.values().pictureFault());
    if (role == Qt::ForegroundRole && !preset.validPreset())
        return look::kWarningText;
    return {};
}

Qt::ItemFlags PresetListModel::flags(const QModelIndex &index) const
{
    // The list accepts drops between rows, not onto items.
    if (!index.isValid())
        return m_allowsReordering ? Qt::ItemIsDropEnabled : Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    return m_allowsReordering ? flags | Qt::ItemIsDragEnabled : flags;
}

QStringList PresetListModel::mimeTypes() const
{
    return {kDraggedRowsType};
}

QMimeData *PresetListModel::mimeData(const QModelIndexList &indexes) const
{
    IndexList rows;
    for (const QModelIndex &index : indexes)
        rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    auto *const data = new QMimeData;
    data->setData(kDraggedRowsType, draggedBytesOf(rows));
    return data;
}

IndexList PresetListModel::draggedRows(const QMimeData *data)
{
    return indexesFromDrag(data->data(kDraggedRowsType));
}

} // namespace plexa
