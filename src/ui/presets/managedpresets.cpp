// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/presets/managedpresets.h"

#include "app/appcontroller.h"
#include "presets/presetsfilereading.h"
#include "presets/wpresetarchive.h"
#include "ui/editors/savingpresetview.h"
#include "ui/presets/preseticons.h"
#include "ui/presets/wpreseteditor.h"
#include "ui/widgets/presetlistmodel.h"

#include <optional>
#include <type_traits>
#include <utility>

namespace plexa
{
namespace
{

using Kind = PresetsStore::Kind;

Result<void> writeFile(const WPresetList &presets, const QString &path)
{
    return writeWPresets(presets, path);
}

Result<void> writeFile(const SavingPresetList &presets, const QString &path)
{
    return SavingPreset::writeObjects(presets, path, presetsApplicationID());
}

template<class Preset, class Field, class Editor>
class ManagedPresetsOf final : public ManagedPresets
{
public:
    using Edits = PresetEditsOf<Preset, Field>;

    /// @param editor  reports edited fields
    ManagedPresetsOf(Kind kind, AppController &controller, Edits &edits, Editor *editor)
        : m_kind(kind)
        , m_controller(controller)
        , m_edits(edits)
        , m_model(edits.list())
        , m_editor(editor)
    {
        m_model.follow(edits.list());
        QObject::connect(editor, &Editor::edited, &m_model,
                         [&edits](const std::shared_ptr<Preset> &preset, Field field,
                                  const FieldValue &before,
                                  const FieldValue &now) { edits.fieldEdited(preset, field, before, now); });
    }

    ~ManagedPresetsOf() override { m_edits.setShowRows({}); }

    PresetListSignals &list() override { return m_edits.list(); }
    PresetListModelOf<Preset> &model() override { return m_model; }
    void showPictures(PresetListView &view) override
    {
        if constexpr (std::is_same_v<Preset, WPreset>)
            m_icons.emplace(m_controller, m_model, view);
    }

    QWidget *editor() override { return m_editor; }
    void edit(int row) override { m_editor->setPreset(row < 0 ? nullptr : at(row)); }

    int count() const override { return static_cast<int>(m_edits.list().presets().size()); }
    QString name(int row) const override { return at(row)->name(); }
    void rename(int row, const QString &name) override
    {
        const std::shared_ptr<Preset> preset = at(row);
        const FieldValue before = preset->name();
        preset->setName(name);
        if (before != FieldValue(name))
            m_edits.fieldEdited(preset, Field::Name, before, name);
    }

    int insertNew(const IndexList &rows) override { return m_edits.insertNew(rows); }
    int duplicate(const IndexList &rows) override { return m_edits.duplicate(rows); }
    int remove(const IndexList &rows) override { return m_edits.remove(rows); }
    void move(const IndexList &rows, int toRow) override { m_edits.move(rows, toRow); }
    void step(const IndexList &rows, Step step) override { m_edits.step(rows, step); }

    void setShowRows(const std::function<void(const IndexList &rows)> &show) override
    {
        m_edits.setShowRows(show);
    }

    void importExamples() override
    {
        m_edits.edit(PresetsStore::tr("Add Examples"),
                     [this] { m_controller.presetsStore().importExamplePresets(m_kind); });
    }
    Result<void> write(const IndexList &rows, const QString &path) const override
    {
        typename Edits::Presets presets;
        for (const int row : rows)
            presets.push_back(at(row));
        return writeFile(presets, path);
    }

private:
    const std::shared_ptr<Preset> &at(int row) const
    {
        return m_edits.list().presets()[static_cast<std::size_t>(row)];
    }

    const Kind m_kind;
    AppController &m_controller;
    Edits &m_edits;
    PresetListModelOf<Preset> m_model;
    std::optional<PresetIcons> m_icons;
    Editor *const m_editor;
};

} // namespace

std::unique_ptr<ManagedPresets> managedPresets(Kind kind, AppController &controller, UserDefaults &defaults)
{
    if (kind == Kind::Watermark)
        return std::make_unique<ManagedPresetsOf<WPreset, FieldId, WPresetViewController>>(
            kind, controller, controller.wPresetEdits(), makeWPresetEditor(controller, defaults));
    auto *const editor = new SavingPresetView;
    editor->setValueOnPhoto(valueOnShownPhoto(controller));
    return std::make_unique<ManagedPresetsOf<SavingPreset, SavingField, SavingPresetView>>(
        kind, controller, controller.savingPresetEdits(), editor);
}

} // namespace plexa
