// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"
#include "images/imageobject.h"
#include "watermark/wpreset.h"

#include <QObject>

namespace plexa
{

class UserDefaults;

/// Which watermark presets are drawn on the photos: in single mode the quick preset, in presets mode the
/// applied ones, which are the very objects of the list of all presets. Rows are those of the applied list.
/// Main thread.
class AppliedPresets final : public QObject
{
    Q_OBJECT

public:
    enum class Mode { Single, Presets };
    enum class Neighbor { Next, Previous };

    /// @param defaults  outlives this object
    explicit AppliedPresets(UserDefaults &defaults);
    ~AppliedPresets() override;

    /// The preset of single mode; may be null before the first one is set.
    const std::shared_ptr<WPreset> &quickWPreset() const { return m_quickWPreset; }
    void setQuickWPreset(const std::shared_ptr<WPreset> &preset);

    const WPresetList &wPresetsApplied() const { return m_wPresetsApplied; }

    bool isInSingleMode() const;
    /// Stores the mode.
    void modeDidChange(Mode mode);

    /// What is drawn, in this order; may be empty in presets mode.
    WPresetList effectivePresets() const;
    /// The same as it stands now, for work that goes on while the user edits.
    std::vector<AppliedPreset> effectivePresetsNow() const;

    /// The preset that commands for one preset are about; null: there is none.
    std::shared_ptr<WPreset> currentWPreset() const;

    /// Appends those that are not applied yet.
    void addWPresetsToApplied(const WPresetList &presets);
    void removeSelectedAppliedPresets();
    void clearAppliedPresets();
    /// For a preset that the user has deleted.
    void removeFromApplied(const WPreset *preset);
    /// Puts these rows, in their order, before the row `toRow`.
    void moveAppliedPresets(const IndexList &rows, int toRow);

    /// Ascending.
    const IndexList &selectedRows() const { return m_selectedRows; }
    void selectRows(const IndexList &rows);
    /// Round and round.
    void selectNeighborAppliedPreset(Neighbor neighbor);

    /// Stores the names of the applied presets, if the user wants them back next time.
    void rememberAppliedPresets();
    /// Applies what was stored, if the user wants it back. A name that several presets have brings all of
    /// them.
    void restoreAppliedPresets(const WPresetList &wPresets);

Q_SIGNALS:
    void appliedAboutToChange();
    void appliedChanged();
    void selectedRowsChanged();
    void modeChanged(bool isSingle);
    void quickWPresetChanged();
    /// What is drawn on the photos has changed: other presets, or other values of one.
    void previewOutdated();

private:
    void setApplied(WPresetList presets, const IndexList &selectedRows);
    void observeAll(const WPresetList &former);

    UserDefaults &m_defaults;
    std::shared_ptr<WPreset> m_quickWPreset;
    WPresetList m_wPresetsApplied;
    IndexList m_selectedRows;
};

} // namespace plexa
