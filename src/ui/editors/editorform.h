// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/editors/presetbinder.h"

#include <QFormLayout>
#include <QWidget>

#include <vector>

namespace plexa
{

class FontCatalog;
class PhotoFacts;
class PresetsStore;
class UserDefaults;

/// What the editors of presets need. All outlive them.
struct EditorServices {
    PresetsStore &store;
    const FontCatalog &fonts;
    UserDefaults &defaults;
};

/// One part of an editor: rows of a label and the controls of some fields. Names of controls are those of
/// their fields with the kind behind them ("widthTextField", "widthUnitPopUp"). Main thread.
class EditorForm final : public QWidget
{
    Q_OBJECT

public:
    explicit EditorForm(PresetBinder &binder, QWidget *parent = nullptr);

    /// A row; the label belongs to the first control. @return the row, to hide it
    QWidget *addRow(const QString &label, std::initializer_list<QWidget *> controls);
    QWidget *addRow(const QString &label, QWidget *control) { return addRow(label, {control}); }

    /// A row with a check box, for example, instead of a label. @return the controls, to hide them
    QWidget *addLabeledRow(QWidget *label, std::initializer_list<QWidget *> controls);

    /// Gives the labels of all forms in an editor one width, so that their controls begin in one line.
    static void alignLabels(const QWidget &editor);

    /// Hides these rows unless the rule holds.
    void showWhile(std::initializer_list<QWidget *> rows, const PresetBinder::Rule &rule);

    /// Controls of a field, bound.
    QWidget *number(FieldId field, const QString &purpose, const QString &suffix = {});
    /// In degrees.
    QWidget *angle(FieldId field, const QString &purpose);
    QWidget *unit(FieldId field, const QString &purpose);
    QWidget *check(FieldId field, const QString &text);

    /// Makes the mouse wheel scroll the panel unless the control has the focus. Undo and redo in a number
    /// field are left to the window, whose steps are changes of the preset.
    static void guard(QWidget &control);

private:
    static QWidget *makeRow(std::initializer_list<QWidget *> controls);

    PresetBinder &m_binder;
    QFormLayout *const m_layout;
    std::vector<QWidget *> m_labels; // children
};

} // namespace plexa
