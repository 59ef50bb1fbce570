// SPDX-License-Identifier: GPL-3.0-or-later

// Renders the program's icon in the sizes of the icon theme, each as FOLDER/SIZE/NAME.png.
// Usage: plexa-make-icons ICON.svg FOLDER SIZE...

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char **argv)
{
    if (argc < 4) {
        std::fputs("usage: plexa-make-icons ICON.svg FOLDER SIZE...\n", stderr);
        return 2;
    }
    QSvgRenderer drawing(QFile::decodeName(argv[1]));
    const QString name = QFileInfo(QFile::decodeName(argv[1])).completeBaseName();
    const QDir folder(QFile::decodeName(argv[2]));
    for (int i = 3; i < argc; ++i) {
        const int size = QByteArray(argv[i]).toInt();
        QImage icon(size, size, QImage::Format_ARGB32_Premultiplied);
        icon.fill(Qt::transparent);
        if (QPainter painter(&icon); painter.isActive())
            drawing.render(&painter);
        const QString place = QString::number(size);
        if (!drawing.isValid() || !folder.mkpath(place) ||
            !icon.save(folder.filePath(QStringLiteral("%1/%2.png").arg(place, name)))) {
            std::fprintf(stderr, "plexa-make-icons: %s: size %s cannot be written\n", argv[1], argv[i]);
            return 1;
        }
    }
    return 0;
}
