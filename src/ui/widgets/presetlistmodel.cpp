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

QString PresetRowsModel::faultOf(const WPreset &preset)
{
    return preset.values().pictureFault();
}

QString PresetRowsModel::faultOf(const SavingPreset &preset)
{
    return preset.filenameTokens().isEmpty()
               ? tr("“%1” does not say how the copies are named").arg(preset.name())
               : tr("The quality of “%1” is not between %2 and %3 %")
                     .arg(preset.name())
                     .arg(SavingPresetValues::kLowestQuality)
                     .arg(SavingPresetValues::kHighestQuality);
}

QVariant PresetRowsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (role == Qt::DecorationRole) {
        const QIcon shown = picture(index.row());
        return shown.isNull() ? QVariant() : shown;
    }
    const Row shown = row(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return shown.name;
    case Qt::ToolTipRole:
        return plainToolTip(shown.fault.isEmpty() ? shown.name : shown.fault);
    case Qt::ForegroundRole:
        return shown.fault.isEmpty() ? QVariant() : look::kWarningText;
    default:
        return {};
    }
}

Qt::ItemFlags PresetRowsModel::flags(const QModelIndex &index) const
{
    // The list accepts drops between rows, not onto items.
    if (!index.isValid())
        return m_allowsReordering ? Qt::ItemIsDropEnabled : Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    return m_allowsReordering ? flags | Qt::ItemIsDragEnabled : flags;
}

QStringList PresetRowsModel::mimeTypes() const
{
    return {kDraggedRowsType};
}

QMimeData *PresetRowsModel::mimeData(const QModelIndexList &indexes) const
{
    IndexList rows;
    for (const QModelIndex &index : indexes)
        rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    auto *const data = new QMimeData;
    data->setData(kDraggedRowsType, draggedBytesOf(rows));
    return data;
}

IndexList PresetRowsModel::draggedRows(const QMimeData *data)
{
    return indexesFromDrag(data->data(kDraggedRowsType));
}

} // namespace plexa
