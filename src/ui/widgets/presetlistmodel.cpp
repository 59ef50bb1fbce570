// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/presetlistmodel.h"

#include "app/indexlist.h"
#include "ui/widgets/plaintooltip.h"

#include <QColor>
#include <QMimeData>

#include <algorithm>

namespace plexa
{

namespace
{

/// Used by this program only; the spelling is kept.
const QString kDraggedRowsType = QStringLiteral("draggedPrests");

const QColor kInvalid(0xc8, 0x1e, 0x1e); // red, dark enough for text

} // namespace

void PresetListModel::setPresets(WPresetList presets)
{
    beginResetModel();
    for (const std::shared_ptr<WPreset> &preset : m_presets)
        preset->removeObserverForAllKeys(this);
    m_presets = std::move(presets);
    for (const std::shared_ptr<WPreset> &preset : m_presets) {
        preset->addObserverForAllKeys(this,
                                      [this](const WPresetField &, const FieldValue &, const FieldValue &) {
                                          // Any field may change whether a preset is valid.
                                          Q_EMIT dataChanged(index(0), index(rowCount() - 1));
                                      });
    }
    endResetModel();
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
        return kInvalid;
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
