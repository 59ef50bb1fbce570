// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/releaseselection.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace plexa
{

namespace
{

constexpr qsizetype kLongestNotes = 10'000; // characters; more than anybody reads

/// Null if the text is no version.
QVersionNumber versionOf(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("\\A[0-9]{1,9}(\\.[0-9]{1,9}){1,3}\\z"));
    return pattern.match(text).hasMatch() ? QVersionNumber::fromString(text) : QVersionNumber();
}

bool isSecurePage(const QUrl &url)
{
    return url.isValid() && url.scheme() == u"https" && !url.host().isEmpty();
}

QString notesOf(const QJsonObject &release, const QStringList &preferredLanguages)
{
    return preferredText(release[u"notes"].toArray(), QStringLiteral("text"), preferredLanguages,
                         [](const QString &text) { return !text.isEmpty(); })
        .left(kLongestNotes)
        .trimmed();
}

} // namespace

Result<QList<Release>> newerReleases(const QByteArray &feed, const ReleaseAudience &audience)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(feed, &error);
    if (error.error != QJsonParseError::NoError)
        return fail(QStringLiteral("The list of releases is damaged: ") + error.errorString());
    const QJsonValue listed = document.object()[u"releases"];
    if (!listed.isArray())
        return fail(QStringLiteral("The server sent no list of releases"));

    QList<Release> releases;
    for (const auto &element : listed.toArray()) {
        const QJsonObject object = element.toObject();
        const Release release{versionOf(object[u"version"].toString()), QUrl(object[u"page"].toString()),
                              notesOf(object, audience.preferredLanguages)};
        const bool isNewer = release.version.normalized() > audience.currentVersion.normalized();
        if (isNewer && isSecurePage(release.page) &&
            isCurrentOSVersionSince(object[u"minOSversion"], audience.systemVersion))
            releases.append(release);
    }
    std::stable_sort(releases.begin(), releases.end(),
                     [](const Release &a, const Release &b) { return a.version > b.version; });
    return releases;
}

} // namespace plexa
