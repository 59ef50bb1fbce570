// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/workspace.h"

#include <QDebug>
#include <QDesktopServices>
#include <QFile>

#include <gio/gdesktopappinfo.h>

#include <memory>

namespace plexa
{

namespace
{

struct Release {
    void operator()(GDesktopAppInfo *object) const { g_object_unref(object); }
    void operator()(GError *error) const { g_error_free(error); }
    void operator()(GList *uris) const { g_list_free_full(uris, g_free); }
    void operator()(GFile *file) const { g_object_unref(file); }
    void operator()(char *text) const { g_free(text); }
};

using Application = std::unique_ptr<GDesktopAppInfo, Release>;

/// Null when it is not installed.
Application applicationWithId(const QString &id)
{
    return Application(g_desktop_app_info_new((id + QStringLiteral(".desktop")).toUtf8().constData()));
}

class DesktopWorkspace final : public Workspace
{
public:
    bool hasApplication(const QString &id) const override { return applicationWithId(id) != nullptr; }

    bool openFiles(const QStringList &paths, const QString &id) override
    {
        const Application application = applicationWithId(id);
        if (!application)
            return false;
        std::unique_ptr<GList, Release> uris;
        for (auto path = paths.rbegin(); path != paths.rend(); ++path) {
            // Bytes of names stay as they are, whatever their encoding.
            gchar *const uri = g_filename_to_uri(QFile::encodeName(*path).constData(), nullptr, nullptr);
            if (!uri)
                return false;
            uris.reset(g_list_prepend(uris.release(), uri));
        }
        GError *error = nullptr;
        if (g_app_info_launch_uris(G_APP_INFO(application.get()), uris.get(), nullptr, &error))
            return true;
        const std::unique_ptr<GError, Release> reason(error);
        qWarning("%s could not be started: %s", qUtf8Printable(id), reason ? reason->message : "");
        return false;
    }

    void openUrl(const QUrl &url) override { QDesktopServices::openUrl(url); }
};

} // namespace

bool openByScheme(const QUrl &url)
{
    GError *error = nullptr;
    if (g_app_info_launch_default_for_uri(url.toEncoded().constData(), nullptr, &error))
        return true;
    const std::unique_ptr<GError, Release> reason(error);
    qWarning("%s: address cannot be opened: %s", qUtf8Printable(url.scheme()), reason ? reason->message : "");
    return false;
}

QString localPathOf(const QUrl &url)
{
    if (url.isLocalFile())
        return url.toLocalFile();
    const std::unique_ptr<GFile, Release> file(g_file_new_for_uri(url.toEncoded().constData()));
    const std::unique_ptr<char, Release> path(g_file_get_path(file.get()));
    return path ? QFile::decodeName(path.get()) : QString();
}

Workspace &desktopWorkspace()
{
    static DesktopWorkspace workspace;
    return workspace;
}

} // namespace plexa
