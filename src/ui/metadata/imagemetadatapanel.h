// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/metadata/metadatafieldrow.h"

#include <QUrl>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class QCheckBox;
class QFormLayout;
class QLabel;
class QPushButton;
class QTabWidget;
class QVBoxLayout;

namespace plexa
{

class AppController;
class CommandActions;
class UserDefaults;

/// The window that shows and edits the metadata of the selected photos. It follows the selection: what is
/// still being typed is committed first, and without a selection, or in Large Batch mode, it closes. Main
/// thread.
class ImageMetadataPanel final : public QWidget
{
    Q_OBJECT

public:
    /// All of them outlive the window.
    struct Services {
        AppController &controller;
        UserDefaults &defaults;
        CommandActions &actions;                   ///< of the main window, for undoing
        std::function<void(const QUrl &)> openUrl; ///< in the browser
    };

    explicit ImageMetadataPanel(const Services &services);
    ~ImageMetadataPanel() override;

    /// Shows the window, or closes it if it is shown. Nothing happens without a selection.
    void toggle();
    /// Edits the photos as far as a field was changed and not left.
    void commitEditing();

    /// The page of the map service for a position. The numbers are those of the file, without the letters of
    /// their hemispheres.
    static QUrl mapPage(const QVariant &latitude, const QVariant &longitude);

Q_SIGNALS:
    void shownChanged();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QWidget *makePage(const MetadataPage &page);
    void addRows(QFormLayout &form, const MetadataPage &page);
    QWidget *makeExifCheckBox();
    QWidget *makeMapRow();
    QPushButton *makeClearButton(MetadataClearing clearing);
    QWidget *makeBottomBar();
    void addClearActions();
    void restoreGeometryFromSettings();

    void followSelection();
    void setSaving(bool isSaving);
    void refresh();
    void refreshClearings();
    void refreshMap();
    void updateExifFieldsState();
    void showOnMap();
    void clear(MetadataClearing clearing);

    const Services m_services;
    MetadataEditing &m_editing;
    QLabel *const m_photosLabel;
    QTabWidget *const m_tabs;
    QLabel *const m_messageLabel;
    QCheckBox *m_exifCheckBox = nullptr;
    QPushButton *m_mapButton = nullptr;
    QLabel *m_mapLabel = nullptr;
    std::vector<std::vector<std::unique_ptr<MetadataFieldRow>>> m_rows; ///< by tab
    std::vector<std::pair<MetadataClearing, QAction *>> m_clearActions;
    bool m_isSaving = false;
};

} // namespace plexa
