// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "support/testenvironment.h"

#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

namespace plexa::test
{

/// What exiftool reads from each of these files: "group:tag" to value, numbers as numbers. One process for
/// all. Files that it does not know have few entries or none.
inline QMap<QString, QJsonObject> exiftoolRecords(const QStringList &paths,
                                                  const QStringList &options = {QStringLiteral("-G1")})
{
    QStringList arguments{QStringLiteral("-json"),
                          QStringLiteral("-n"),
                          QStringLiteral("-a"),
                          QStringLiteral("-charset"),
                          QStringLiteral("filename=utf8"),
                          QStringLiteral("-api"),
                          QStringLiteral("struct=2")};
    QProcess process;
    process.start(QStringLiteral("exiftool"), arguments + options + paths);
    QMap<QString, QJsonObject> records;
    if (!process.waitForFinished(120'000))
        return records;
    // The exit status tells of unknown files, too, and those are among the photos on purpose.
    const QJsonArray list = QJsonDocument::fromJson(process.readAllStandardOutput()).array();
    for (const auto &record : list)
        records.insert(record[QLatin1StringView("SourceFile")].toString(), record.toObject());
    return records;
}

/// All photos, as absolute paths.
inline QStringList photoPaths()
{
    QStringList paths;
    QDirIterator files(photosFolder(), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (!path.endsWith(u"README.md"))
            paths += path;
    }
    paths.sort();
    return paths;
}

/// The text that both sides would print for a value, to be compared.
inline QString comparable(const QJsonValue &value)
{
    if (value.isArray()) {
        QStringList items;
        for (const auto &item : value.toArray())
            items += comparable(item);
        return items.join(u' ');
    }
    return value.toVariant().toString();
}

} // namespace plexa::test
