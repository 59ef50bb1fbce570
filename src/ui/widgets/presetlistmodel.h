// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"
#include "presets/presetlist.h"
#include "watermark/wpreset.h"

#include <QAbstractListModel>

namespace plexa
{

/// The names of watermark presets; those of invalid presets are red. Main thread.
class PresetListModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    /// @param edits  reports changed fields of the presets; outlives the model
    explicit PresetListModel(const PresetListSignals &edits, QObject *parent = nullptr);

    const WPresetList &presets() const { return m_presets; }
    void setPresets(WPresetList presets);
    /// Shows this list and its changes. @param list  outlives the model
    void follow(const PresetList<WPreset> &list);

    /// Whether rows can be dragged between others.
    void setAllowsReordering(bool allows) { m_allowsReordering = allows; }

    /// The rows in a drag of this model; empty for any other drag.
    static IndexList draggedRows(const QMimeData *data);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }

private:
    WPresetList m_presets;
    bool m_allowsReordering = false;
};

} // namespace plexa
