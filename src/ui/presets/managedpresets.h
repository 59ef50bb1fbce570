// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"
#include "platform/result.h"
#include "presets/presetsstore.h"

#include <functional>
#include <memory>

class QWidget;

namespace plexa
{

class AppController;
class PresetListSignals;
class PresetListView;
class PresetRowsModel;
class UserDefaults;

/// The presets of one kind as their manager edits them, whatever the kind. Rows are those of the list; a row
/// that is asked for exists. What changes the list can be undone. Main thread.
class ManagedPresets
{
public:
    virtual ~ManagedPresets() = default;

    virtual PresetListSignals &list() = 0;
    /// Follows the list.
    virtual PresetRowsModel &model() = 0;
    /// Shows pictures of the presets in this list of the model, if the kind has them. Once.
    virtual void showPictures(PresetListView &view) = 0;

    /// The editor of one preset. The caller places it in a window, which owns it.
    virtual QWidget *editor() = 0;
    /// Edits this preset; -1: none.
    virtual void edit(int row) = 0;

    virtual int count() const = 0;
    virtual QString name(int row) const = 0;
    virtual void rename(int row, const QString &name) = 0;

    // As the functions of PresetList.
    virtual int insertNew(const IndexList &rows) = 0;
    virtual int duplicate(const IndexList &rows) = 0;
    virtual int remove(const IndexList &rows) = 0;
    virtual void move(const IndexList &rows, int toRow) = 0;
    virtual void step(const IndexList &rows, Step step) = 0;

    /// Of PresetEdits; until this object is destroyed.
    virtual void setShowRows(const std::function<void(const IndexList &rows)> &show) = 0;

    virtual void importExamples() = 0;
    /// Writes these presets to a file of their own.
    virtual Result<void> write(const IndexList &rows, const QString &path) const = 0;
};

/// The arguments outlive the result; the controller also outlives its editor.
std::unique_ptr<ManagedPresets> managedPresets(PresetsStore::Kind kind, AppController &controller,
                                               UserDefaults &defaults);

} // namespace plexa
