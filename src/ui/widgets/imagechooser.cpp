// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/imagechooser.h"

#include "imageio/imageformat.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>

namespace plexa
{

namespace
{

QString translated(const char *text)
{
    return QCoreApplication::translate("ImageChooser", text);
}

/// Cameras write suffixes in capitals, so both cases are included.
QString imageFilter(ChooserKind kind)
{
    QStringList patterns;
    if (kind == ChooserKind::Picture)
        patterns << QStringLiteral("*.svg") << QStringLiteral("*.SVG");
    for (const ImageFormat &format : imageFormats()) {
        for (const QString &suffix : format.suffixes)
            patterns << QStringLiteral("*.") + suffix << QStringLiteral("*.") + suffix.toUpper();
    }
    patterns.removeDuplicates();
    return translated(QT_TRANSLATE_NOOP("ImageChooser", "Images (%1)")).arg(patterns.join(QLatin1Char(' ')));
}

} // namespace

void chooseImages(ChooserKind kind, QWidget *window, std::function<void(const QStringList &)> chosen)
{
    // The folder of the last time.
    static QString lastFolder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    auto *const dialog = new QFileDialog(window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    if (kind == ChooserKind::Folder) {
        dialog->setWindowTitle(translated(QT_TRANSLATE_NOOP("ImageChooser", "Add Folder")));
        dialog->setFileMode(QFileDialog::Directory);
        dialog->setOption(QFileDialog::ShowDirsOnly);
    } else {
        const bool isPicture = kind == ChooserKind::Picture;
        dialog->setWindowTitle(isPicture ? translated(QT_TRANSLATE_NOOP("ImageChooser", "Choose Picture"))
                                         : translated(QT_TRANSLATE_NOOP("ImageChooser", "Add Photos")));
        dialog->setFileMode(isPicture ? QFileDialog::ExistingFile : QFileDialog::ExistingFiles);
        dialog->setNameFilters(
            {imageFilter(kind), translated(QT_TRANSLATE_NOOP("ImageChooser", "All files (*)"))});
    }
    dialog->setLabelText(QFileDialog::Accept, kind == ChooserKind::Picture
                                                  ? translated(QT_TRANSLATE_NOOP("ImageChooser", "Choose"))
                                                  : translated(QT_TRANSLATE_NOOP("ImageChooser", "Add")));
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    dialog->setOption(QFileDialog::ReadOnly); // else Delete removes originals
    dialog->setDirectory(QFileInfo(lastFolder).isDir() ? lastFolder : QDir::homePath());
    dialog->resize(840, 560); // room for the columns
    QObject::connect(dialog, &QDialog::accepted, dialog, [dialog, chosen = std::move(chosen)] {
        lastFolder = dialog->directory().absolutePath();
        chosen(dialog->selectedFiles());
    });
    dialog->open();
}

} // namespace plexa
