// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/sizeestimate.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QFormLayout;
class QLabel;
class QPushButton;

namespace plexa
{

class Alerts;
class AppController;
class ChoiceButtons;
class ElidedLabel;
class SavingPresetView;
enum class SavingField;
class UserDefaults;

/// Asks where the copies of a run go and how they are named and written, in a sheet of the window. The
/// settings are stored when the user accepts; the quick saving preset is edited at once. Main thread.
class SaveMultiplePanel final : public QDialog
{
    Q_OBJECT

public:
    struct Services {
        AppController &controller;
        UserDefaults &defaults;
        Alerts &alerts;
        /// Shows the manager of saving presets. @param row  to select; -1: none
        std::function<void(int row)> managePresets;
    };

    /// @param services  outlive the panel
    SaveMultiplePanel(const Services &services, QWidget *parent);

    /// Shows the panel for these photos, with the present settings.
    void askAbout(const ImageList &photos);

    /// The photos that askAbout() was called with.
    const ImageList &photos() const { return m_photos; }

    void accept() override;

protected:
    void hideEvent(QHideEvent *event) override;

private:
    QWidget *makeDestination();
    QWidget *makePreset();
    QWidget *makeButtons();
    /// A folder that the user chooses.
    struct FolderControl {
        ElidedLabel &label;
        QString &path;
        bool isOutput;
    };
    QWidget *makeFolderRow(const QString &name, const QString &purpose, const FolderControl &control);
    void setupControls();
    void radioButtonChosen();
    void chooseFolder(const FolderControl &control);
    void setFolder(const FolderControl &control, const QString &path);
    void showSavingPresetsMenu();
    /// A copy that each photo gets.
    struct Copy : SizeEstimate::Copy {
        QString wPresetName; ///< in its file name
    };
    std::vector<Copy> copiesOfPhoto() const;
    void quickPresetChanged(SavingField field);
    void otherPresetsChanged();
    void estimateSize();
    void showCount();
    void showExamples();
    void makeRoom();

    const Services m_services;
    ImageList m_photos;
    QString m_destination; // the output folder
    QString m_replicationStart;
    QFormLayout *m_destinationForm = nullptr;
    ChoiceButtons *m_radioButtons = nullptr;
    QWidget *m_destinationRow = nullptr;
    QWidget *m_replicationRow = nullptr;
    ElidedLabel *const m_destinationLabel;
    ElidedLabel *const m_replicationLabel;
    QCheckBox *const m_replicates;
    SavingPresetView *const m_presetView;
    QPushButton *const m_savingPresetsButton;
    QLabel *const m_count;
    QLabel *const m_examples;
    SizeEstimate m_size;
};

} // namespace plexa
