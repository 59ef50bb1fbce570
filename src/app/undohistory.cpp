// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/undohistory.h"

#include "app/imagegathering.h"
#include "presets/presetsstore.h"

#include <algorithm>
#include <utility>

namespace plexa
{
namespace
{

/// Of QUndoCommand; commands of one kind may be joined.
enum StepKind { MovedByKeys = 1, EditedPreset = 2 };

} // namespace

/// One edit. It is recorded after it was carried out, so the first redo() of the stack does nothing.
class UndoHistory::Step : public QUndoCommand
{
public:
    Step(UndoHistory &history, const QString &text)
        : QUndoCommand(text)
        , m_history(history)
    {
    }

    void undo() final { setObsolete(!restore()); }
    void redo() final
    {
        if (!std::exchange(m_isNew, false))
            setObsolete(!repeat());
    }

protected:
    const Models &models() const { return m_history.m_models; }
    UndoHistory &history() const { return m_history; }

    // These return whether that changed anything.
    virtual bool restore() = 0;
    virtual bool repeat() = 0;

private:
    UndoHistory &m_history;
    bool m_isNew = true;
};

class UndoHistory::RemovalStep final : public Step
{
public:
    RemovalStep(UndoHistory &history, const QString &text, ImageRemoval removal)
        : Step(history, text)
        , m_removal(std::move(removal))
    {
    }

protected:
    bool restore() override
    {
        ImageSet &set = models().set;
        const std::size_t count = set.images()->size() + m_removal.images.images.size();
        if (set.imageListIsInBrowserMode() && count > ImageSet::kMaxImagesInBrowserMode)
            set.setImageListModeToBrowser(false);
        set.restoreImages(m_removal);
        models().gathering.importRestoredImages();
        return true;
    }
    bool repeat() override { return models().set.removeAgain(m_removal); }

private:
    const ImageRemoval m_removal;
};

class UndoHistory::OrderStep final : public Step
{
public:
    OrderStep(UndoHistory &history, const QString &text, ImageOrder before, ImageOrder after)
        : Step(history, text)
        , m_before(std::move(before))
        , m_after(std::move(after))
    {
    }

protected:
    bool restore() override { return models().set.restoreOrder(m_before); }
    bool repeat() override { return models().set.restoreOrder(m_after); }

private:
    const ImageOrder m_before;
    const ImageOrder m_after;
};

class UndoHistory::AppliedStep final : public Step
{
public:
    using Applied = AppliedPresets::Applied;

    AppliedStep(UndoHistory &history, const QString &text, Applied before, Applied after)
        : Step(history, text)
        , m_before(std::move(before))
        , m_after(std::move(after))
    {
    }

protected:
    bool restore() override { return apply(m_before); }
    bool repeat() override { return apply(m_after); }

private:
    bool apply(Applied applied)
    {
        // Presets that were deleted do not come back.
        const WPresetList &all = models().store.wPresets();
        const auto gone = std::erase_if(applied.presets, [&all](const auto &preset) {
            return std::find(all.begin(), all.end(), preset) == all.end();
        });
        if (gone > 0)
            applied.selectedRows.clear();
        AppliedPresets &model = models().applied;
        if (applied.presets == model.wPresetsApplied())
            return false;
        if (model.isInSingleMode()) // which would hide the change
            model.modeDidChange(AppliedPresets::Mode::Presets);
        model.restoreApplied(applied);
        return true;
    }

    const Applied m_before;
    const Applied m_after;
};

class UndoHistory::PlacesStep final : public Step
{
public:
    PlacesStep(UndoHistory &history, const QString &text, ManualPositions::EditKind kind, PlacesEdits edits)
        : Step(history, text)
        , m_kind(kind)
        , m_keyRun(history.m_keyRun)
        , m_isInSingleMode(models().applied.isInSingleMode())
        , m_edits(std::move(edits))
    {
    }

protected:
    int id() const override { return m_kind == ManualPositions::EditKind::Keys ? MovedByKeys : -1; }

    /// Steps of one movement with the keyboard.
    bool mergeWith(const QUndoCommand *command) override
    {
        const auto *const next = static_cast<const PlacesStep *>(command); // of the same id()
        PlacesEdit &edit = m_edits.front();
        const PlacesEdit &following = next->m_edits.front();
        if (next->m_keyRun != m_keyRun || following.image != edit.image || following.before != edit.after)
            return false;
        edit.after = following.after;
        setObsolete(edit.after == edit.before);
        return true;
    }

    bool restore() override { return exchange(&PlacesEdit::after, &PlacesEdit::before); }
    bool repeat() override { return exchange(&PlacesEdit::before, &PlacesEdit::after); }

private:
    /// Leaves photos alone whose places something else has changed.
    bool exchange(CustomOrigins PlacesEdit::*expected, CustomOrigins PlacesEdit::*wanted)
    {
        ImageList changed;
        for (const PlacesEdit &edit : m_edits) {
            if (edit.image->exchangeCustomWatermarkRectOrigins(edit.*expected, edit.*wanted))
                changed.push_back(edit.image);
        }
        if (changed.empty())
            return false;
        if (m_isInSingleMode != models().applied.isInSingleMode()) // which hides the change
            models().applied.modeDidChange(m_isInSingleMode ? AppliedPresets::Mode::Single
                                                            : AppliedPresets::Mode::Presets);
        history().show(changed);
        Q_EMIT history().placesRestored();
        return true;
    }

    const ManualPositions::EditKind m_kind;
    const int m_keyRun;
    const bool m_isInSingleMode;
    PlacesEdits m_edits;
};

class UndoHistory::TurnStep final : public Step
{
public:
    TurnStep(UndoHistory &history, const QString &text, ImageTransform operation, const TurnedImages &before)
        : Step(history, text)
        , m_operation(operation)
        , m_turned(std::make_shared<TurnedImages>(before))
    {
    }

protected:
    bool restore() override { return begin() && models().turns.undoOperation(m_operation, *m_turned); }
    bool repeat() override { return begin() && models().turns.performOperation(m_operation, images()); }

private:
    ImageList images() const
    {
        ImageList images;
        for (const TurnedImage &turned : *m_turned)
            images.push_back(turned.image);
        return images;
    }
    bool begin()
    {
        if (m_turned->empty())
            return false;
        history().show(images());
        history().m_turning = m_turned;
        return true;
    }

    const ImageTransform m_operation;
    const std::shared_ptr<TurnedImages> m_turned; // by the last run
};

class UndoHistory::PresetStep final : public Step
{
public:
    PresetStep(UndoHistory &history, const std::shared_ptr<WPreset> &preset, FieldId field,
               const FieldValue &before, const FieldValue &now)
        : Step(history, tr("Edit Watermark"))
        , m_preset(preset)
        , m_field(field)
        , m_run(history.m_presetRuns.numberOf(now))
        , m_before(before)
        , m_after(now)
    {
    }

protected:
    int id() const override { return EditedPreset; }

    bool mergeWith(const QUndoCommand *command) override
    {
        const auto *const next = static_cast<const PresetStep *>(command); // of the same id()
        if (next->m_preset != m_preset || next->m_field != m_field || next->m_run != m_run)
            return false;
        m_after = next->m_after;
        setObsolete(m_after == m_before);
        return true;
    }

    bool restore() override { return exchange(m_after, m_before); }
    bool repeat() override { return exchange(m_before, m_after); }

private:
    /// Leaves a preset alone that is gone, and a field that something else has changed.
    bool exchange(const FieldValue &expected, const FieldValue &wanted)
    {
        AppliedPresets &applied = models().applied;
        const WPresetList &all = models().store.wPresets();
        const bool isQuick = m_preset == applied.quickWPreset();
        if (!isQuick && std::find(all.begin(), all.end(), m_preset) == all.end())
            return false;
        if (m_preset->value(m_field) != expected)
            return false;
        if (isQuick != applied.isInSingleMode()) // which hides the change
            applied.modeDidChange(isQuick ? AppliedPresets::Mode::Single : AppliedPresets::Mode::Presets);
        m_preset->setValue(m_field, wanted);
        return true;
    }

    const std::shared_ptr<WPreset> m_preset;
    const FieldId m_field;
    const int m_run;
    const FieldValue m_before;
    FieldValue m_after;
};

class UndoHistory::RecordedStep final : public Step
{
public:
    RecordedStep(UndoHistory &history, const QString &text, std::function<bool()> restore,
                 std::function<bool()> repeat)
        : Step(history, text)
        , m_restore(std::move(restore))
        , m_repeat(std::move(repeat))
    {
    }

protected:
    bool restore() override { return m_restore(); }
    bool repeat() override { return m_repeat(); }

private:
    const std::function<bool()> m_restore;
    const std::function<bool()> m_repeat;
};

UndoHistory::UndoHistory(const Models &models)
    : m_models(models)
{
    m_stack.setUndoLimit(kMaxSteps);
    connectEdits();
    connect(&m_stack, &QUndoStack::indexChanged, this, &UndoHistory::changed);
}

UndoHistory::~UndoHistory()
{
    m_stack.disconnect(this); // it is cleared when it is destroyed
}

void UndoHistory::connectEdits()
{
    connect(&m_models.set, &ImageSet::imagesRemovedByUser, this, [this](const ImageRemoval &removal) {
        const std::size_t count = removal.images.images.size();
        const QString text =
            count == 1 ? tr("Remove Photo") : tr("Remove %n Photos", nullptr, static_cast<int>(count));
        m_stack.push(new RemovalStep(*this, text, removal));
    });
    connect(&m_models.set, &ImageSet::orderEdited, this,
            [this](const ImageOrder &before, const ImageOrder &after) {
                m_stack.push(new OrderStep(*this, tr("Change Order of Photos"), before, after));
            });
    using Kind = AppliedPresets::EditKind;
    connect(&m_models.applied, &AppliedPresets::appliedEdited, this,
            [this](Kind kind, const AppliedPresets::Applied &before) {
                const QString text = kind == Kind::Apply    ? tr("Apply Presets")
                                     : kind == Kind::Remove ? tr("Remove Applied Presets")
                                     : kind == Kind::Clear  ? tr("Clear Applied Presets")
                                                            : tr("Change Order of Presets");
                m_stack.push(new AppliedStep(*this, text, before, m_models.applied.applied()));
            });
    connect(&m_models.positions, &ManualPositions::edited, this,
            [this](ManualPositions::EditKind kind, const PlacesEdits &edits) {
                m_stack.push(new PlacesStep(*this, placesText(kind), kind, edits));
            });
    connect(&m_models.turns, &BatchImageOperation::turned, this, &UndoHistory::imagesTurned);
}

QString UndoHistory::placesText(ManualPositions::EditKind kind)
{
    switch (kind) {
    case ManualPositions::EditKind::Paste:
        return tr("Paste Positions");
    case ManualPositions::EditKind::Reset:
        return tr("Reset Positions");
    default:
        return tr("Move Watermark");
    }
}

void UndoHistory::imagesTurned(ImageTransform operation, const TurnedImages &before)
{
    if (const auto turning = std::exchange(m_turning, nullptr)) {
        *turning = before;
        return;
    }
    if (before.empty())
        return;
    const auto count = static_cast<int>(before.size());
    const bool isMirrored =
        operation == ImageTransform::MirrorLeftRight || operation == ImageTransform::MirrorTopBottom;
    const QString text = isMirrored
                             ? (count == 1 ? tr("Mirror Photo") : tr("Mirror %n Photos", nullptr, count))
                             : (count == 1 ? tr("Turn Photo") : tr("Turn %n Photos", nullptr, count));
    m_stack.push(new TurnStep(*this, text, operation, before));
}

void UndoHistory::presetEdited(const std::shared_ptr<WPreset> &preset, FieldId field,
                               const FieldValue &before, const FieldValue &now)
{
    m_stack.push(new PresetStep(*this, preset, field, before, now));
}

void UndoHistory::record(const QString &text, const std::function<bool()> &restore,
                         const std::function<bool()> &repeat)
{
    m_presetRuns.end();
    m_stack.push(new RecordedStep(*this, text, restore, repeat));
}

void UndoHistory::show(const ImageList &images)
{
    const auto &shown = m_models.set.shownImage();
    if (std::find(images.begin(), images.end(), shown) == images.end())
        m_models.set.selectImages(images);
}

void UndoHistory::undo()
{
    ++m_keyRun;
    m_presetRuns.end();
    // A step that did nothing has left the stack.
    for (int count = 0; canUndo() && count != m_stack.count();) {
        count = m_stack.count();
        m_stack.undo();
    }
}

void UndoHistory::redo()
{
    ++m_keyRun;
    m_presetRuns.end();
    for (int count = 0; canRedo() && count != m_stack.count();) {
        count = m_stack.count();
        m_stack.redo();
    }
}

} // namespace plexa
