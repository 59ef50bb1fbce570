// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/saving/savemultiplepanel.h"

#include "app/appcontroller.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "presets/presetsstore.h"
#include "saving/outputnaming.h"
#include "ui/editors/savingpresetview.h"
#include "ui/widgets/choicebuttons.h"
#include "ui/widgets/elidedlabel.h"
#include "ui/widgets/helpbutton.h"
#include "ui/widgets/linebreaks.h"
#include "ui/widgets/look.h"
#include "ui/widgets/sectiontitle.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QFrame>
#include <QHideEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QStandardPaths>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace plexa
{
namespace
{

enum Choice { BesideOriginals, InOneFolder };

constexpr int kExamples = 3;
constexpr int kWidth = 560;

/// Nothing reads it back, but settings in use have it.
const QString kChosenReplicationFolder = QStringLiteral("fileExportReplicationStartDirectory");

QString picturesFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return folder.isEmpty() ? QDir::home().filePath(QStringLiteral("Pictures")) : folder;
}

/// Without symbolic links, as far as it exists.
QString resolved(const QString &folder)
{
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    return canonical.isEmpty() ? folder : canonical;
}

/// @param others  of the copies before it
QString withConflict(const QString &path, const QString &photo, const QStringList &others)
{
    if (others.contains(path))
        return SaveMultiplePanel::tr("%1 (the same name again)").arg(path);
    if (path == photo)
        return SaveMultiplePanel::tr("%1 (is the original)").arg(path);
    return QFileInfo::exists(path) ? SaveMultiplePanel::tr("%1 (exists already)").arg(path) : path;
}

QFrame *line()
{
    auto *const line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    QPalette palette = line->palette();
    palette.setColor(QPalette::WindowText, look::kSeparator);
    line->setPalette(palette);
    return line;
}

} // namespace

SaveMultiplePanel::SaveMultiplePanel(const Services &services, QWidget *parent)
    : QDialog(parent)
    , m_services(services)
    , m_destinationLabel(new ElidedLabel(Qt::ElideMiddle))
    , m_replicationLabel(new ElidedLabel(Qt::ElideMiddle))
    , m_replicates(new QCheckBox(tr("Recreate the folders of the originals in it")))
    , m_presetView(new SavingPresetView)
    , m_savingPresetsButton(new QPushButton(tr("Saving Presets ▾")))
    , m_count(new QLabel)
    , m_examples(new QLabel)
{
    setObjectName(QStringLiteral("saveMultiplePanel"));
    setWindowTitle(tr("Save Watermarked Copies"));
    setModal(true);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(look::kPageGap, look::kPageGap, look::kPageGap, look::kLargeGap);
    layout->setSpacing(look::kLargeGap);
    layout->addWidget(makeDestination());
    layout->addWidget(line());
    layout->addWidget(makePreset());
    layout->addWidget(line());
    m_count->setObjectName(QStringLiteral("copiesLabel"));
    m_count->setToolTip(tr("The size is estimated from a few copies that are made for that"));
    connect(&m_size, &SizeEstimate::changed, this, &SaveMultiplePanel::showCount);
    m_examples->setObjectName(QStringLiteral("exampleNames"));
    m_examples->setTextFormat(Qt::PlainText);
    m_examples->setWordWrap(true);
    auto *const copies = new QVBoxLayout;
    copies->setSpacing(look::kSmallGap);
    copies->addWidget(m_count);
    copies->addWidget(m_examples);
    layout->addLayout(copies);
    layout->addWidget(makeButtons());
    setMinimumWidth(kWidth);
}

QWidget *SaveMultiplePanel::makeDestination()
{
    auto *const destination = new QWidget;
    m_destinationForm = new QFormLayout(destination);
    m_destinationForm->setContentsMargins(0, 0, 0, 0);
    m_destinationForm->setHorizontalSpacing(look::kLargeGap);
    m_destinationForm->setVerticalSpacing(look::kGap);
    m_destinationForm->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_radioButtons = new ChoiceButtons(tr("Where the copies go"), ChoiceButtons::Look::RadioButtons);
    m_radioButtons->setObjectName(QStringLiteral("radioButtons"));
    m_radioButtons->addChoice(tr("Beside the originals"));
    m_radioButtons->addChoice(tr("In one folder"));
    connect(m_radioButtons, &ChoiceButtons::chosen, this, &SaveMultiplePanel::radioButtonChosen);
    m_destinationForm->addRow(tr("Save copies"), m_radioButtons);

    m_destinationRow = makeFolderRow(QStringLiteral("destPathControl"), tr("Choose the folder"),
                                     {*m_destinationLabel, m_destination, true});
    m_destinationForm->addRow(tr("Folder"), m_destinationRow);
    m_replicates->setObjectName(QStringLiteral("replicateOrigDirStructureCheckBox"));
    m_replicates->setToolTip(tr("Copies of photos in subfolders go into subfolders of the same names"));
    connect(m_replicates, &QAbstractButton::toggled, this, [this](bool isOn) {
        m_services.defaults.setObject(settings::replicateOrigDirStructure, isOn);
        m_destinationForm->setRowVisible(m_replicationRow, isOn && m_radioButtons->index() == InOneFolder);
        showExamples();
    });
    m_destinationForm->addRow(QString(), m_replicates);
    m_replicationRow = makeFolderRow(QStringLiteral("replicationPathControl"),
                                     tr("Choose the folder whose subfolders are recreated"),
                                     {*m_replicationLabel, m_replicationStart, false});
    m_destinationForm->addRow(tr("Starting from"), m_replicationRow);
    return destination;
}

QWidget *SaveMultiplePanel::makeFolderRow(const QString &name, const QString &purpose,
                                          const FolderControl &control)
{
    auto *const button = new QPushButton(tr("Choose…"));
    button->setObjectName(name);
    button->setAccessibleName(purpose);
    button->setToolTip(purpose);
    button->setAutoDefault(false); // Enter saves
    connect(button, &QAbstractButton::clicked, this, [this, control] { chooseFolder(control); });

    auto *const above = new QToolButton;
    above->setObjectName(name + QLatin1StringView("Components"));
    above->setIcon(QIcon(QStringLiteral(":/icons/show-folder.svg")));
    above->setAccessibleName(tr("Folders above"));
    above->setToolTip(tr("Choose one of the folders above this one"));
    above->setFocusPolicy(Qt::TabFocus);
    above->setPopupMode(QToolButton::InstantPopup);
    auto *const menu = new QMenu(above);
    above->setMenu(menu);
    connect(menu, &QMenu::aboutToShow, this, [this, menu, control] {
        menu->clear();
        QDir folder(control.path);
        while (!control.path.isEmpty() && !folder.isRoot()) {
            folder.setPath(QFileInfo(folder.absolutePath()).path());
            menu->addAction(folder.path().replace(u'&', QLatin1StringView("&&")), this,
                            [this, control, path = folder.path()] { setFolder(control, path); });
        }
        if (menu->isEmpty())
            menu->addAction(tr("There is no folder above"))->setEnabled(false);
    });

    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kGap);
    layout->addWidget(&control.label, 1);
    layout->addWidget(above);
    layout->addWidget(button);
    return row;
}

QWidget *SaveMultiplePanel::makePreset()
{
    PresetsStore &store = m_services.controller.presetsStore();
    const auto follow = [this, &store] {
        m_presetView->setPreset(store.quickSavingPreset());
        connect(store.quickSavingPreset().get(), &SavingPreset::fieldChanged, this,
                &SaveMultiplePanel::quickPresetChanged, Qt::UniqueConnection);
    };
    connect(&store, &PresetsStore::quickSavingPresetChanged, this, follow);
    connect(&m_services.controller, &AppController::previewOutdated, this,
            &SaveMultiplePanel::otherPresetsChanged);
    connect(&store.savingPresetList(), &PresetListSignals::edited, this,
            &SaveMultiplePanel::otherPresetsChanged);
    // The window of metadata may be open beside the panel.
    connect(&m_services.controller.metadataEditing(), &MetadataEditing::changed, this,
            &SaveMultiplePanel::otherPresetsChanged);
    follow();
    m_presetView->setObjectName(QStringLiteral("quickSavingPresetView"));
    m_presetView->setValueOnPhoto([this](const QString &token) -> std::optional<QString> {
        return m_photos.empty() ? std::nullopt : m_photos.front()->facts().stringForInfoToken(token);
    });
    return m_presetView;
}

QWidget *SaveMultiplePanel::makeButtons()
{
    auto *const box = new QDialogButtonBox(QDialogButtonBox::Cancel);
    QPushButton *const save = box->addButton(tr("Save"), QDialogButtonBox::AcceptRole);
    save->setObjectName(QStringLiteral("okButton"));
    box->button(QDialogButtonBox::Cancel)->setAutoDefault(false);
    save->setDefault(true);
    save->setFocus(); // Enter saves
    m_savingPresetsButton->setObjectName(QStringLiteral("savingPresetsButton"));
    m_savingPresetsButton->setAccessibleName(tr("Saving Presets"));
    m_savingPresetsButton->setToolTip(tr("Load these settings from a saving preset, or keep them as one"));
    m_savingPresetsButton->setAutoDefault(false);
    box->addButton(m_savingPresetsButton, QDialogButtonBox::ActionRole);
    auto *const help =
        new HelpButton(QStringLiteral("saving.html"), tr("Help on saving"), tr("Explain saving (F1)"));
    box->addButton(help->withKey(), QDialogButtonBox::HelpRole);
    connect(m_savingPresetsButton, &QAbstractButton::clicked, this,
            &SaveMultiplePanel::showSavingPresetsMenu);
    connect(box, &QDialogButtonBox::accepted, this, &SaveMultiplePanel::accept);
    connect(box, &QDialogButtonBox::rejected, this, &SaveMultiplePanel::reject);
    return box;
}

void SaveMultiplePanel::askAbout(const ImageList &photos)
{
    m_photos = photos;
    setupControls();
    open();
    makeRoom();
    estimateSize();
}

void SaveMultiplePanel::setupControls()
{
    const UserDefaults &defaults = m_services.defaults;
    m_radioButtons->setIndex(defaults.boolForKey(settings::saveAllToOneDirectory) ? InOneFolder
                                                                                  : BesideOriginals);
    const QString stored = defaults.stringForKey(settings::savingDirectory);
    m_destination = resolved(stored.isEmpty() ? picturesFolder() : stored);
    m_replicationStart = defaults.stringForKey(settings::replicationStartDirectory);
    m_destinationLabel->setText(m_destination);
    m_replicationLabel->setText(m_replicationStart.isEmpty() ? tr("the root folder") : m_replicationStart);
    m_replicates->setChecked(defaults.boolForKey(settings::replicateOrigDirStructure));
    radioButtonChosen();
}

/// Hides the folders that are not used.
void SaveMultiplePanel::radioButtonChosen()
{
    const bool isInOneFolder = m_radioButtons->index() == InOneFolder;
    m_destinationForm->setRowVisible(m_destinationRow, isInOneFolder);
    m_destinationForm->setRowVisible(m_replicates, isInOneFolder);
    m_destinationForm->setRowVisible(m_replicationRow, isInOneFolder && m_replicates->isChecked());
    showExamples();
}

void SaveMultiplePanel::chooseFolder(const FolderControl &control)
{
    auto *const dialog = new QFileDialog(
        this, control.isOutput ? tr("Folder of the Copies") : tr("Start Folder"), control.path);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setOption(QFileDialog::ReadOnly, !control.isOutput); // no new folders where none is needed
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, control](const QString &chosen) { setFolder(control, chosen); });
    dialog->open();
}

void SaveMultiplePanel::setFolder(const FolderControl &control, const QString &path)
{
    control.path = path;
    control.label.setText(path);
    if (!control.isOutput)
        m_services.defaults.setObject(kChosenReplicationFolder, path);
    showExamples();
}

void SaveMultiplePanel::showSavingPresetsMenu()
{
    PresetsStore &store = m_services.controller.presetsStore();
    QMenu menu(this);
    QMenu *const load = menu.addMenu(tr("Load from preset"));
    for (const std::shared_ptr<SavingPreset> &preset : store.savingPresets())
        load->addAction(QString(preset->name()).replace(u'&', QLatin1StringView("&&")), this,
                        [&store, preset] { store.quickSavingPreset()->copyFrom(*preset); });
    load->setEnabled(!store.savingPresets().empty());
    menu.addAction(tr("Save as new preset"), this, [this, &store] {
        std::shared_ptr<SavingPreset> copy = store.quickSavingPreset()->copy();
        copy->setName(tr("Saved preset"));
        m_services.managePresets(m_services.controller.savingPresetEdits().append({std::move(copy)}));
    });
    menu.addAction(tr("Manage presets"), this, [this] { m_services.managePresets(-1); });
    menu.exec(m_savingPresetsButton->mapToGlobal(m_savingPresetsButton->rect().bottomLeft()));
}

std::vector<SaveMultiplePanel::Copy> SaveMultiplePanel::copiesOfPhoto() const
{
    const AppliedPresets &applied = m_services.controller.appliedPresets();
    const UserDefaults &defaults = m_services.defaults;
    const bool isCombined = applied.areCombined();
    std::vector<Copy> copies;
    for (const AppliedPreset &preset : applied.effectivePresetsNow()) {
        if (isCombined && !copies.empty()) {
            copies.front().presets.push_back(preset);
            continue;
        }
        const auto assigned =
            std::dynamic_pointer_cast<const SavingPreset>(preset.values.assignedSavingPreset);
        const bool usesAssigned =
            assigned && !isCombined && !defaults.boolForKey(settings::ignoreSavingPresetsInSizePresets);
        const SavingPreset &savingPreset =
            usesAssigned ? *assigned : *m_services.controller.presetsStore().quickSavingPreset();
        copies.push_back({{{preset}, savingPreset.values()}, preset.values.name});
    }
    return copies;
}

void SaveMultiplePanel::quickPresetChanged(SavingField field)
{
    showExamples();
    const bool isOfName = field == SavingField::Name || field == SavingField::FilenameTokens ||
                          field == SavingField::FileBaseNameCase || field == SavingField::FileExtensionCase;
    if (isVisible() && !isOfName)
        estimateSize();
}

/// Of watermark presets or assigned saving presets, in a manager.
void SaveMultiplePanel::otherPresetsChanged()
{
    if (!isVisible())
        return;
    showExamples();
    estimateSize();
}

void SaveMultiplePanel::estimateSize()
{
    const std::vector<Copy> copies = copiesOfPhoto();
    m_size.start({m_photos, {copies.begin(), copies.end()}});
}

void SaveMultiplePanel::hideEvent(QHideEvent *event)
{
    QDialog::hideEvent(event);
    if (!event->spontaneous()) // minimized
        m_size.stop();
}

void SaveMultiplePanel::showCount()
{
    const auto count = static_cast<int>(m_photos.size() * copiesOfPhoto().size());
    const QString copies = count == 1 ? tr("1 copy") : tr("%n copies", nullptr, count);
    if (m_size.bytes())
        m_count->setText(
            tr("%1, about %2")
                .arg(copies, locale().formattedDataSize(*m_size.bytes(), 1, QLocale::DataSizeSIFormat)));
    else if (m_size.isRunning())
        m_count->setText(tr("%1; their size is being estimated…").arg(copies));
    else
        m_count->setText(copies);
}

/// The names of the first copies as they will be where no file has them yet.
void SaveMultiplePanel::showExamples()
{
    OutputFolders folders;
    if (m_radioButtons->index() == InOneFolder)
        folders.destDirectory = m_destination;
    folders.replicateOrigDirStructure = m_replicates->isChecked();
    folders.replicationStartDirectory = m_replicationStart;
    folders.makesFolders = false;
    const OutputNaming naming(folders, m_services.alerts);
    const std::vector<Copy> copies = copiesOfPhoto();
    const std::size_t count = m_photos.size() * copies.size();
    QStringList paths;
    QStringList lines;
    for (std::size_t number = 0; number < count && number < kExamples; ++number) {
        const ImageObject &photo = *m_photos[number / copies.size()];
        const Copy &copy = copies[number % copies.size()];
        const QString name = OutputNaming::filenameForImage(photo.facts(), photo.path(), copy.wPresetName,
                                                            copy.savingPreset, qint64(number) + 1);
        const QString path = QDir(naming.targetDirectoryForFile(photo.path())).filePath(name);
        lines.append(withConflict(path, photo.path(), paths));
        paths.append(path);
    }
    if (count > kExamples)
        lines.append(QStringLiteral("…"));
    m_examples->setText(withLineBreaks(lines.join(u'\n')));
    showCount();
    makeRoom();
}

/// Long names take several lines, which must not squeeze the controls.
void SaveMultiplePanel::makeRoom()
{
    layout()->activate();
    const int wanted = std::max(layout()->totalHeightForWidth(width()), sizeHint().height());
    if (isVisible() && wanted > height())
        resize(width(), std::min(wanted, screen()->availableSize().height()));
}

void SaveMultiplePanel::accept()
{
    UserDefaults &defaults = m_services.defaults;
    const bool isInOneFolder = m_radioButtons->index() == InOneFolder;
    defaults.setObject(settings::saveAllToOneDirectory, isInOneFolder);
    if (isInOneFolder) {
        if (m_destination.isEmpty()) {
            Alert alert;
            alert.style = Alert::Style::Critical;
            alert.title = tr("Missing the destination directory");
            alert.text = tr("Please specify the directory where the image files should be saved");
            m_services.alerts.run(alert);
            return;
        }
        defaults.setObject(settings::savingDirectory, m_destination);
        if (m_replicates->isChecked() && !m_replicationStart.isEmpty())
            defaults.setObject(settings::replicationStartDirectory, m_replicationStart);
    }
    QDialog::accept();
}

} // namespace plexa
