// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"
#include "images/imageobject.h"
#include "watermark/wpreset.h"

#include <QObject>

#include <optional>

namespace plexa
{

class UserDefaults;

/// The watermark presets that are drawn on the photos: in single mode the quick preset, in presets mode the
/// applied ones, which are objects of the list of all presets. Rows are those of the applied list. Main
/// thread.
class AppliedPresets final : public QObject
{
    Q_OBJECT

public:
    enum class Mode { Single, Presets };
    enum class Neighbor { Next, Previous };

    /// @param defaults  outlives this object
    explicit AppliedPresets(UserDefaults &defaults);
    ~AppliedPresets() override;

    /// The preset of single mode; null before the first one is set.
    const std::shared_ptr<WPreset> &quickWPreset() const { return m_quickWPreset; }
    void setQuickWPreset(const std::shared_ptr<WPreset> &preset);

    const WPresetList &wPresetsApplied() const { return m_wPresetsApplied; }

    bool isInSingleMode() const;
    /// Stores the mode.
    void modeDidChange(Mode mode);

    /// The presets that are drawn, in this order; may be empty in presets mode.
    WPresetList effectivePresets() const;
    /// The same with their values of now, for work that continues while the user edits.
    std::vector<AppliedPreset> effectivePresetsNow() const;

    /// Does one copy of a photo get all of them?
    bool areCombined() const;
    /// Stores it.
    void setCombined(bool areCombined);
    /// The watermarks of one copy, as thumbnails show it: of all presets if they are combined, else of the
    /// current preset, or of the first one.
    std::vector<AppliedPreset> presetsOfOneCopyNow() const;

    /// The preset of commands for one preset; may be null.
    std::shared_ptr<WPreset> currentWPreset() const;

    /// Adds the presets that are not applied yet, at the end or before the row `toRow`, and selects the first
    /// of `presets`, because the preview shows the selected one.
    void addWPresetsToApplied(const WPresetList &presets, std::optional<int> toRow = {});
    /// Selects the one that follows the first of them, or the last one.
    void removeSelectedAppliedPresets();
    void clearAppliedPresets();
    void removeFromApplied(const WPreset *preset);
    /// Moves these rows, in their order, to the place before `toRow`.
    void moveAppliedPresets(const IndexList &rows, int toRow);
    /// Moves each group of selected neighbors past its neighbor.
    void stepSelectedAppliedPresets(Step step);

    enum class EditKind { Apply, Remove, Clear, Reorder };
    struct Applied {
        WPresetList presets;
        IndexList selectedRows;
        bool operator==(const Applied &) const = default;
    };
    Applied applied() const { return {m_wPresetsApplied, m_selectedRows}; }
    /// Applies these presets instead. Not an edit.
    void restoreApplied(const Applied &applied);
    /// Applies those of an earlier run, and selects the first one, because the preview shows it.
    void startWith(const WPresetList &presets);

    /// Ascending.
    const IndexList &selectedRows() const { return m_selectedRows; }
    WPresetList selectedWPresets() const;
    void selectRows(const IndexList &rows);
    /// After the last one follows the first.
    void selectNeighborAppliedPreset(Neighbor neighbor);

    /// Stores the names of the applied presets, if the settings ask for it.
    void rememberAppliedPresets();
    /// Applies all presets of the stored names, if the settings ask for it.
    void restoreAppliedPresets(const WPresetList &wPresets);

Q_SIGNALS:
    void appliedAboutToChange();
    void appliedChanged();
    /// The user has changed the list. Sent after the other signals.
    void appliedEdited(plexa::AppliedPresets::EditKind kind, const plexa::AppliedPresets::Applied &before);
    /// Or the same rows have other presets.
    void selectedRowsChanged();
    void modeChanged(bool isSingle);
    void quickWPresetChanged();
    void combinedChanged();
    /// Other presets are drawn, or other values of one.
    void previewOutdated();

private:
    void edit(EditKind kind, WPresetList presets, const IndexList &selectedRows);
    WPresetList appliedAnd(const WPresetList &presets) const;
    void setApplied(WPresetList presets, const IndexList &selectedRows);
    void setOrder(const IndexList &formerRows);
    void observePresets();

    UserDefaults &m_defaults;
    std::shared_ptr<WPreset> m_quickWPreset;
    WPresetList m_wPresetsApplied;
    IndexList m_selectedRows;
    std::unique_ptr<QObject> m_observer; ///< of the presets above
};

} // namespace plexa
