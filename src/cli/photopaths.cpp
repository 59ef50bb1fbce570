// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/photopaths.h"

#include "imageio/imageformat.h"
#include "images/folderwalk.h"
#include "platform/systemerror.h"

#include <QFile>
#include <QFileInfo>

#include <CLI/CLI.hpp>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace plexa
{
namespace
{

// Photos that cannot be read. A photographer would miss them if they were not reported.
constexpr std::array kUnreadableSuffixes = {"jxl", "x3f"};

bool isPhotoName(const QString &path)
{
    const QFileInfo info(path);
    const QByteArray suffix = info.suffix().toLower().toLatin1();
    return imageFormatOfSuffix(info.suffix()) ||
           std::any_of(kUnreadableSuffixes.begin(), kUnreadableSuffixes.end(),
                       [&](const char *unreadable) { return suffix == unreadable; });
}

bool isAbsent(int error)
{
    return error == ENOENT || error == ENOTDIR;
}

const std::string kNothing = "there is nothing in it";

} // namespace

CLI::Validator someText()
{
    return CLI::Validator([](std::string &text) { return text.empty() ? kNothing : std::string(); },
                          std::string());
}

CLI::Validator somePath()
{
    return CLI::Validator(
        [](std::string &path) { return path.empty() ? kNothing : decodedPath(path).failure.toStdString(); },
        std::string());
}

CLI::Option *addPaths(CLI::App &command, const char *name, std::vector<std::string> &paths,
                      const char *description)
{
    // Without extra arguments nothing is split, but only the least number of arguments is accepted.
    constexpr int kAnyNumber = CLI::detail::expected_max_vector_size;
    return command.add_option(name, paths, description)
        ->expected(kAnyNumber, kAnyNumber)
        ->allow_extra_args(false)
        ->take_all();
}

PhotoPath decodedPath(const std::string &path)
{
    const QByteArray bytes = QByteArray::fromStdString(path);
    const QString text = QFile::decodeName(bytes);
    if (QFile::encodeName(text) == bytes)
        return {text, {}};
    return {text, QStringLiteral("its name is not valid UTF-8")};
}

PhotoSearch photosAt(const std::vector<std::string> &paths, bool recurses)
{
    PhotoSearch search;
    FolderWalk::Visitor visitor;
    visitor.found = [&](const QString &path) { search.photos.push_back({path, {}, true}); };
    visitor.unreadable = [&](const FolderWalk::Unreadable &what) {
        (what.isPhoto ? search.photos : search.notRead).push_back({what.path, what.reason, true});
    };
    visitor.isStopped = [] { return false; };
    FolderWalk::Rules rules;
    rules.entersFolders = recurses;
    rules.entersHiddenFolders = false;
    rules.isWanted = isPhotoName;
    FolderWalk walk(visitor, rules);
    for (const std::string &path : paths) {
        const PhotoPath given = decodedPath(path);
        struct stat status = {};
        const bool isReached = ::stat(path.c_str(), &status) == 0;
        if (!isReached && isAbsent(errno))
            search.notRead.push_back({given.path, openErrorText(given.path, qt_error_string(ENOENT))});
        else if (!isReached || !S_ISDIR(status.st_mode))
            search.photos.push_back(given); // opening it reports why it cannot be reached
        else if (!given.failure.isEmpty())
            search.notRead.push_back(given);
        else
            walk.scanFolder(given.path);
    }
    return search;
}

} // namespace plexa
