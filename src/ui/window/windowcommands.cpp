// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/windowcommands.h"

#include "app/appcontroller.h"
#include "platform/applicationname.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "platform/workspace.h"
#include "presets/presetsstore.h"
#include "ui/browser/imagebrowserviewcontroller.h"
#include "ui/browser/imagelistpane.h"
#include "ui/help/helpwindow.h"
#include "ui/help/licensedialog.h"
#include "ui/help/supportmail.h"
#include "ui/metadata/imagemetadatapanel.h"
#include "ui/presets/presetsmanagers.h"
#include "ui/presets/presetspanel.h"
#include "ui/saving/savemultiplepanel.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/helpbutton.h"
#include "ui/widgets/imagechooser.h"
#include "ui/window/filemanager.h"
#include "ui/window/preferencesdialog.h"
#include "ui/window/savingend.h"

#include <QAction>
#include <QDesktopServices>
#include <QFileInfo>
#include <QMessageBox>
#include <QWhatsThis>

#include <algorithm>

namespace plexa
{

namespace
{

void connectSelection(CommandActions &actions, ImageSet &set, StatusManager &status)
{
    actions.setHandler(ActionId::SelectAll, [&set] { set.selection().selectAll(); });
    actions.setHandler(ActionId::SelectNone, [&set] { set.selection().selectNone(); });
    actions.setHandler(ActionId::InvertSelection, [&set] { set.selection().invertSelection(); });
    actions.setHandler(ActionId::MovePhotosUp, [&set] { set.stepSelectedImages(Step::Up); });
    actions.setHandler(ActionId::MovePhotosDown, [&set] { set.stepSelectedImages(Step::Down); });
    actions.setHandler(ActionId::RemoveSelected, [&set] { set.removeSelectedImages(); });
    actions.setHandler(ActionId::SwitchBatchMode, [&set] { set.switchImageListMode(); });
    actions.setHandler(ActionId::ShowInFileManager, [&set, &status] {
        QStringList paths;
        for (const std::shared_ptr<ImageObject> &image : set.selectedImages())
            paths.append(QFileInfo::exists(image->path()) ? image->path() : image->pathToImportFrom());
        showFilesInFileManager(paths, [&status](const QString &text) { status.notify(text); });
    });
}

void connectHistory(CommandActions &actions, UndoHistory &history)
{
    actions.setHandler(ActionId::Undo, [&history] { history.undo(); });
    actions.setHandler(ActionId::Redo, [&history] { history.redo(); });
    QObject::connect(&history, &UndoHistory::changed, &actions, [&actions, &history] {
        const auto name = [&actions](ActionId id, const QString &step) {
            const CommandRow &row = commandRow(id);
            const QString text = commandText(row);
            actions.setText(id, step.isEmpty() ? text : MainWindow::tr("%1 %2").arg(text, step),
                            commandToolTip(row));
        };
        name(ActionId::Undo, history.undoText());
        name(ActionId::Redo, history.redoText());
    });
}

void connectPhotos(CommandActions &actions, AppController &controller)
{
    ImageSorting &sorting = controller.sorting();
    actions.setHandler(ActionId::SortByName, [&sorting] { sorting.sort(ImageSorting::Key::Name); });
    actions.setHandler(ActionId::SortByDate, [&sorting] { sorting.sort(ImageSorting::Key::CaptureDate); });
    actions.setHandler(ActionId::ReverseOrder, [&sorting] { sorting.reverse(); });
    const auto turn = [&](ActionId id, ImageTransform transform) {
        actions.setHandler(id, [&controller, transform] { controller.startBatchOperation(transform); });
    };
    turn(ActionId::TurnLeft, ImageTransform::RotateCounterClockwise);
    turn(ActionId::TurnRight, ImageTransform::RotateClockwise);
    turn(ActionId::Turn180, ImageTransform::RotateHalf);
    turn(ActionId::FlipHorizontal, ImageTransform::MirrorLeftRight);
    turn(ActionId::FlipVertical, ImageTransform::MirrorTopBottom);

    using Presets = AppController::Presets;
    const auto copyAndReset = [&](ActionId copy, ActionId reset, Presets presets) {
        actions.setHandler(copy, [&controller, presets] {
            controller.copyManualPositioning(presets);
            controller.statusManager().notify(
                presets == Presets::All ? MainWindow::tr("Positions copied; select photos to paste them")
                                        : MainWindow::tr("Position copied; select photos to paste it"));
        });
        actions.setHandler(reset, [&controller, presets] { controller.resetManualPositioning(presets); });
    };
    copyAndReset(ActionId::CopyPosition, ActionId::ResetPosition, Presets::Current);
    copyAndReset(ActionId::CopyAllPositions, ActionId::ResetAllPositions, Presets::All);
    actions.setHandler(ActionId::PastePositions, [&controller] { controller.pasteManualPositioning(); });
    StatusManager &status = controller.statusManager();
    QObject::connect(&controller.manualPositions(), &ManualPositions::edited, &status,
                     [&status](ManualPositions::EditKind kind) {
                         if (kind == ManualPositions::EditKind::Paste)
                             status.notify(MainWindow::tr("Positions pasted"));
                     });
}

PresetsManagers &connectManagers(CommandActions &actions, const MainWindow::Services &services,
                                 MainWindow &window, const PresetsPanel &presetsPanel)
{
    using Kind = PresetsStore::Kind;
    auto *const managers =
        new PresetsManagers({services.controller, services.defaults, services.alerts, actions}, &window);
    // With the preset that is selected in the window.
    actions.setHandler(ActionId::ShowWatermarkPresets, [managers, &presetsPanel,
                                                        &store = services.controller.presetsStore()] {
        const WPresetList selected = presetsPanel.selectedWPresets();
        const WPresetList &all = store.wPresets();
        const auto row = std::find(all.begin(), all.end(), selected.size() == 1 ? selected.front() : nullptr);
        managers->show(Kind::Watermark, row == all.end() ? -1 : static_cast<int>(row - all.begin()));
    });
    QObject::connect(&presetsPanel, &PresetsPanel::newPresetShown, managers,
                     [managers] { managers->editName(Kind::Watermark); });
    actions.setHandler(ActionId::ShowSavingPresets, [managers] { managers->show(Kind::Saving); });
    for (const auto &[id, kind] : {std::pair(ActionId::ToggleWatermarkPresets, Kind::Watermark),
                                   {ActionId::ToggleSavingPresets, Kind::Saving}}) {
        QAction *const action = actions.action(id);
        action->setCheckable(true);
        const auto showState = [managers, action, kind = kind] {
            action->setChecked(managers->isShown(kind));
        };
        actions.setHandler(id, [managers, showState, kind = kind] {
            managers->toggle(kind);
            showState();
        });
        QObject::connect(managers, &PresetsManagers::shownChanged, action, showState);
    }
    QObject::connect(&window, &MainWindow::closed, managers, &PresetsManagers::closeAll);
    return *managers;
}

/// The window is made when it is needed first.
void connectMetadata(CommandActions &actions, const MainWindow::Services &services, MainWindow &window)
{
    struct Owner final : QObject {
        using QObject::QObject;
        std::unique_ptr<ImageMetadataPanel> panel;
    };
    auto *const owner = new Owner(&window);
    QAction *const action = actions.action(ActionId::ToggleMetadata);
    action->setCheckable(true);
    const auto showState = [owner, action] { action->setChecked(owner->panel && owner->panel->isVisible()); };
    actions.setHandler(ActionId::ToggleMetadata, [owner, &actions, services, showState] {
        if (!owner->panel) {
            const auto openUrl = [](const QUrl &url) { QDesktopServices::openUrl(url); };
            owner->panel = std::make_unique<ImageMetadataPanel>(
                ImageMetadataPanel::Services{services.controller, services.defaults, actions, openUrl});
            QObject::connect(owner->panel.get(), &ImageMetadataPanel::shownChanged, owner, showState);
        }
        owner->panel->toggle();
        showState();
    });
    QObject::connect(&window, &MainWindow::closed, owner, [owner] {
        if (owner->panel)
            owner->panel->close();
    });
}

void connectSaving(CommandActions &actions, const MainWindow::Services &services, MainWindow &window,
                   PresetsManagers &managers)
{
    auto *const panel =
        new SaveMultiplePanel({services.controller, services.defaults, services.alerts,
                               [&managers](int row) { managers.show(PresetsStore::Kind::Saving, row); }},
                              &window);
    AppController &controller = services.controller;
    QObject::connect(&controller, &AppController::savePanelWanted, panel, &SaveMultiplePanel::askAbout);
    QObject::connect(panel, &QDialog::accepted, &controller,
                     [&controller, panel] { controller.didEndSaveMultiplePanel(panel->photos()); });
    using Photos = AppController::Photos;
    actions.setHandler(ActionId::SaveSelected, [&controller] { controller.saveImages(Photos::Selected); });
    actions.setHandler(ActionId::SaveAll, [&controller] { controller.saveImages(Photos::All); });
    const auto openInCompanion = [&](ActionId id, Photos photos) {
        actions.setHandler(id, [&controller, photos] { controller.openInCompanionApplication(photos); });
    };
    openInCompanion(ActionId::OpenSelectedInCompanion, Photos::Selected);
    openInCompanion(ActionId::OpenAllInCompanion, Photos::All);
    new SavingEnd({controller, services.alerts}, window);
}

void showPreferences(const MainWindow::Services &services, MainWindow &window, ImageListPane &imageListPane)
{
    auto *const dialog = new PreferencesDialog(services.defaults, &window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog, &PreferencesDialog::settingChanged, &window,
                     [&applied = services.controller.appliedPresets(), &defaults = services.defaults,
                      &imageListPane](QLatin1String key) {
                         if (key == settings::combineAllAppliedPresetsInImage)
                             applied.setCombined(defaults.boolForKey(key));
                         else if (key == settings::browserShowOriginalOnMouseOver)
                             imageListPane.browserController().followShowOriginalOnMouseOver();
                     });
    dialog->open();
}

void showAbout(MainWindow &window)
{
    QMessageBox box(&window);
    box.setWindowTitle(MainWindow::tr("About %1").arg(applicationName()));
    box.setIconPixmap(window.windowIcon().pixmap(64));
    box.setText(QStringLiteral("%1 %2").arg(applicationName(), applicationVersion()));
    box.setInformativeText(
        MainWindow::tr("Puts watermarks on photographs in batches.\n\n"
                       "Copyright: the %1 authors. Free software under the GNU General Public "
                       "License, version 3 or later; it comes without any warranty.")
            .arg(applicationName()));
    box.exec();
}

/// Creates the window of the user guide when a place of it is wanted for the first time.
class HelpWindowOwner final : public QObject
{
    Q_OBJECT

public:
    explicit HelpWindowOwner(MainWindow &window)
        : QObject(&window)
    {
        QDesktopServices::setUrlHandler(kHelpScheme, this, "showPlace");
        connect(&window, &MainWindow::closed, this, [this] { m_window.reset(); });
    }
    ~HelpWindowOwner() override { QDesktopServices::unsetUrlHandler(kHelpScheme); }

    Q_INVOKABLE void showPlace(const QUrl &place)
    {
        if (!m_window)
            m_window = std::make_unique<HelpWindow>();
        m_window->showPlace(place.toString(QUrl::RemoveScheme));
    }

private:
    std::unique_ptr<HelpWindow> m_window;
};

void connectHelp(CommandActions &actions, const MainWindow::Services &services, MainWindow &window)
{
    new HelpWindowOwner(window);
    actions.setHandler(ActionId::UserGuide, [] { showHelp(QStringLiteral("index.html")); });
    actions.setHandler(ActionId::ContextHelp, [] { QWhatsThis::enterWhatsThisMode(); });
    actions.setHandler(ActionId::ContactSupport,
                       [&alerts = services.alerts] { contactSupport(alerts, openByScheme); });
    actions.setHandler(ActionId::License, [&window] {
        auto *const dialog = new LicenseDialog(LicenseDialog::Purpose::Reading, &window);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->show();
    });
    actions.setHandler(ActionId::About, [&window] { showAbout(window); });
}

} // namespace

void connectWindowCommands(CommandActions &actions, const MainWindow::Services &services, MainWindow &window,
                           ImageListPane &imageListPane, PresetsPanel &presetsPanel)
{
    AppController &controller = services.controller;
    connectSelection(actions, controller.imageSet(), services.controller.statusManager());
    connectPhotos(actions, controller);
    connectSaving(actions, services, window, connectManagers(actions, services, window, presetsPanel));
    connectHistory(actions, controller.undoHistory());
    connectMetadata(actions, services, window);

    const auto add = [&](ActionId id, ChooserKind kind) {
        actions.setHandler(id, [kind, &window, &gathering = controller.gathering()] {
            chooseImages(kind, &window,
                         [&gathering](const QStringList &paths) { gathering.scanImagesAtPaths(paths); });
        });
    };
    add(ActionId::AddImages, ChooserKind::Files);
    add(ActionId::AddFolder, ChooserKind::Folder);
    actions.setHandler(ActionId::Find, [&imageListPane] { imageListPane.startSearch(); });
    actions.setHandler(ActionId::CloseWindow, [&window] { window.close(); });
    actions.setHandler(ActionId::Quit, [&window] { Q_EMIT window.quitWanted(); });
    actions.setHandler(ActionId::Minimize, [&window] { window.showMinimized(); });
    actions.setHandler(ActionId::ToggleFullScreen,
                       [&window] { window.setWindowState(window.windowState() ^ Qt::WindowFullScreen); });
    actions.setHandler(ActionId::ShowMainWindow, [&window] { window.present(); });
    actions.setHandler(ActionId::Preferences, [services, &window, &imageListPane] {
        showPreferences(services, window, imageListPane);
    });
    connectHelp(actions, services, window);
}

} // namespace plexa

#include "windowcommands.moc"
