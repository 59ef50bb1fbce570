// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"
#include "presets/presetlist.h"
#include "presets/savingpreset.h"
#include "watermark/wpreset.h"

#include <QAbstractListModel>
#include <QIcon>

#include <functional>
#include <memory>
#include <vector>

namespace plexa
{

/// The names of presets of either kind; those of invalid presets are red, and their tool tips give the
/// reason. Main thread.
class PresetRowsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    /// Whether rows can be dragged between others.
    void setAllowsReordering(bool allows) { m_allowsReordering = allows; }

    /// The rows in a drag of such a model; empty for any other drag.
    static IndexList draggedRows(const QMimeData *data);

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }

protected:
    struct Row {
        QString name;
        QString fault; ///< why the preset is invalid; empty: it is valid
    };

    using QAbstractListModel::QAbstractListModel;

    /// @param row  exists
    virtual Row row(int row) const = 0;
    /// A null icon: none.
    virtual QIcon picture(int row) const = 0;

    /// Why a preset is not valid, for a tool tip.
    static QString faultOf(const WPreset &preset);
    static QString faultOf(const SavingPreset &preset);

private:
    bool m_allowsReordering = false;
};

/// The same for presets of one kind.
template<class Preset>
class PresetListModelOf final : public PresetRowsModel
{
public:
    using Presets = std::vector<std::shared_ptr<Preset>>;
    /// A small picture of a preset; null: none.
    using Picture = std::function<QIcon(const std::shared_ptr<Preset> &preset)>;

    /// @param edits  reports changed fields of the presets; outlives the model
    explicit PresetListModelOf(const PresetListSignals &edits, QObject *parent = nullptr);

    const Presets &presets() const { return m_presets; }
    void setPresets(Presets presets);
    /// Shows this list and its changes. @param list  outlives the model
    void follow(const PresetList<Preset> &list);

    void setPicture(const Picture &picture) { m_picture = picture; }
    /// Pictures or fields of all presets may have changed.
    void refresh();

    int rowCount(const QModelIndex &parent = {}) const override;

private:
    Row row(int row) const override;
    QIcon picture(int row) const override;

    Presets m_presets;
    Picture m_picture;
};

using PresetListModel = PresetListModelOf<WPreset>;
using SavingPresetListModel = PresetListModelOf<SavingPreset>;

template<class Preset>
PresetListModelOf<Preset>::PresetListModelOf(const PresetListSignals &edits, QObject *parent)
    : PresetRowsModel(parent)
{
    // Any field may change whether a preset is valid.
    connect(&edits, &PresetListSignals::edited, this, &PresetListModelOf::refresh);
}

template<class Preset>
void PresetListModelOf<Preset>::refresh()
{
    if (!m_presets.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

template<class Preset>
void PresetListModelOf<Preset>::setPresets(Presets presets)
{
    beginResetModel();
    m_presets = std::move(presets);
    endResetModel();
}

template<class Preset>
void PresetListModelOf<Preset>::follow(const PresetList<Preset> &list)
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
            end();
        });
    };
    show(&Signals::inserted, [this] { endInsertRows(); });
    show(&Signals::removed, [this] { endRemoveRows(); });
    show(&Signals::moved, [this] { endMoveRows(); });
    setPresets(list.presets());
}

template<class Preset>
int PresetListModelOf<Preset>::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_presets.size());
}

template<class Preset>
PresetRowsModel::Row PresetListModelOf<Preset>::row(int row) const
{
    const std::shared_ptr<Preset> &preset = m_presets[static_cast<std::size_t>(row)];
    return {preset->name(), preset->validPreset() ? QString() : faultOf(*preset)};
}

template<class Preset>
QIcon PresetListModelOf<Preset>::picture(int row) const
{
    return m_picture ? m_picture(m_presets[static_cast<std::size_t>(row)]) : QIcon();
}

} // namespace plexa
