// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/appliedpresets.h"
#include "app/batchimageoperation.h"
#include "app/editruns.h"
#include "app/imageset.h"
#include "app/manualpositions.h"

#include <QUndoStack>

#include <functional>

namespace plexa
{

class ImageGathering;
class PresetsStore;

/// The changes of the main window that can be undone: removed photos and their order, the applied presets,
/// rotations, places of watermarks, and fields of presets. It records what the models report as edits of the
/// user; a step that changes nothing any more, because its photos or presets are gone, is passed over. Main
/// thread.
class UndoHistory final : public QObject
{
    Q_OBJECT

public:
    /// More steps are forgotten, the oldest first.
    static constexpr int kMaxSteps = 200;

    /// All of them outlive this object.
    struct Models {
        ImageSet &set;
        ImageGathering &gathering;
        AppliedPresets &applied;
        PresetsStore &store;
        ManualPositions &positions;
        BatchImageOperation &turns;
    };
    explicit UndoHistory(const Models &models);
    ~UndoHistory() override;

    /// False while photos are being rotated or positions pasted.
    bool canUndo() const { return m_stack.canUndo() && !isBusy(); }
    bool canRedo() const { return m_stack.canRedo() && !isBusy(); }
    /// The step that undo() or redo() is about: "Remove 3 Photos"; empty without one.
    QString undoText() const { return m_stack.undoText(); }
    QString redoText() const { return m_stack.redoText(); }

    /// Does nothing if that is not possible. Rotations are undone in the background.
    void undo();
    void redo();

    /// The user has changed a field of a watermark preset in an editor. Changes of one field without a pause
    /// are one step, and so is a drag of a slider.
    void presetEdited(const std::shared_ptr<WPreset> &preset, FieldId field, const FieldValue &before,
                      const FieldValue &now);

    /// The user has changed something that two functions change back and again.
    /// @param restore  returns whether it changed anything, like `repeat`
    void record(const QString &text, const std::function<bool()> &restore,
                const std::function<bool()> &repeat);

    /// Selects these photos unless the user sees one of them already.
    void show(const ImageList &images);

Q_SIGNALS:
    /// Other steps can be undone or redone.
    void changed();
    /// Places of watermarks have changed back or again.
    void placesRestored();

private:
    class Step;
    class RemovalStep;
    class OrderStep;
    class AppliedStep;
    class PlacesStep;
    class TurnStep;
    class PresetStep;
    class RecordedStep;

    bool isBusy() const { return m_models.turns.isRunning() || m_models.positions.isPasting(); }
    void connectEdits();
    void imagesTurned(ImageTransform operation, const TurnedImages &before);
    static QString placesText(ManualPositions::EditKind kind);

    const Models m_models;
    int m_keyRun = 0; // a movement with the keyboard ends when something is undone
    EditRuns m_presetRuns;
    // Of the rotation that is being undone or redone: its step may be discarded meanwhile.
    std::shared_ptr<TurnedImages> m_turning;
    QUndoStack m_stack{this};
};

} // namespace plexa
